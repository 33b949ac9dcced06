// The parts of the interface that scripts see, a file per island.
#pragma once

#include "bindings/core/ClassInfo.h"

namespace tq::bindings {

void describeClocks(Interface& interface);

} // namespace tq::bindings
