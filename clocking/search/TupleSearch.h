// The search of one step of the ladder: multipliers, output dividers and cross-domain dividers with
// the smallest sum of errors. The result is exactly that of trying all of them in their order.
//
// Method: branch and bound.
// 1. The errors of every setting of a PLL are tabulated (`SourceTable`).
// 2. A Lagrangian bound, made of one number per setting, is fitted to the table (`PriceBound`).
//    Settings and errors that can't be part of a sum within the limit are dropped (reduced cost
//    fixing).
// 3. Nodes are the settings of the main and the NOC PLL, searched best first (`ContextQueue`). For
//    each of them the own PLLs of domains 2 and 3 are bounded and enumerated from memoised Pareto
//    fronts (`ContextSearch`, `ChoiceTable`, `ErrorFront`). A search that turns out long begins
//    again with a better bound.
// 4. The tuples that remain are summed in single precision and in the peripherals' order. From the
//    sums near the smallest one `ChunkLows` determines which tuple the exhaustive search, in which
//    a later tuple must be better by a margin, would have ended with.
//
// Cost: peripherals × multipliers × dividers for the table, thirty to two hundred times as many
// additions for the bound. The rest depends on how many settings come near the best one, usually a
// few dozen.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "clocking/search/ChunkLows.h"
#include "clocking/search/PriceBound.h"

namespace hbs_clocking {

/// Made once per step.
class TupleSearch {
public:
    /// The problem must outlive the search; its list has three stages and isn't empty.
    explicit TupleSearch(const SearchProblem& problem);

    struct Result {
        std::optional<NearMinimum::Winner> winner;
        std::uint64_t evaluatedTuples = 0;
    };
    /// Calls the function on several threads at once and waits for all of them.
    using RunOnThreads = std::function<void(const std::function<void()>&)>;

    /// The winner among the combinations, divided into chunks that begin at these indices, the
    /// first of which is 0. `runOnThreads` may be empty; it is called where there is work for
    /// several threads. The chunks decide near ties, the number of threads doesn't. Exceptions of a
    /// thread are passed to the caller.
    [[nodiscard]] Result search(std::span<const std::uint64_t> chunks,
                                const RunOnThreads& runOnThreads) const;

private:
    [[nodiscard]] float sumOfFavourites() const;
    [[nodiscard]] std::vector<Combination> startsOf(std::span<const std::uint64_t> chunks) const;
    /// Offers all sums within the limits of `lows`. False, with the work unfinished, if that takes
    /// more than the effort.
    [[nodiscard]] bool collect(const PriceBound& bound, ChunkLows& lows, std::uint64_t effort,
                               const RunOnThreads& runOnThreads, std::uint64_t& evaluated) const;

    const SearchProblem& m_problem;
    SourceTable m_table;
    PriceBound m_bound;
    double m_proven; ///< an upper bound of all sums
    double m_known;  ///< a sum that a combination of the list gives, else an upper bound of all
};

} // namespace hbs_clocking
