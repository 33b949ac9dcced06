// The parts of the interface that scripts see, a file per island.
#pragma once

#include "bindings/core/ClassInfo.h"

namespace tq::bindings {

void describeClocks(Interface& interface);
void describeBlocks(Interface& interface);
void describeAddressing(Interface& interface);
void describeHandoff(Interface& interface);
void describeHardBlocks(Interface& interface);
void describeSequences(Interface& interface);
void describeRegisters(Interface& interface);
void describeIpxact(Interface& interface);

} // namespace tq::bindings
