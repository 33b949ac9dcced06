#include "workbench/clocks/ClockReport.h"

#include <algorithm>

namespace tq {

namespace {

using hbs_clocking::HBSClockingAlgo;
using hbs_clocking::HBSPeripheral;
using hbs_clocking::HBSPll;

[[nodiscard]] GivenClock setAgainst(float requestMhz, double mhz) {
    GivenClock given{mhz, std::nullopt};
    const double request = static_cast<double>(requestMhz);
    if (request > 0.0)
        given.errorPercent = (mhz - request) / request * 100.0;
    return given;
}

/// What a served peripheral gets. The 2-PLL solver has no cross-domain dividers and its peripherals
/// read no frequency across domains: there every clock is the PLL's divided once.
[[nodiscard]] double suppliedMhz(const ClockTree& tree, const HBSClockingAlgo& solver,
                                 const HBSPeripheral& peripheral) {
    const HBSPll* pll = solver.getPll(peripheral.getPllName());
    if (tree.pllCount == 2 && pll != nullptr)
        return pll->getVcoFreq() / peripheral.getClkoutDiv();
    return peripheral.getActualFreq();
}

/// Solves a peripheral as the only one of a tree of one PLL with its domain's limit. The solvers of
/// larger trees can't be asked: they don't run without a NOC peripheral, whose fault would then
/// count against every request.
[[nodiscard]] std::optional<double>
solveAlone(const ClockTree& tree, const ClockTree::Peripheral& peripheral, float maxErrorPercent) {
    ClockTree alone;
    alone.referenceMhz = tree.referenceMhz;
    // The solvers of one and two PLLs never serve the NOC domain, alone or not.
    const std::string domainName = tree.pllCount <= 2 ? peripheral.domain : "DOMAIN";
    alone.domains = {{domainName, {{"PLL"}}}};
    const auto domain = std::find_if(tree.domains.begin(), tree.domains.end(),
                                     [&](const auto& d) { return d.name == peripheral.domain; });
    float& limitMhz = alone.domains.front().plls.front().maxMhz;
    limitMhz = 0.0F;
    for (const ClockTree::Pll& pll : domain->plls)
        limitMhz = std::max(limitMhz, pll.maxMhz);
    alone.peripherals = {{"PERIPHERAL", domainName, peripheral.mhz, maxErrorPercent}};
    const auto solver = buildClockSolver(alone);
    if (!solver->runSolution())
        return std::nullopt;
    return solver->getAllPeripherals().front()->getActualFreq();
}

[[nodiscard]] ClockReport::Alone reportAlone(const ClockTree& tree,
                                             const ClockTree::Peripheral& peripheral) {
    ClockReport::Alone alone{peripheral, std::nullopt, true};
    std::optional<double> mhz = solveAlone(tree, peripheral, peripheral.maxErrorPercent);
    if (!mhz) {
        alone.allowed = false;
        mhz = solveAlone(tree, peripheral, 100.0F);
    }
    if (mhz)
        alone.nearest = setAgainst(peripheral.mhz, *mhz);
    return alone;
}

} // namespace

ClockReport makeClockReport(const ClockTree& tree, const HBSClockingAlgo& solver) {
    ClockReport report;
    report.found = solver.is_result_found();
    report.takesOtherClocks = tree.pllCount > 2 || (tree.pllCount == 2 && tree.allowCrossDomain);
    if (!report.found) {
        for (const ClockTree::Peripheral& peripheral : tree.peripherals)
            if (peripheral.enabled)
                report.alone.push_back(reportAlone(tree, peripheral));
        return report;
    }
    report.tolerance = solver.getToleranceFector();
    report.totalError = solver.getTotalRelativeError();
    for (const HBSPll* pll : solver.getAllPlls())
        report.plls.push_back({pll->getName(), pll->getPowerDomainName(), pll->getVcoMul(),
                               pll->getClkoutDiv(), pll->getCrossDomainDiv(), pll->getVcoFreq()});
    const std::vector<HBSPeripheral*> solved = solver.getAllPeripherals();
    for (std::size_t i = 0; i < solved.size(); ++i) {
        ClockReport::Peripheral line{tree.peripherals[i], solved[i]->getPllName(),
                                     solved[i]->getClkoutDiv(), std::nullopt};
        if (line.request.enabled)
            line.given = setAgainst(line.request.mhz, suppliedMhz(tree, solver, *solved[i]));
        report.peripherals.push_back(std::move(line));
    }
    return report;
}

} // namespace tq
