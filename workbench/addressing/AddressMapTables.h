// The address map as aligned tables.
#pragma once

#include <iosfwd>

#include "tq_workbench_export.h"
#include "workbench/addressing/AddressMap.h"

namespace tq {

/// A table of all blocks, one of the assigned blocks for each address space that has any, and one
/// of what the config removed; `withRegisters` one of all registers too. What can't be shown on a
/// terminal is escaped.
TQ_WORKBENCH_EXPORT void printAddressMap(std::ostream& out, const AddressMap& map,
                                         bool withRegisters = false);

} // namespace tq
