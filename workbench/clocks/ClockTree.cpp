#include "workbench/clocks/ClockTree.h"

#include <algorithm>
#include <limits>
#include <set>

#include "clocking/HBSClockingAlgo1Pll.h"
#include "clocking/HBSClockingAlgo2Pll.h"
#include "clocking/HBSClockingAlgo4Pll.h"
#include "clocking/HBSClockingAlgo6Pll.h"

namespace tq {

namespace {

/// Reads one tree; keeps the names seen, so that a second use of one is found.
class ClockTreeReader {
public:
    explicit ClockTreeReader(const JsonFile& file) : m_file(file) {}

    ClockTree read() {
        const JsonNode& root = m_file.root();
        m_file.expectKeys(root, {"plls", "reference_mhz", "max_cross_mhz", "allow_cross_domain",
                                 "domains", "peripherals"});
        ClockTree tree;
        tree.pllCount = kind(m_file.require(root, "plls"));
        tree.referenceMhz = positive(m_file.require(root, "reference_mhz"));
        if (const JsonNode* node = root.find("max_cross_mhz"))
            tree.maxCrossMhz = positive(*node);
        tree.allowCrossDomain = flag(root, "allow_cross_domain", false);
        for (const JsonNode& node : m_file.array(m_file.require(root, "domains")))
            tree.domains.push_back(domain(node));
        for (const JsonNode& node : m_file.array(m_file.require(root, "peripherals")))
            tree.peripherals.push_back(peripheral(node));
        if (tree.pllCount > 2)
            expectNoc(root, tree);
        return tree;
    }

private:
    [[nodiscard]] unsigned kind(const JsonNode& node) const {
        const double count = m_file.number(node);
        if (count != 1.0 && count != 2.0 && count != 4.0 && count != 6.0)
            m_file.fail(node.offset, "expected 1, 2, 4 or 6, the number of PLLs of the solver");
        return static_cast<unsigned>(count);
    }

    /// What the library leaves to its caller for the larger trees.
    void expectNoc(const JsonNode& root, const ClockTree& tree) const {
        if (tree.domains.size() != 4)
            m_file.fail(m_file.require(root, "domains").offset, "expected four domains");
        if (tree.domains[1].name != "NOC_DOMAIN")
            m_file.fail(m_file.require(root, "domains").offset,
                        "expected the second domain to be named \"NOC_DOMAIN\"");
        const auto noc =
            std::count_if(tree.peripherals.begin(), tree.peripherals.end(),
                          [](const ClockTree::Peripheral& p) { return p.enabled && p.noc; });
        if (noc != 1)
            m_file.fail(m_file.require(root, "peripherals").offset,
                        "expected one enabled peripheral with \"noc\": true, found " +
                            std::to_string(noc));
    }

    ClockTree::Domain domain(const JsonNode& node) {
        m_file.expectKeys(node, {"name", "plls"});
        ClockTree::Domain domain;
        domain.name = newName(m_file.require(node, "name"), m_domainNames);
        for (const JsonNode& pllNode : m_file.array(m_file.require(node, "plls")))
            domain.plls.push_back(pll(pllNode));
        return domain;
    }

    ClockTree::Pll pll(const JsonNode& node) {
        m_file.expectKeys(node, {"name", "max_mhz", "noc"});
        ClockTree::Pll pll;
        pll.name = newName(m_file.require(node, "name"), m_pllNames);
        if (const JsonNode* limit = node.find("max_mhz"))
            pll.maxMhz = positive(*limit);
        pll.noc = flag(node, "noc", false);
        return pll;
    }

    ClockTree::Peripheral peripheral(const JsonNode& node) {
        m_file.expectKeys(node, {"name", "domain", "mhz", "max_error_percent", "enabled", "noc"});
        ClockTree::Peripheral peripheral;
        peripheral.name = newName(m_file.require(node, "name"), m_peripheralNames);
        const JsonNode& domain = m_file.require(node, "domain");
        peripheral.domain = m_file.string(domain);
        if (m_domainNames.count(peripheral.domain) == 0)
            m_file.fail(domain.offset, "there is no domain \"" + peripheral.domain + "\"");
        constexpr auto unlimited = static_cast<double>(std::numeric_limits<float>::max());
        peripheral.mhz = within(m_file.require(node, "mhz"), unlimited, "from 0 up");
        if (const JsonNode* error = node.find("max_error_percent"))
            peripheral.maxErrorPercent = within(*error, 100.0, "from 0 to 100");
        peripheral.enabled = flag(node, "enabled", true);
        peripheral.noc = flag(node, "noc", false);
        return peripheral;
    }

