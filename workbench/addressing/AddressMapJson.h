// The address map for programs.
#pragma once

#include <string>

#include "tq_workbench_export.h"
#include "workbench/addressing/AddressMap.h"

namespace tq {

/// One JSON object with the members of the map in their order:
///
/// - "blocks": objects with "base", "end", "size", "offset" (in the memory map), "name", "path",
///   "usage" ("register", "memory" or "reserved"), "interfaces", "ports" (arrays of names) and "on"
///   (false if the config removed it), and `withRegisters` "registers": objects with "name",
///   "address", "offset" (in the block), "width" (in bits), "access", "reset" and "value";
/// - "spaces": objects with "path", "range", "windows" and "assigned", arrays of objects with
///   "start", "end", "size", "name" and "type", the latter as `HABMAddrSegment` and
///   `HABMAddrAssign` have it; an assigned one has the name of its "segment" too;
/// - "removed": objects with "kind" ("block" or "interface"), "path" and "condition".
///
/// Addresses and sizes are texts such as "0xA0000000"; one that can't be computed is null. See
/// schemas/address_map.schema.json.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string addressMapJson(const AddressMap& map,
                                                             bool withRegisters = false);

/// The addressing report of an instance, as schemas/addressing_report.schema.json describes it.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string addressingReportJson(const HABMBlock& instance);

} // namespace tq
