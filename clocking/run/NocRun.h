// The run of the solvers with a NOC clock, of four and six PLLs.
#pragma once

#include <functional>
#include <vector>

#include "clocking/run/CombinationBuilder.h"
#include "clocking/run/SolverRun.h"
#include "clocking/search/TreeShape.h"

namespace hbs_clocking {

struct SearchProblem;
struct Tuple;

/// Finds the best of all combinations of multipliers and dividers at each step of the ladder. Their
/// search is split among threads when they are many.
class NocRun {
public:
    /// The combinations that a step tries; empty to go on to the next.
    using ComboBuilder = std::function<CombinationList(const CombinationBuilder&)>;

    /// The shape and the tree must outlive the run.
    NocRun(HBSClockingAlgo& tree, const TreeShape& shape, ComboBuilder buildCombos);

    /// The whole run: true when a solution was found. Raises `SearchInterrupted`, with the earlier
    /// result restored.
    [[nodiscard]] bool solve();

private:
    /// The clocks of a set PLL within its domain and across domains.
    struct PllClocks {
        ClockSlot direct;
        ClockSlot across;
    };

    void climbLadder();
    [[nodiscard]] bool collectStepCandidates(StepCandidates& candidates);
    /// The tuples of output dividers of a combination, as a range per PLL.
    [[nodiscard]] ClkoutDivCombos buildClkoutDivCombos(const Combination& combination) const;
    [[nodiscard]] SearchProblem problemOf(const CombinationList& combos) const;
    [[nodiscard]] bool searchCombos(const CombinationList& combos, StepResult& result);
    void listSettings(const CombinationList& combos, const StepResult& result);
    void complainOfNocPeripherals(const CombinationList& combos) const;
    void writeDecisions(const Tuple& tuple, StepResult& result) const;
    [[nodiscard]] std::vector<PllClocks> writePlls(const Tuple& tuple, StepResult& result) const;
    [[nodiscard]] unsigned nocDivider(unsigned mul) const;

    HBSClockingAlgo& m_tree;
    const TreeShape& m_shape;
    ComboBuilder m_buildCombos;
    std::vector<HBSPeripheral*> m_noc;
    SolverRun m_run;
};

} // namespace hbs_clocking
