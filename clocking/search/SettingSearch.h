// The best settings of a step of the ladder, beyond the one that the search ends with.
//
// Method: the partitioning of Lawler and Murty over the multipliers. The best combination of a part
// is found by the search itself; the rest of the part falls into parts that differ from it in the
// first, the second, ... PLL. Behind each combination found, its dividers are tried one and all.
//
// Cost: a search per PLL and combination, and at most 15,552 sums for each combination.
#pragma once

#include "clocking/run/RunTerms.h"
#include "clocking/search/SourceTable.h"
#include "clocking/search/TupleSearch.h"

namespace hbs_clocking {

class SettingSearch {
public:
    /// The problem must outlive the search.
    explicit SettingSearch(const SearchProblem& problem) : m_problem(problem) {}

    /// Adds the best settings that the step tries: each peripheral takes its best clock. Best first
    /// to within the margin of the search's comparisons.
    void find(SettingList& list) const;

private:
    using Masks = std::array<MultiplierMask, kRoles>; ///< by place in a combination

    struct Part {
        Masks allowed;
        Combination best{}; ///< by place
        float sum = 0.0F;
    };
    struct Choice {
        std::array<const PllOption*, kRoles> options{};
    };

    [[nodiscard]] std::optional<Part> solve(const Masks& allowed) const;
    [[nodiscard]] SearchProblem restricted(const Masks& allowed) const;
    void addSettings(const Combination& combination, SettingList& list) const;
    void addSetting(const SourceTable& table, const Choice& choice, SettingList& list) const;
    [[nodiscard]] ClockSetting settingOf(const Choice& choice, float sum,
                                         const std::vector<unsigned>& sources) const;

    const SearchProblem& m_problem;
};

} // namespace hbs_clocking
