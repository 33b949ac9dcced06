// The search of one step of the ladder: multipliers, output dividers and cross-domain dividers with
// the smallest sum of errors, exactly as if all had been tried in their order.
//
// Method. The errors that every setting of a PLL gives are tabulated (`SourceTable`), a bound made
// of one number per setting is fitted to them (`PriceBound`), and the settings are searched from
// the most promising on: the main and the NOC PLL here, the PLLs of domain 2 in `ContextSearch`,
// those of domain 3 in `OwnChoices`. What the bound leaves over is summed in single precision and
// in order; from the sums near the smallest one `NearMinimum` tells who would have won.
//
// Cost. The table takes peripherals × multipliers × dividers; the bound some thirty times as many
// additions; the rest depends on how many settings come near the best one, usually a few dozen.
#pragma once

#include <cstdint>
#include <optional>

#include "clocking/search/ContextSearch.h"

namespace hbs_clocking {

/// Made once per step, then only read: several threads may search ranges of it.
class TupleSearch {
public:
    /// The problem must outlive the search; its list has three stages and isn't empty.
    explicit TupleSearch(const SearchProblem& problem);

    struct Result {
        std::optional<NearMinimum::Winner> winner;
        std::uint64_t evaluatedTuples = 0;
    };

    /// A sum that some combination of the list gives, or more than any sum.
    [[nodiscard]] double knownSum() const { return m_known; }

    /// Who wins among the combinations from `first` up to but not including `last`. `known` is a
    /// sum that some combination of the list gives; a range whose sums all lie above it by more
    /// than the margin has no winner, as it can't win against the others either.
    [[nodiscard]] Result search(std::uint64_t first, std::uint64_t last, double known) const;

private:
    /// A setting of the first two multipliers, and a bound of all that lies behind it.
    struct Pair {
        double bound;
        unsigned main;
        unsigned noc;
    };

    [[nodiscard]] float sumOfFavourites() const;
    [[nodiscard]] CombinationRange rangeOf(std::uint64_t first, std::uint64_t last) const;
    [[nodiscard]] std::vector<Pair> pairsIn(const CombinationRange& range) const;
    void searchPair(const Pair& pair, ContextSearch& contexts, NearMinimum& sums) const;
    [[nodiscard]] bool fillContext(Context& context) const;

    const SearchProblem& m_problem;
    SourceTable m_table;
    PriceBound m_bound;
    double m_proven; ///< no sum lies above this
    double m_known;  ///< a sum that some combination of the list gives
};

} // namespace hbs_clocking
