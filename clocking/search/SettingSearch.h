// The k best settings of a step of the ladder, beyond the one that the search ends with.
//
// Method: the partitioning of Lawler and Murty over the multipliers. The best combination of a part
// is found by the search itself; the rest of the part is divided into parts that agree with it in
// the first i PLLs and differ in the next one. Parts are taken by their best sum, so the settings
// come in order. For each combination found, all its dividers are tried.
//
// Cost: a search per PLL and combination, and at most 15,552 sums for each combination.
#pragma once

#include "clocking/run/RunTerms.h"
#include "clocking/search/SourceTable.h"
#include "clocking/search/TupleSearch.h"

namespace hbs_clocking {

/// Lists settings of one step. Used on one thread.
class SettingSearch {
public:
    /// The problem must outlive the search.
    explicit SettingSearch(const SearchProblem& problem) : m_problem(problem) {}

    /// Adds the best settings among those that the step tries, until no other can be within the
    /// list's limit. Best first to within the margin of the search's comparisons. In each setting
    /// every peripheral takes its best clock.
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
