#include "workbench/clocks/ClockReport.h"

#include <algorithm>
#include <cmath>

#include "workbench/clocks/ClockConflicts.h"
#include "workbench/text/Text.h"

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

/// The cross-domain divider that the clock passes, or 0: only trees of four and six PLLs have
/// them, whose domain 0 takes the NOC clock directly.
[[nodiscard]] unsigned passedCrossDivider(const ClockTree& tree, const HBSPeripheral& peripheral,
                                          const HBSPll& pll) {
    const std::int32_t from = pll.getPowerDomainIndex();
    const std::int32_t to = peripheral.getPowerDomainIndex();
    const bool isDirect = from == to || (to == 0 && from == 1);
    return tree.pllCount <= 2 || isDirect ? 0 : pll.getCrossDomainDiv();
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
    if (domain == tree.domains.end()) // a tree that a script made
        return std::nullopt;
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

double ClockReport::Peripheral::offPpm() const {
    constexpr double ppmPerPercent = 1e4;
    return given ? std::fabs(given->errorPercent.value_or(0.0)) * ppmPerPercent : 0.0;
}

double ClockReport::Peripheral::countedPpm() const {
    constexpr unsigned largestDivider = 1023;
    return divider == largestDivider ? 0.0 : offPpm();
}

bool ClockReport::Peripheral::isBeyondAllowed() const {
    constexpr double ppmPerPercent = 1e4;
    constexpr double margin = 1e-5; // of the solvers
    const double allowed = static_cast<double>(request.maxErrorPercent) * ppmPerPercent;
    return countedPpm() > allowed * (1 + margin);
}

ClockReport::Summary ClockReport::summary() const {
    Summary summary;
    for (const Peripheral& line : peripherals) {
        if (!line.given)
            continue;
        const double ppm = line.offPpm();
        ++(ppm <= 0.1      ? summary.exact
           : ppm <= 10.05  ? summary.within10ppm
           : ppm <= 1000.0 ? summary.within1000ppm
           : ppm <= 10000. ? summary.within1percent
                           : summary.worse);
    }
    return summary;
}

ClockOutcome outcomeOf(const ClockReport& report) {
    ClockOutcome outcome;
    outcome.found = report.found;
    outcome.tolerance = report.tolerance;
    for (const ClockReport::Peripheral& line : report.peripherals) {
        const double ppm = line.countedPpm();
        outcome.sumPpm += ppm;
        if (outcome.worst.empty() || ppm > outcome.worstPpm) {
            outcome.worstPpm = ppm;
            outcome.worst = line.request.name;
        }
    }
    return outcome;
}

namespace {

[[nodiscard]] std::string outcomeText(const ClockReport::Peripheral& line) {
    if (!std::isfinite(line.given->mhz))
        return "gets no clock, as the output divider of " + line.pll + " is 0";
    return "gets " + fixedText(line.given->mhz, 4) + " (" +
           fixedText(*line.given->errorPercent, 1) + " %); its allowed error is " +
           fixedText(static_cast<double>(line.request.maxErrorPercent), 1) + " %";
}

} // namespace

void addSearch(ClockReport& report, const HBSClockingAlgo& solver, unsigned pllCount) {
    // Three output dividers for each PLL but the NOC's, and three cross-domain dividers of 1 to 4.
    constexpr unsigned ofFour = 3 * 3 * 3 * 4 * 4 * 4;
    constexpr unsigned ofSix = ofFour * 3 * 3;
    const hbs_clocking::SearchStatistics& statistics = solver.getSearchStatistics();
    report.search = {statistics.combinations, statistics.evaluatedTuples,
                     pllCount == 4 ? ofFour : ofSix};
}

void addConflicts(ClockReport& report, const ClockTree& tree) {
    if (report.found && std::none_of(report.peripherals.begin(), report.peripherals.end(),
                                     [](const auto& line) { return line.isBeyondAllowed(); }))
        return;
    const ClockConflicts found = findClockConflicts(tree);
    report.hasMoreConflicts = !found.isComplete;
    report.conflicts.emplace();
    for (const ClockConflict& set : found.sets) {
        ClockReport::Conflict& conflict = report.conflicts->emplace_back();
        for (const ClockConflict::Without& without : set.members)
            conflict.members.push_back(
                {tree.peripherals[without.peripheral].name, without.allMet, without.tolerance});
    }
}

std::vector<Diagnostic> warningsOf(const ClockReport& report) {
    constexpr double farOffPpm = 1e5;
    std::vector<Diagnostic> warnings;
    for (const ClockReport::Peripheral& line : report.peripherals)
        if (line.offPpm() > farOffPpm)
            warnings.push_back(
                makeDiagnostic(Severity::Warning, "far-off-request", {},
                               line.request.name + " asks for " +
                                   fixedText(static_cast<double>(line.request.mhz), 4) +
                                   " MHz and " + outcomeText(line)));
    return warnings;
}

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
        const HBSPll* pll = solver.getPll(line.pll);
        if (line.request.enabled && pll != nullptr) {
            line.given = setAgainst(line.request.mhz, suppliedMhz(tree, solver, *solved[i]));
            line.pllMhz = pll->getVcoFreq();
            line.crossDivider = passedCrossDivider(tree, *solved[i], *pll);
        }
        report.peripherals.push_back(std::move(line));
    }
    if (!solver.getTerms().weights.empty()) { // the solver's sum counts the weights
        constexpr double ppm = 1e6;
        double sumPpm = 0.0;
        for (const ClockReport::Peripheral& line : report.peripherals)
            sumPpm += line.countedPpm();
        report.totalError = static_cast<float>(sumPpm / ppm);
        report.weightedError = solver.getTotalRelativeError();
    }
    return report;
}

} // namespace tq
