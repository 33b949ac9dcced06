// Two address maps side by side.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "tq_workbench_export.h"
#include "workbench/addressing/AddressMap.h"
#include "workbench/files/JsonFile.h"

namespace tq {

/// One difference between two maps. `before` and `after` are texts for people, empty for what isn't
/// there. The kinds, in the order in which they are listed:
///
/// - "gone", "appeared": a block that only one map has;
/// - "off", "on": a block that a config switched; `reason` has the condition, and the registers of
///   other values that it names;
/// - "moved", "resized", "interfaces": a block's address, size, or the interfaces that offer it;
/// - "assign": what an address space has of a block: "SPACE: BLOCK";
/// - "gone", "appeared", "moved" (its offset), "resized" (its bits), "value": a register, if both
/// maps
///   have registers and the block.
struct TQ_WORKBENCH_EXPORT MapDifference {
    std::string kind;
    std::string path;
    std::string before;
    std::string after;
    std::string reason;
};

/// Compares two maps in the form of `addressMapJson`, which may be saved files. Raises `InputError`
/// with the place for a file of another form. The time is that of sorting.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::vector<MapDifference> compareMaps(const JsonFile& before,
                                                                         const JsonFile& after);
[[nodiscard]] TQ_WORKBENCH_EXPORT std::vector<MapDifference> compareMaps(const AddressMap& before,
                                                                         const AddressMap& after);

/// A table of the differences; a sentence if there are none.
TQ_WORKBENCH_EXPORT void printDifferences(std::ostream& out,
                                          const std::vector<MapDifference>& differences);
/// One object with "differences": objects with "kind", "path", "before", "after" and "reason".
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string
differencesJson(const std::vector<MapDifference>& differences);

} // namespace tq
