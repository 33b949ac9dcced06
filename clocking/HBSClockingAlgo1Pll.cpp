#include "clocking/HBSClockingAlgo1Pll.h"

#include <iostream>
#include <span>
#include <vector>

#include "clocking/ClockingArithmetic.h"
#include "clocking/run/BestSetting.h"
#include "clocking/run/DomainCover.h"
#include "clocking/run/PllDividers.h"

namespace hbs_clocking {

namespace {

/// The best of the multipliers, which all cover the peripherals. False for none.
[[nodiscard]] bool solveMultiplierList(SolverRun& run, std::span<const unsigned> multipliers,
                                       StepResult& result) {
    const HBSClockingAlgo& tree = run.tree();
    const std::vector<HBSPeripheral*>& enabled = run.enabled();
    const RunTerms terms = run.terms();
    BestSetting best(run, terms);
    std::vector<DividerChoice> choices(enabled.size());
    for (const unsigned mul : multipliers) {
        const float freqMhz = pllFreqMhz(tree, mul, 0);
        float total = 0.0F;
        bool served = true;
        for (std::size_t i = 0; i < enabled.size() && served; ++i) {
            const float error = findBestDivider({&freqMhz, 1}, enabled[i]->getRequestedFreq(),
                                                run.tolerance(), choices[i]);
            served = !isNoDivider(error) && terms.peripherals[i].deniedPlls % 2 == 0;
            total += error * terms.peripherals[i].weight;
        }
        if (served)
            best.offer(total, {{mul, computeClkoutDiv(tree, mul, 0), 0}}, choices);
    }
    return best.finish(result);
}

} // namespace

HBSClockingAlgo1Pll::HBSClockingAlgo1Pll(const std::string& name) : HBSClockingAlgo(name) {
    m_pllCount = 1;
}

HBSClockingAlgo1Pll::~HBSClockingAlgo1Pll() = default;

bool HBSClockingAlgo1Pll::validateConfig() const {
    const char* fault = nullptr;
    if (m_powerDomains.empty())
        fault = "No power domain added\n";
    else if (m_powerDomains.size() > 1)
        fault = "More than One power domain added\n";
    else
        fault = faultOfPllCounts("More than One PLL added to power domain\n");
    // Callers know the text of a missing PLL for a missing reference too.
    if (fault == nullptr && m_refClkFreq == 0.0F)
        fault = "No PLL added to power domain\n";
    if (fault != nullptr)
        std::cout << fault;
    return fault == nullptr;
}

std::string HBSClockingAlgo1Pll::getPllNameByIndex(unsigned index) const {
    if (index != 0)
        std::cout << "Index out of range\n";
    return getPllNameAt(0, 0);
}

bool HBSClockingAlgo1Pll::runSolution() {
    SolverRun run(*this, m_pllCount);
    if (!run.start())
        return false;
    return run.climbLadder([&] {
        MultiplierBitMap multiplierBits;
        std::vector<unsigned> multipliers;
        if (run.collectCandidates(multiplierBits, multipliers) != run.enabled().size())
            return false;
        const std::vector<unsigned> covering = filterMultipliersForDomain(
            *this, run.allowedMultipliers(0, multipliers), multiplierBits, 0);
        StepResult result;
        if (!solveMultiplierList(run, covering, result))
            return false;
        run.applySolution(result);
        return true;
    });
}

} // namespace hbs_clocking
