// Clock trees.

#include <algorithm>
#include <memory>

#include "bindings/core/Describe.h"
#include "bindings/core/Invoke.h"
#include "bindings/core/Tables.h"
#include "bindings/interface/ClockParts.h"
#include "bindings/interface/Parts.h"
#include "clocking/HBSClockingAlgo1Pll.h"
#include "clocking/HBSClockingAlgo2Pll.h"
#include "clocking/HBSClockingAlgo4Pll.h"
#include "clocking/HBSClockingAlgo6Pll.h"
#include "clocking/HBSClockingAlgoMgr.h"
#include "workbench/clocks/ClockReport.h"
#include "workbench/clocks/ClockTree.h"
#include "workbench/text/TextStream.h"

namespace tq::bindings {

using hbs_clocking::HBSClockingAlgo;
using hbs_clocking::HBSPeripheral;
using hbs_clocking::HBSPll;
using hbs_clocking::HBSPowerDomain;
using hbs_clocking::SearchStatistics;

template <>
struct RecordOf<SearchStatistics> {
    static constexpr const char* name = "SearchStatistics";
    static constexpr auto fields =
        std::tuple{field("combinations", &SearchStatistics::combinations),
                   field("evaluatedTuples", &SearchStatistics::evaluatedTuples)};
};

namespace {

// --- names for messages ---

std::string nameOfTree(const HBSClockingAlgo& tree) {
    return tree.getName();
}

/// The objects of a tree don't know it; the handle's root does.
template <class T>
std::string describeMember(const Object& object) {
    if (object.native == nullptr)
        return object.was;
    const auto& tree = *static_cast<const HBSClockingAlgo*>(object.root->native);
    return "the " + object.type->noun + " " + static_cast<const T*>(object.native)->getName() +
           " of clock tree " + tree.getName();
}

// --- trees ---

std::unique_ptr<HBSClockingAlgo> createTree(const std::string& name, int plls) {
    switch (plls) {
    case 1:
        return std::make_unique<hbs_clocking::HBSClockingAlgo1Pll>(name);
    case 2:
        return std::make_unique<hbs_clocking::HBSClockingAlgo2Pll>(name);
    case 4:
        return std::make_unique<hbs_clocking::HBSClockingAlgo4Pll>(name);
    case 6:
        return std::make_unique<hbs_clocking::HBSClockingAlgo6Pll>(name);
    default:
        raiseArgument("plls: expected 1, 2, 4 or 6, not " + std::to_string(plls));
    }
}

std::unique_ptr<HBSClockingAlgo> readTree(const std::string& path) {
    return buildClockSolver(readClockTree(JsonFile::read(path)));
}

std::vector<HBSClockingAlgo*> getClockingAlgos() {
    const std::unique_ptr<HSTFwdIter<HBSClockingAlgo*>> trees(
        HBSClockingAlgoMgr::getGlobal()->getClockingAlgos());
    std::vector<HBSClockingAlgo*> all;
    while (trees->isValid())
        all.push_back(trees->next());
    return all;
}

bool isOfManager(const HBSClockingAlgo& tree) {
    const auto all = getClockingAlgos();
    return std::find(all.begin(), all.end(), &tree) != all.end();
}

/// The manager deletes by name, and of several trees of one name the first.
void expectDeletable(const HBSClockingAlgo& tree) {
    if (isOfManager(tree) &&
        HBSClockingAlgoMgr::getGlobal()->getClockingAlgo(tree.getName()) != &tree)
        throw ScriptError(Failure::Kind::Command, "another clock tree of the list is named " +
                                                      tree.getName() + " too: delete that first");
}

void destroyTree(HBSClockingAlgo* tree) {
    if (isOfManager(*tree))
        HBSClockingAlgoMgr::getGlobal()->deleteClockingAlgo(tree);
    else
        delete tree;
}

bool runSolution(HBSClockingAlgo& tree, int threads) {
    const ThreadCount count(threads);
    return tree.runSolution();
}

std::vector<HBSPowerDomain*> allPowerDomains(HBSClockingAlgo& tree) {
    std::vector<HBSPowerDomain*> domains;
    for (unsigned i = 0; HBSPowerDomain* domain = tree.getPowerDomainAt(i); ++i)
        domains.push_back(domain);
    return domains;
}

HBSPeripheral* addPeripheral(HBSClockingAlgo& tree, const std::string& name,
                             const std::string& domain, float freqMhz, bool enabled) {
    if (tree.getPowerDomain(domain) == nullptr)
        throw ScriptError(Failure::Kind::NotFound, "clock tree " + tree.getName() +
                                                       " has no power domain \"" + domain + "\"");
    return tree.addPeripheral(name, domain, freqMhz, enabled);
}

template <class T>
T* expectFound(T* found, const HBSClockingAlgo& tree, const char* noun, const std::string& name) {
    if (found == nullptr)
        throw ScriptError(Failure::Kind::NotFound,
                          "clock tree " + tree.getName() + " has no " + noun + " \"" + name + "\"");
    return found;
}

HBSPeripheral* getPeripheral(HBSClockingAlgo& tree, const std::string& name) {
    return expectFound(tree.getPeripheral(name), tree, "peripheral", name);
}

HBSPll* getPll(HBSClockingAlgo& tree, const std::string& name) {
    return expectFound(tree.getPll(name), tree, "PLL", name);
}

HBSPowerDomain* getPowerDomain(HBSClockingAlgo& tree, const std::string& name) {
    return expectFound(tree.getPowerDomain(name), tree, "power domain", name);
}

std::string clockTables(HBSClockingAlgo& tree) {
    TextStream out;
    printClockTables(makeClockReport(treeOf(tree), tree), out);
    return out.str();
}

std::string clockJson(HBSClockingAlgo& tree) {
    TextStream out;
    printClockJson(makeClockReport(treeOf(tree), tree), out);
    return out.str();
}

std::string clockPicture(HBSClockingAlgo& tree) {
    if (!tree.is_result_found())
        throw ScriptError(Failure::Kind::Command,
                          "clock tree " + tree.getName() + " has no result to draw");
    TextStream out;
    printClockPicture(makeClockReport(treeOf(tree), tree), tree.getRefClkFreq(), out);
    return out.str();
}

// --- the manager ---

HBSClockingAlgo* addClockingAlgo(const std::string& name, int kind) {
    if (kind != 1 && kind != 2) // the manager would enter a null pointer
        raiseArgument("kind: expected 1 or 2, the number of PLLs, not " + std::to_string(kind));
    return HBSClockingAlgoMgr::getGlobal()->addClockingAlgo(name, kind);
}

HBSClockingAlgo* getClockingAlgo(const std::string& name) {
    return HBSClockingAlgoMgr::getGlobal()->getClockingAlgo(name);
}

void describeTree(Interface& interface) {
    using T = HBSClockingAlgo;
    Describe<T> tree(
        "HBSClockingAlgo", "clock tree", "clock tree",
        "A clock tree of 1, 2, 4 or 6 PLLs in power domains, and its solver. Frequencies "
        "are MHz; errors are fractions, but the allowed error of a peripheral is percent.");
    tree.called<&nameOfTree>()
        .deletableBy<&destroyTree, &expectDeletable>()
        .tables(kTreeTables)
        .constructor<&createTree>({required("name"), required("plls")},
                                  "An empty tree for a solver of 1, 2, 4 or 6 PLLs. Declare the "
                                  "domains in the order that the solver expects.")
        .property<&T::getName>("name", "The tree's name.")
        .property<&T::getRefClkFreq, &T::setRefClkFreq>("refClkFreq", "Reference clock in MHz.")
        .property<&T::getMaxCrossDomainFreq, &T::setMaxCrossDomainFreq>(
            "maxCrossDomainFreq", "Highest frequency in MHz of a clock that crosses a domain.")
        .property<&T::getAllowCrossDomain, &T::setAllowCrossDomain>(
            "allowCrossDomain", "Whether domain 1 of a 2-PLL tree may take PLL 0.")
        .property<&T::is_result_found>("is_result_found", "Whether the last run found a solution.")
        .property<&T::getToleranceFector>("toleranceFector",
                                          "The tolerance that succeeded, as a fraction.")
        .property<&T::getTotalRelativeError>("totalRelativeError",
                                             "Sum of the relative errors; 1000 without a result.")
        .property<&T::getSearchStatistics>("searchStatistics",
                                           "How the last search of 4 or 6 PLLs went.")
        .property<&allPowerDomains>("powerDomains", "The power domains in their order.")
        .property<&T::getAllPlls>("allPlls", "All PLLs, domain by domain.")
        .property<&T::getAllPeripherals>("allPeripherals", "All peripherals in order of addition.")
        .property<&T::getEnabledPeripherals>("enabledPeripherals",
                                             "The peripherals that take part in a run.")
        .maker<&T::addPowerDomain>("addPowerDomain", {required("name")},
                                   "A new power domain; the solvers go by their order.")
        .maker<&T::createPllConfig>("createPllConfig",
                                    {required("pllName"), required("domainName")},
                                    "A new PLL in a domain, which is made when it is absent.")
        .maker<&addPeripheral>("addPeripheral",
                               {required("name"), required("domainName"), required("freq"),
                                optional("enabled", {true})},
                               "A new peripheral that asks for a frequency in MHz.")
        .maker<&getPeripheral>("getPeripheral", {required("name")},
                               "The first peripheral of that name.")
        .maker<&getPll>("getPll", {required("name")}, "The first PLL of that name.")
        .maker<&getPowerDomain>("getPowerDomain", {required("name")},
                                "The first power domain of that name.")
        .method<&T::validateConfig>("validateConfig", {},
                                    "Whether the tree has the shape that its solver expects; "
                                    "messages say what is wrong.",
                                    Mode::Slow)
        .method<&runSolution>("runSolution", {optional("threads", {std::int64_t{1}})},
                              "Solves the tree. True exactly when a solution was found and written "
                              "to the PLLs and peripherals. Near ties are decided by the number of "
                              "threads. Can be interrupted; the tree is then as it was.",
                              Mode::Search)
        .method<&T::resetResults>("resetResults", {}, "Clears the results.")
        .method<&clockTables>("tables", {}, "The result as aligned tables.", Mode::Slow)
        .method<&clockJson>("json", {}, "The result as a JSON document.", Mode::Slow)
        .method<&clockPicture>("svg", {}, "The solved tree as an SVG picture.", Mode::Slow);
    describeClockAdviser(tree);
    interface.add(infoOf<T>());
}

void describePll(Interface& interface) {
    using T = HBSPll;
    Describe<T>("HBSPll", "clock pll", "PLL", "One PLL of a clock tree: its limit and its result.")
        .tables(kPllTables)
        .property<&T::getName, &T::setName>("name", "The PLL's name.")
        .property<&T::getPowerDomainName>("powerDomainName", "Name of its power domain.")
        .property<&T::getMaxPllFreq, &T::setMaxPllFreq>(
            "maxPllFreq", "Highest frequency in MHz that may leave the PLL.")
        .property<&T::isNOCpll, &T::setNOCpll>("isNOCpll",
                                               "Kept for the caller; no solver reads it.")
        .property<&T::getVcoMul>("vcoMul", "Feedback multiplier; 0 without a result.")
        .property<&T::getClkoutDiv>("clkoutDiv", "Output divider; 0 without a result.")
        .property<&T::getCrossDomainDiv>("crossDomainDiv", "Cross-domain divider; 0 for none.")
        .property<&T::getVcoFreq>("vcoFreq", "Frequency in MHz behind the output divider.");
    infoOf<T>().describe = describeMember<T>;
    interface.add(infoOf<T>());
}

void describePeripheral(Interface& interface) {
    using T = HBSPeripheral;
    Describe<T>("HBSPeripheral", "clock peripheral", "peripheral",
                "One peripheral of a clock tree: the frequency it asks for, and what it got.")
        .tables(kPeripheralTables)
        .property<&T::getName, &T::setName>("name", "The peripheral's name.")
        .property<&T::getRequestedFreq, &T::setRequestedFreq>("requestedFreq",
                                                              "The wanted frequency in MHz.")
        .property<&T::isEnabled, &T::setEnabled>("isEnabled", "Whether it takes part in a run.")
        .property<&T::isNOCPeripheral, &T::setNOCPeripheral>(
            "isNOCPeripheral", "Whether it sets the NOC clock of a 4- or 6-PLL tree.")
        .property<&T::getPowerDomainName, &T::setPowerDomain>(
            "powerDomain", "Name of its power domain. Setting it changes what is read back alone: "
                           "a peripheral can't be moved.")
        .property<&T::getMaxAllowedPeripheralError, &T::setMaxAllowedPeripheralError>(
            "maxAllowedPeripheralError", "The error in percent that it bears, at most 100.")
        .property<&T::getPllName>("pllName", "The PLL chosen; empty without a result.")
        .property<&T::getClkoutDiv>("clkoutDiv", "Its own divider; 0 without a result.")
        .property<&T::getActualFreq>("actualFreq", "The frequency in MHz that it got.");
    infoOf<T>().describe = describeMember<T>;
    interface.add(infoOf<T>());
}

void describeDomain(Interface& interface) {
    using T = HBSPowerDomain;
    Describe<T>("HBSPowerDomain", "clock domain", "power domain",
                "A group of PLLs and peripherals with one frequency limit.")
        .property<&T::getName>("name", "The domain's name.")
        .property<&T::getIndex>("index", "Its position in the tree.")
        .property<&T::getMaxPllFreq>("maxPllFreq", "The largest limit of its PLLs in MHz.")
        .property<&T::getErrorLimit>("errorLimit",
                                     "The error, as a fraction, that the last run accepted.")
        .property<&T::getPllList>("pllList", "Its PLLs in order of addition.")
        .maker<&T::addPll>("addPll", {required("pllName"), optional("isNoc", {false})},
                           "A new PLL of this domain.")
        .method<&T::getPll>("getPll", {required("name")}, "The first PLL of that name, or none.");
    infoOf<T>().describe = describeMember<T>;
    interface.add(infoOf<T>());
}

} // namespace

void describeClocks(Interface& interface) {
    describeTree(interface);
    describePll(interface);
    describePeripheral(interface);
    describeDomain(interface);
    describeClockReports(interface);
    Island island{"clock", "Clock trees: made by hand, or read from files.", {}};
    island.functions.push_back(function<&readTree>(
        "readClockTree", {required("path")},
        "The tree of a clock tree file, the JSON that hbs clocks reads.", Mode::Slow));
    island.functions.push_back(function<&addClockingAlgo>(
        "addClockingAlgo", {required("name"), required("kind")},
        "A tree of 1 or 2 PLLs in the list that all of the process share; it stays there until it "
        "is deleted."));
    island.functions.push_back(
        function<&getClockingAlgo>("getClockingAlgo", {required("name")},
                                   "The first tree of that name in the list, or none."));
    island.functions.push_back(
        function<&getClockingAlgos>("getClockingAlgos", {}, "The trees of the list."));
    interface.add(std::move(island));
}

} // namespace tq::bindings
