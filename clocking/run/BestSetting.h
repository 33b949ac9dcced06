// The best of the settings that a search of one or two PLLs tries at one step of the ladder.
#pragma once

#include <vector>

#include "clocking/ClockingArithmetic.h"
#include "clocking/run/SolverRun.h"

namespace hbs_clocking {

/// A later setting has to beat the best one by the margin. The settings that the terms ask for are
/// listed beside it.
class BestSetting {
public:
    /// Both must outlive this object.
    BestSetting(SolverRun& run, const RunTerms& terms)
        : m_run(run), m_terms(terms), m_list(run.wantedSettings()) {}

    /// Whether a setting with this sum of weighted errors could be the best or be listed.
    [[nodiscard]] bool takes(float total) const;
    /// `plls` are in the solver's order, `choices` in that of the enabled peripherals.
    void offer(float total, const std::vector<ClockSetting::Pll>& plls,
               const std::vector<DividerChoice>& choices);
    /// Gives the best setting and keeps the list. False for none.
    [[nodiscard]] bool finish(StepResult& result);

private:
    SolverRun& m_run;
    const RunTerms& m_terms;
    SettingList m_list;
    float m_best = kWorstTotalError;
    StepResult m_result;
};

} // namespace hbs_clocking
