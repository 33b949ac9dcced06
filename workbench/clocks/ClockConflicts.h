// Why a clock tree's requests aren't met: the smallest sets of them that can't be met together.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "tq_workbench_export.h"
#include "workbench/clocks/ClockRun.h"
#include "workbench/clocks/ClockTree.h"

namespace tq {

/// A minimal conflicting set: its requests can't be met together, and can be without any of them.
struct ClockConflict {
    /// What the tree is like when one request of the set is given up.
    struct Without {
        std::size_t peripheral = 0; ///< place among those of the tree
        bool allMet = false;        ///< whether all others of the tree are met then
        /// The tolerance at which the others are met: all of them, or, where another conflict
        /// remains, those of the set. None when the set is this one request.
        std::optional<float> tolerance;
    };

    std::vector<Without> members; ///< as declared
};

/// The minimal conflicting sets of a tree.
struct ClockConflicts {
    std::vector<ClockConflict> sets; ///< the smallest first, then as declared
    bool isComplete = true;          ///< false where there may be more
    std::size_t solves = 0;          ///< runs of a solver that it took
};

/// The minimal conflicting sets of a tree, at most `most` of them; none for a tree whose requests
/// are all met. A set of requests is met when the solver finds a setting for the tree with no other
/// request enabled and every error is within the allowed one.
///
/// Trees of four and six PLLs have no answer without a NOC peripheral. It stays in every sub-tree,
/// and belongs to a set when another request of the NOC clock, out of twenty that the NOC PLL gives
/// exactly, would meet the rest of the set.
///
/// Method: QuickXplain finds a minimal set by deletion, halves at a time (about
/// k × log2(n ÷ k) + k runs for k of n requests); a hitting-set tree over the sets found leads to
/// the others, breadth first. Raises `SearchInterrupted` when interrupted
/// (clocking/SearchInterruption.h).
[[nodiscard]] TQ_WORKBENCH_EXPORT ClockConflicts findClockConflicts(const ClockTree& tree,
                                                                    std::size_t most = 10);

} // namespace tq
