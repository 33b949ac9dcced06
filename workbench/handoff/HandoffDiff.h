// Two handoff documents compared by their meaning.
#pragma once

#include <string>
#include <vector>

#include "tq_workbench_export.h"

namespace tq {

/// One difference of two documents A and B.
struct HandoffDifference {
    enum class Kind { OnlyInA, OnlyInB, Changed };

    Kind kind = Kind::Changed;
    /// What differs: "module cpu0 / port irq".
    std::string where;
    std::string attribute; ///< of a change
    std::string a;         ///< its values; empty for an attribute that is missing
    std::string b;
};

/// Reads both documents and compares them. The order of elements and attributes doesn't count, nor
/// do the time stamp and the tool's version, nor the way in which an address is spelt. Of something
/// that only one document has, what it holds isn't listed. Elements and attributes that the format
/// doesn't know are compared like the others.
///
/// Raises `InputError` for a file that can't be read within the limit of all readers, isn't XML,
/// isn't such a document, or has more elements and attributes than a tree in memory should (16
/// million), or more than 100 levels.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::vector<HandoffDifference> diffHandoffs(const std::string& a,
                                                                              const std::string& b);

/// A table; a sentence where nothing differs.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string
handoffDiffTable(const std::vector<HandoffDifference>& differences);

/// A JSON array of objects with "kind" ("only-in-a", "only-in-b", "changed"), "where", "attribute",
/// "a" and "b".
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string
handoffDiffJson(const std::vector<HandoffDifference>& differences);

} // namespace tq