    /// Names are looked up by their text, where the first of equals would always win. Control
    /// characters would break the tables.
    [[nodiscard]] const std::string& newName(const JsonNode& node, std::set<std::string>& names) {
        const std::string& name = m_file.string(node);
        const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20U; };
        if (name.empty() || std::any_of(name.begin(), name.end(), isControl))
            m_file.fail(node.offset,
                        "expected a name that isn't empty, without control characters");
        if (!names.insert(name).second)
            m_file.fail(node.offset, "a second one named \"" + name + "\"");
        return name;
    }

    [[nodiscard]] bool flag(const JsonNode& object, const char* key, bool fallback) const {
        const JsonNode* node = object.find(key);
        return node == nullptr ? fallback : m_file.boolean(*node);
    }

    /// From 0 up to `most`, which single precision can hold.
    [[nodiscard]] float within(const JsonNode& node, double most, const char* range) const {
        const double value = m_file.number(node);
        if (!(value >= 0.0 && value <= most))
            m_file.fail(node.offset, std::string("expected a number ") + range);
        return static_cast<float>(value);
    }

    [[nodiscard]] float positive(const JsonNode& node) const {
        constexpr auto unlimited = static_cast<double>(std::numeric_limits<float>::max());
        const float value = within(node, unlimited, "above 0");
        if (value == 0.0F)
            m_file.fail(node.offset, "expected a number above 0");
        return value;
    }

    const JsonFile& m_file;
    std::set<std::string> m_domainNames;
    std::set<std::string> m_pllNames;
    std::set<std::string> m_peripheralNames;
};

/// A solver that says when a step begins: each collects the NOC multipliers first.
template <class Solver>
class Observed : public Solver {
public:
    explicit Observed(StepObserver observer) : Solver("tree"), m_observer(std::move(observer)) {}

protected:
    void collectNocMultipliers(const std::vector<hbs_clocking::HBSPeripheral*>& peripherals,
                               hbs_clocking::CandidateMap& candidatesByPeripheral,
                               hbs_clocking::MultiplierSet& allMultipliers) override {
        if (m_observer)
            m_observer(this->getToleranceFector());
        Solver::collectNocMultipliers(peripherals, candidatesByPeripheral, allMultipliers);
    }

private:
    StepObserver m_observer;
};

} // namespace

ClockTree readClockTree(const JsonFile& file) {
    return ClockTreeReader(file).read();
}

std::unique_ptr<hbs_clocking::HBSClockingAlgo> buildClockSolver(const ClockTree& tree,
                                                                const StepObserver& observer) {
    std::unique_ptr<hbs_clocking::HBSClockingAlgo> solver;
    if (tree.pllCount == 1)
        solver = std::make_unique<hbs_clocking::HBSClockingAlgo1Pll>("tree");
    else if (tree.pllCount == 2)
        solver = std::make_unique<hbs_clocking::HBSClockingAlgo2Pll>("tree");
    else if (tree.pllCount == 4)
        solver = std::make_unique<Observed<hbs_clocking::HBSClockingAlgo4Pll>>(observer);
    else
        solver = std::make_unique<Observed<hbs_clocking::HBSClockingAlgo6Pll>>(observer);
    solver->setRefClkFreq(tree.referenceMhz);
    solver->setMaxCrossDomainFreq(tree.maxCrossMhz);
    solver->setAllowCrossDomain(tree.allowCrossDomain);
    for (const ClockTree::Domain& domain : tree.domains) {
        hbs_clocking::HBSPowerDomain* added = solver->addPowerDomain(domain.name);
        for (const ClockTree::Pll& pll : domain.plls)
            added->addPll(pll.name, pll.noc)->setMaxPllFreq(pll.maxMhz);
    }
    for (const ClockTree::Peripheral& p : tree.peripherals) {
        auto* added = solver->addPeripheral(p.name, p.domain, p.mhz, p.enabled);
        added->setMaxAllowedPeripheralError(p.maxErrorPercent);
        added->setNOCPeripheral(p.noc);
    }
    return solver;
}

} // namespace tq
