#include "clocking/trees46.h"

#include <array>
#include <cmath>

#include "clocking/HBSClockingAlgo4Pll.h"
#include "clocking/HBSClockingAlgo6Pll.h"
#include "clocking/dice.h"

namespace trees46 {

using namespace hbs_clocking;
using trees::Dice;

namespace {

constexpr std::array kReferences = {33.333F, 10.0F, 24.0F,  27.0F, 38.4F,
                                    60.0F,   80.0F, 125.0F, 200.0F};
constexpr std::array kRound = {25.0F,  33.333F, 50.0F,  66.667F, 100.0F, 125.0F,
                               150.0F, 200.0F,  250.0F, 300.0F,  400.0F, 500.0F};
constexpr std::array kOdd = {0.0F, 1e-3F, 1e-9F, 2500.0F, 1e9F, 24.576F};
constexpr std::array kLimits = {400.0F, 800.0F, 1000.0F, 1200.0F, 1600.0F, 2000.0F, 3000.0F};
constexpr std::array kCrossLimits = {250.0F, 500.0F, 800.0F, 1000.0F, 1600.0F};
constexpr std::array kOddNocRequests = {333.0F, 1200.0F, 0.0F, 9000.0F, 720.0F};
constexpr std::array kAllowed = {0.0F, 0.05F, 1.0F, 30.0F};

float requestOf(Dice& dice, Kind kind) {
    const float uneven = std::exp(dice.between(std::log(5.0F), std::log(800.0F)));
    switch (kind) {
    case Kind::Odd:
        return dice.oneIn(20) ? dice.pick(kOdd) : dice.oneIn(2) ? uneven : dice.pick(kRound);
    case Kind::Plain:
    case Kind::Rings:
        return dice.oneIn(2) ? uneven : dice.pick(kRound);
    default:
        return dice.pick(kRound);
    }
}

/// Mostly what some multiplier gives exactly; else the search has nothing to begin with.
float nocRequestOf(Dice& dice, float refMhz) {
    const unsigned lowest = static_cast<unsigned>(std::ceil(2160.0F / refMhz));
    const float mul = static_cast<float>(lowest + dice.below(lowest));
    return refMhz * mul / dice.pick(std::array{1.0F, 2.0F, 4.0F});
}

void addDomains(reference46::Tree& tree, Dice& dice, bool sixPlls, Kind kind) {
    for (const char* name : {"LOW", "NOC_DOMAIN", "MID", "HIGH"}) {
        const bool two = sixPlls && tree.domains.size() >= 2;
        const bool plain = kind == Kind::Plain;
        tree.domains.push_back({name, {plain ? 2000.0F : dice.pick(kLimits)}});
        if (two)
            tree.domains.back().pllLimitsMhz.push_back(dice.pick(kLimits));
    }
}

int domainOf(Dice& dice, unsigned emptyDomain) {
    constexpr std::array<int, 3> domains = {0, 2, 3};
    const unsigned place = dice.below(3);
    return domains[place == emptyDomain ? (place + 1) % 3 : place];
}

} // namespace

reference46::Tree generate(unsigned seed, bool sixPlls, unsigned peripherals, Kind kind) {
    Dice dice(seed * 2 + (sixPlls ? 1 : 0));
    reference46::Tree tree;
    if (kind != Kind::Plain) {
        // High references have few multipliers, which keeps the literal search short.
        tree.refMhz = dice.oneIn(3) ? dice.between(10.0F, 200.0F) : dice.pick(kReferences);
        tree.maxCrossMhz = dice.pick(kCrossLimits);
    }
    addDomains(tree, dice, sixPlls, kind);
    const bool odd = kind == Kind::Odd;
    tree.peripherals.push_back({"NOC", 1, nocRequestOf(dice, tree.refMhz), true, true});
    if (odd && dice.oneIn(4))
        tree.peripherals[0].requestMhz = dice.pick(kOddNocRequests);
    const unsigned emptyDomain = odd ? dice.below(6) : 3;
    for (unsigned i = 1; i < peripherals; ++i) {
        reference46::Peripheral peripheral;
        peripheral.domain = domainOf(dice, emptyDomain);
        peripheral.requestMhz = requestOf(dice, kind);
        if (odd && dice.oneIn(12))
            peripheral.name = dice.oneIn(2) ? "PSM_REF_CTRL" : "ASU_REF_CTRL";
        peripheral.enabled = !odd || !dice.oneIn(8);
        if (odd && dice.oneIn(40))
            peripheral.allowedPercent = dice.pick(kAllowed);
        tree.peripherals.push_back(peripheral);
    }
    if (kind == Kind::NearTies)
        tree.peripherals.push_back({"", domainOf(dice, 3), dice.between(2500.0F, 4000.0F)});
    return tree;
}

std::unique_ptr<HBSClockingAlgo> build(const reference46::Tree& tree) {
    static unsigned built = 0;
    const std::string prefix = "T" + std::to_string(built++) + "_";
    std::unique_ptr<HBSClockingAlgo> solver;
    if (tree.sixPlls())
        solver = std::make_unique<HBSClockingAlgo6Pll>("tree");
    else
        solver = std::make_unique<HBSClockingAlgo4Pll>("tree");
    solver->setRefClkFreq(tree.refMhz);
    solver->setMaxCrossDomainFreq(tree.maxCrossMhz);
    unsigned pllCount = 0;
    for (const reference46::Domain& domain : tree.domains)
        for (const float limit : domain.pllLimitsMhz)
            solver->createPllConfig("PLL" + std::to_string(pllCount++), domain.name)
                ->setMaxPllFreq(limit);
    for (std::size_t i = 0; i < tree.peripherals.size(); ++i) {
        const reference46::Peripheral& peripheral = tree.peripherals[i];
        const bool barred = peripheral.name == "PSM_REF_CTRL" || peripheral.name == "ASU_REF_CTRL";
        HBSPeripheral* added =
            solver->addPeripheral(barred ? peripheral.name : prefix + std::to_string(i),
                                  tree.domains[static_cast<std::size_t>(peripheral.domain)].name,
                                  peripheral.requestMhz, peripheral.enabled);
        added->setNOCPeripheral(peripheral.noc);
        added->setMaxAllowedPeripheralError(peripheral.allowedPercent);
    }
    return solver;
}

reference46::Solution read(const HBSClockingAlgo& solver) {
    reference46::Solution solution;
    solution.found = solver.is_result_found();
    solution.tolerance = solver.getToleranceFector();
    solution.total = solver.getTotalRelativeError();
    if (!solution.found)
        return solution;
    for (const HBSPll* pll : solver.getAllPlls())
        solution.plls.push_back({pll->getVcoMul(), pll->getClkoutDiv(), pll->getCrossDomainDiv()});
    for (const HBSPeripheral* peripheral : solver.getEnabledPeripherals())
        solution.peripherals.push_back(
            {static_cast<unsigned>(std::stoul(peripheral->getPllName().substr(3))),
             peripheral->getClkoutDiv()});
    return solution;
}

} // namespace trees46
