// The search of one step of the ladder: multipliers, output dividers and cross-domain dividers with
// the smallest sum of errors, exactly as if all had been tried in their order.
//
// Method: branch and bound. The errors that every setting of a PLL gives are tabulated
// (`SourceTable`), and a Lagrangian bound made of one number per setting is fitted to them
// (`PriceBound`). Settings and errors that no sum within the limit can need are left out (reduced
// cost fixing), and the settings of the main and the NOC PLL are searched best first
// (`ContextQueue`). A search that turns out long begins again with a better bound. Behind each of
// them the own PLLs of domains 2 and 3 are bounded and enumerated from memoised Pareto fronts
// (`ContextSearch`, `ChoiceTable`, `ErrorFront`). What the bounds leave over is summed in single
// precision and in order; from the sums near the smallest one `ChunkLows` tells which of them the
// exhaustive search would have ended with.
//
// Cost. The table takes peripherals × multipliers × dividers; the bound thirty to two
// hundred times as many additions; the rest depends on how many settings come near the best one,
// usually a few dozen.
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

    /// Who wins among the combinations, divided into chunks that begin at these indices, the first
    /// of which is 0. `runOnThreads` may be empty; it is called where there is work for several
    /// threads. The winner is the same with any threads. What a thread throws comes to the caller.
    [[nodiscard]] Result search(std::span<const std::uint64_t> chunks,
                                const RunOnThreads& runOnThreads) const;

private:
    [[nodiscard]] float sumOfFavourites() const;
    [[nodiscard]] std::vector<Combination> startsOf(std::span<const std::uint64_t> chunks) const;
    /// Offers all sums that the limits leave over. False if that took more than the effort: it is
    /// left unfinished then.
    [[nodiscard]] bool collect(const PriceBound& bound, ChunkLows& lows, std::uint64_t effort,
                               const RunOnThreads& runOnThreads, std::uint64_t& evaluated) const;

    const SearchProblem& m_problem;
    SourceTable m_table;
    PriceBound m_bound;
    double m_proven; ///< no sum lies above this
    double m_known;  ///< a sum that some combination of the list gives, or more than any sum
};

} // namespace hbs_clocking
