#include "clocking/trees.h"

#include <array>
#include <limits>
#include <sstream>

#include "clocking/HBSClockingAlgo1Pll.h"
#include "clocking/HBSClockingAlgo2Pll.h"
#include "clocking/dice.h"

namespace trees {

using namespace hbs_clocking;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr std::array kReferences = {33.333F, 10.0F, 24.0F, 25.0F, 50.0F, 66.667F, 100.0F, 200.0F};
constexpr std::array kLimits = {2000.0F, 2000.0F, 4400.0F, 1000.0F, 533.0F, 250.0F, 0.5F};
constexpr std::array kRequests = {100.0F, 200.0F, 250.0F,  125.0F, 50.0F,  25.0F, 300.0F,
                                  48.0F,  187.5F, 12.288F, 133.0F, 666.6F, 24.0F, 3.072F};
constexpr std::array kOddRequests = {0.0F,  1e-13F, 1e-6F,  0.001F, 3000.0F,
                                     1e30F, -5.0F,  1e-40F, kNan,   0.0F};
constexpr std::array kAllowed = {0.0F, 0.0005F, 0.5F, 3.0F, 30.0F};

float request(Dice& dice) {
    if (dice.oneIn(12))
        return dice.pick(kOddRequests);
    return dice.oneIn(5) ? dice.between(0.5F, 1500.0F) : dice.pick(kRequests);
}

/// The parts behind each other; floats in hexadecimal, which shows every bit.
template <class... Parts>
std::string line(const Parts&... parts) {
    std::ostringstream out;
    out << std::hexfloat;
    ((out << parts << ' '), ...);
    out << '\n';
    return out.str();
}

std::string numbered(std::string name, std::size_t number) {
    return name += std::to_string(number);
}

} // namespace

Tree generate(unsigned seed, unsigned domains) {
    Dice dice(seed);
    Tree tree;
    tree.referenceMhz = dice.oneIn(3) ? dice.between(10.0F, 200.0F) : dice.pick(kReferences);
    tree.allowCross = dice.oneIn(2);
    for (unsigned i = 0; i < domains; ++i)
        tree.limitsMhz.push_back(dice.pick(kLimits));
    const unsigned count = 1 + dice.below(dice.oneIn(4) ? 12 : 4);
    for (unsigned i = 0; i < count; ++i) {
        const int domain = static_cast<int>(dice.below(domains));
        const float allowed = dice.oneIn(10) ? dice.pick(kAllowed) : 100.0F;
        tree.peripherals.push_back({domain, request(dice), allowed, !dice.oneIn(6)});
    }
    return tree;
}

std::unique_ptr<HBSClockingAlgo> build(const Tree& tree) {
    std::unique_ptr<HBSClockingAlgo> solver;
    if (tree.limitsMhz.size() == 1)
        solver = std::make_unique<HBSClockingAlgo1Pll>("tree");
    else
        solver = std::make_unique<HBSClockingAlgo2Pll>("tree");
    solver->setRefClkFreq(tree.referenceMhz);
    solver->setAllowCrossDomain(tree.allowCross);
    for (std::size_t i = 0; i < tree.limitsMhz.size(); ++i) {
        HBSPll* pll = solver->createPllConfig(numbered("PLL", i), numbered("D", i));
        pll->setMaxPllFreq(tree.limitsMhz[i]);
    }
    for (const Peripheral& p : tree.peripherals) {
        const std::string name = numbered("P", solver->getAllPeripherals().size());
        const std::string domain = numbered("D", static_cast<std::size_t>(p.domain));
        solver->addPeripheral(name, domain, p.requestMhz, p.enabled)
            ->setMaxAllowedPeripheralError(p.allowedPercent);
    }
    return solver;
}

std::string summaryLine(bool found, float tolerance, float total) {
    return line("found", found, "tolerance", tolerance, "total", total);
}

std::string pllLine(unsigned mul, unsigned div, double vcoFreq, float errorLimit) {
    return line("pll", mul, div, vcoFreq, "error limit", errorLimit);
}

std::string peripheralLine(const std::string& pllName, unsigned div, double actualFreq) {
    return line("peripheral", pllName, div, actualFreq);
}

std::string describe(const HBSClockingAlgo& solver) {
    std::string text = summaryLine(solver.is_result_found(), solver.getToleranceFector(),
                                   solver.getTotalRelativeError());
    for (const HBSPll* pll : solver.getAllPlls()) {
        const auto domain = static_cast<unsigned>(pll->getPowerDomainIndex());
        text += pll->getCrossDomainDiv() == 0 ? "" : "a cross-domain divider stands!\n";
        text += pllLine(pll->getVcoMul(), pll->getClkoutDiv(), pll->getVcoFreq(),
                        solver.getPowerDomainAt(domain)->getErrorLimit());
    }
    for (const HBSPeripheral* p : solver.getAllPeripherals())
        text += peripheralLine(p->getPllName(), p->getClkoutDiv(), p->getActualFreq());
    return text;
}

} // namespace trees
