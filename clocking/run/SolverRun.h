// One run of a solver: what the runs with one, two, four and six PLLs share.
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "clocking/HBSClockingAlgo.h"
#include "clocking/run/RunTerms.h"
#include "clocking/run/RunTypes.h"

namespace hbs_clocking {

/// Takes the tree through the ladder of tolerances and writes the solution into it. Made once per
/// run; the tree must outlive it and keep its peripherals meanwhile.
class SolverRun {
public:
    SolverRun(HBSClockingAlgo& tree, unsigned pllCount)
        : m_tree(tree), m_pllCount(pllCount), m_enabled(tree.getEnabledPeripherals()) {}

    [[nodiscard]] const HBSClockingAlgo& tree() const { return m_tree; }
    [[nodiscard]] const std::vector<HBSPeripheral*>& enabled() const { return m_enabled; }
    [[nodiscard]] float tolerance() const { return m_tree.getToleranceFector(); }

    /// Clears the earlier result of a tree that has its shape. False, after a line that says why
    /// and with the earlier result left, for any other.
    [[nodiscard]] bool start();
    /// Takes the tolerances of the ladder in order, each as the present one, until `solveStep`
    /// returns true. False, with the last tolerance left, if it never does.
    [[nodiscard]] bool climbLadder(const std::function<bool()>& solveStep);

    /// The candidates of the present tolerance as bit sets and their union, ascending. How many of
    /// the enabled peripherals have any; those of the NOC domain never do.
    [[nodiscard]] std::size_t collectCandidates(MultiplierBitMap& multiplierBits,
                                                std::vector<unsigned>& multipliers);
    /// The multipliers that can serve the NOC peripherals, ascending.
    [[nodiscard]] std::vector<unsigned> collectNocMultipliers();

    // Terms.

    [[nodiscard]] RunTerms terms() const {
        return {m_tree.getTerms(), m_tree, m_pllCount, m_enabled};
    }
    /// How many settings the terms ask for.
    [[nodiscard]] unsigned wantedSettings() const { return m_tree.getTerms().settings; }
    /// The multipliers to try for a PLL: its own by the terms, else all of the list. The NOC PLL's
    /// own one must be in the list.
    [[nodiscard]] std::vector<unsigned> allowedMultipliers(unsigned pll,
                                                           std::span<const unsigned> list) const;
    /// Whether the terms name one of two PLLs. If so, swapping their multipliers gives another
    /// setting, and both orders must be tried.
    [[nodiscard]] bool tellsApart(unsigned pllA, unsigned pllB) const;

    // Solutions.

    /// Writes a solution to the PLLs and peripherals, and marks it found.
    void applySolution(const StepResult& result);
    /// Keeps the listed settings, the solution first, if the terms ask for settings.
    void keepSettings(SettingList& list, const StepResult& solution);
    /// Takes the solution from the process's store when the run may use it and it is there.
    [[nodiscard]] bool applyCachedSolution();
    /// Puts a solution into the process's store, if the run may and the store isn't full.
    void storeSolution(const StepResult& result) const;
    void setStatistics(const SearchStatistics& statistics) {
        m_tree.m_searchStatistics = statistics;
    }

private:
    [[nodiscard]] bool usesStore() const;
    /// What a stored solution is found by.
    [[nodiscard]] std::vector<std::pair<std::string, float>> buildSolutionKey() const;
    [[nodiscard]] ClockSetting settingOf(const StepResult& result) const;
    void configurePll(const std::string& name, const std::vector<unsigned>& config);

    HBSClockingAlgo& m_tree;
    unsigned m_pllCount;
    std::vector<HBSPeripheral*> m_enabled;
};

} // namespace hbs_clocking
