// What the workbench tells of a clock tree: reports, checks, sweeps, conflicts and alternatives.

#include <charconv>
#include <iterator>
#include <map>
#include <memory>
#include <optional>

#include "HPAParamMgr.h"
#include "bindings/core/Invoke.h"
#include "bindings/interface/ClockParts.h"
#include "bindings/interface/ClockReports.h"
#include "clocking/HBSClockingAlgo1Pll.h"
#include "clocking/HBSClockingAlgo2Pll.h"
#include "clocking/HBSClockingAlgo4Pll.h"
#include "workbench/clocks/ClockCheck.h"
#include "workbench/clocks/ClockRun.h"
#include "workbench/clocks/ClockTerms.h"
#include "workbench/files/InputError.h"
#include "workbench/text/TextStream.h"

namespace tq::bindings {

using hbs_clocking::HBSClockingAlgo;
using hbs_clocking::HBSPeripheral;
using hbs_clocking::HBSPll;
using hbs_clocking::HBSPowerDomain;

struct CheckRow {
    bool holds = false;
    double sum = 0.0;
    std::optional<double> bestSum;
    std::vector<Finding> findings;
};
template <>
struct RecordOf<CheckRow> {
    static constexpr const char* name = "ClockCheck";
    static constexpr auto fields =
        std::tuple{field("holds", &CheckRow::holds), field("sum", &CheckRow::sum),
                   field("bestSum", &CheckRow::bestSum), field("findings", &CheckRow::findings)};
};

namespace {

constexpr const char* kThreads = "general.maxThreads";

/// The number of PLLs that the tree's solver is for; the tree may have others as yet.
unsigned pllCountOf(const HBSClockingAlgo& tree) {
    if (dynamic_cast<const hbs_clocking::HBSClockingAlgo1Pll*>(&tree) != nullptr)
        return 1;
    if (dynamic_cast<const hbs_clocking::HBSClockingAlgo2Pll*>(&tree) != nullptr)
        return 2;
    return dynamic_cast<const hbs_clocking::HBSClockingAlgo4Pll*>(&tree) != nullptr ? 4 : 6;
}

/// The name of the domain that the solvers count it in: the one that reads back may be another.
std::string domainOf(const HBSClockingAlgo& tree, const HBSPeripheral& peripheral) {
    const auto index = static_cast<unsigned>(peripheral.getPowerDomainIndex());
    const HBSPowerDomain* const domain = tree.getPowerDomainAt(index);
    if (domain == nullptr)
        throw ScriptError(Failure::Kind::Command, "the peripheral " + peripheral.getName() +
                                                      " of clock tree " + tree.getName() +
                                                      " has no power domain");
    return domain->getName();
}

/// The tree as a file would describe it, if its solver takes it.
ClockTree solvableTree(HBSClockingAlgo& tree) {
    ClockTree description = treeOf(tree);
    const std::string fault = faultOfClockTree(description);
    if (!fault.empty())
        throw ScriptError(Failure::Kind::Command, "clock tree " + tree.getName() + ": " + fault);
    return description;
}

ScriptReport reportOf(HBSClockingAlgo& tree, const ClockTree& description,
                      const HBSClockingAlgo& solver) {
    return {makeClockReport(description, solver), description.referenceMhz, tree.getName()};
}

std::unique_ptr<ScriptReport> report(HBSClockingAlgo& tree) {
    return std::make_unique<ScriptReport>(reportOf(tree, treeOf(tree), tree));
}

std::string textOf(double number) {
    char text[32];
    return {text, std::to_chars(std::begin(text), std::end(text), number).ptr};
}

/// Runs what takes the words of an option, and complains of them without its dashes.
template <class Read>
auto readWords(Read read) {
    try {
        return read();
    } catch (const InputError& error) {
        const std::string text = error.what();
        raiseArgument(text.substr(text.starts_with("--") ? 2 : 0));
    }
}

hbs_clocking::SearchTerms termsOf(const ClockTree& tree, const std::vector<std::string>& pins,
                                  const std::map<std::string, double>& weights,
                                  unsigned alternatives) {
    constexpr unsigned most = 100;
    if (alternatives > most)
        raiseArgument("alternatives: expected at most " + std::to_string(most));
    hbs_clocking::SearchTerms terms;
    for (const std::string& pin : pins)
        addPin(tree, pin, terms);
    for (const auto& [peripheral, weight] : weights)
        addWeight(tree, peripheral + "=" + textOf(weight), terms);
    terms.settings = alternatives;
    return terms;
}

void sayAll(const std::vector<std::string>& lines) {
    const DiagnosticSink sink = messageSink();
    for (const std::string& line : lines)
        sink(makeDiagnostic(Severity::Warning, "printed", {}, line));
}

std::unique_ptr<ScriptReport> runTree(HBSClockingAlgo& tree, int threads,
                                      const std::vector<std::string>& pins,
                                      const std::map<std::string, double>& weights,
                                      unsigned alternatives, bool conflicts) {
    const ThreadCount count(threads);
    const ClockTree description = solvableTree(tree);
    const auto terms = readWords([&] { return termsOf(description, pins, weights, alternatives); });
    if (conflicts && !pins.empty())
        raiseArgument("conflicts: those of a tree with pins can't be found");
    const ClockRun run = runClockTree(description, {}, nullptr, terms);
    sayAll(run.said);
    auto result = std::make_unique<ScriptReport>(reportOf(tree, description, *run.solver));
    if (conflicts)
        addConflicts(result->report, description);
    addAlternatives(result->report, description, *run.solver);
    return result;
}

JsonFile ownSetting(HBSClockingAlgo& tree, const ClockTree& description) {
    if (!tree.is_result_found())
        throw ScriptError(Failure::Kind::Command,
                          "clock tree " + tree.getName() + " has no result to check");
    TextStream text;
    printClockJson(makeClockReport(description, tree), text);
    return JsonFile::parse("result of " + tree.getName(), text.str());
}

CheckRow checkTree(HBSClockingAlgo& tree, const std::string& settingFile, bool best) {
    const ClockTree description = solvableTree(tree);
    ClockCheck check =
        checkClockSetting(description, settingFile.empty() ? ownSetting(tree, description)
                                                           : JsonFile::read(settingFile));
    if (best)
        addBestSum(check, description);
    return {check.holds(), check.sum, check.bestSum, findingsOf(check.findings.all())};
}

std::unique_ptr<ScriptSweep> runSweep(HBSClockingAlgo& tree, const std::string& text) {
    const ClockTree description = solvableTree(tree);
    ClockSweep sweep = readWords([&] { return readClockSweep(description, text); });
    std::vector<SweepPoint> points = runClockSweep(description, sweep);
    return std::make_unique<ScriptSweep>(
        ScriptSweep{std::move(sweep), std::move(points), tree.getName()});
}

} // namespace

ThreadCount::ThreadCount(int threads)
    : m_before(HPAParamMgr::getParamMgr()->getValueAsInt(kThreads)) {
    if (threads < 1)
        raiseArgument("threads: expected 1 or more");
    HPAParamMgr::getParamMgr()->setValue(kThreads, std::to_string(threads));
}

ThreadCount::~ThreadCount() {
    HPAParamMgr::getParamMgr()->setValue(kThreads, std::to_string(m_before));
}

ClockTree treeOf(HBSClockingAlgo& tree) {
    ClockTree description;
    description.pllCount = pllCountOf(tree);
    description.referenceMhz = tree.getRefClkFreq();
    description.maxCrossMhz = tree.getMaxCrossDomainFreq();
    description.allowCrossDomain = tree.getAllowCrossDomain();
    for (unsigned i = 0; const HBSPowerDomain* domain = tree.getPowerDomainAt(i); ++i) {
        ClockTree::Domain& copy = description.domains.emplace_back();
        copy.name = domain->getName();
        for (const HBSPll* pll : domain->getPllList())
            copy.plls.push_back({pll->getName(), pll->getMaxPllFreq(), pll->isNOCpll()});
    }
    for (const HBSPeripheral* p : tree.getAllPeripherals())
        description.peripherals.push_back({p->getName(), domainOf(tree, *p), p->getRequestedFreq(),
                                           p->getMaxAllowedPeripheralError(), p->isEnabled(),
                                           p->isNOCPeripheral()});
    return description;
}

void describeClockAdviser(Describe<HBSClockingAlgo>& tree) {
    tree.method<&report>("report", {}, "What the last run found, as an object of its own.",
                         Mode::Slow)
        .method<&runTree>(
            "runClockTree",
            {optional("threads", {std::int64_t{1}}), optional("pins", {List{}}),
             optional("weights", {Dict{}}), optional("alternatives", {std::int64_t{0}}),
             optional("conflicts", {false})},
            "Solves a copy of the tree and reports on it; the tree stays as it is. Pins keep a "
            "multiplier or a source: \"PLL0.multiplier=90\", \"UART0.source=PLL1\". A weight says "
            "how often a peripheral's error counts. With alternatives the best settings are "
            "listed, with conflicts the smallest sets of requests that can't be met together. Can "
            "be interrupted.",
            Mode::Search)
        .method<&checkTree>(
            "checkClockSetting",
            {optional("settingFile", {std::string()}), optional("best", {false})},
            "Checks a setting against every rule of the tree, from the arithmetic alone: that of a "
            "file, the JSON that hbs clocks writes, or the tree's own result. With best the sum of "
            "the solver's answer is there to compare with.",
            Mode::Search)
        .method<&runSweep>(
            "runClockSweep", {required("sweep")},
            "Solves copies of the tree for several values: \"UART0.mhz=10:50:20\". Subjects are "
            "reference, max_cross, PLL.max, PERIPHERAL.mhz and PERIPHERAL.max_error; values are "
            "MHz and percent, as VALUE,FIRST:LAST:STEP,... Can be interrupted.",
            Mode::Search);
}

} // namespace tq::bindings
