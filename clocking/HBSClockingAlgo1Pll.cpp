#include "clocking/HBSClockingAlgo1Pll.h"

#include <iostream>

#include "clocking/ClockingArithmetic.h"
#include "clocking/search/RunTerms.h"

namespace hbs_clocking {

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
    const std::vector<HBSPeripheral*> enabled = startRun();
    if (enabled.empty())
        return false;
    return climbLadder([&] {
        MultiplierBitMap multiplierBits;
        std::vector<unsigned> multipliers;
        if (!collectCandidates(enabled, multiplierBits, multipliers))
            return false;
        const std::vector<unsigned> covering =
            filterMultipliersForDomain(allowedMultipliers(0, multipliers), multiplierBits, 0);
        PeripheralResult peripheralResult;
        PllResult pllResult;
        if (!solveMultiplierList(enabled, covering, peripheralResult, pllResult))
            return false;
        applySolution(peripheralResult, pllResult);
        return true;
    });
}

bool HBSClockingAlgo1Pll::solveMultiplierList(const std::vector<HBSPeripheral*>& enabled,
                                              std::span<const unsigned> multipliers,
                                              PeripheralResult& peripheralResult,
                                              PllResult& pllResult) {
    float best = kWorstTotalError;
    const RunTerms terms = runTerms(enabled);
    SettingList list(m_terms.settings);
    std::vector<DividerChoice> choices(enabled.size());
    for (const unsigned mul : multipliers) {
        const float freqMhz = pllFreqMhz(mul, 0);
        float total = 0.0F;
        bool served = true;
        for (std::size_t i = 0; i < enabled.size() && served; ++i) {
            const float error =
                findBestDivider({&freqMhz, 1}, enabled[i]->getRequestedFreq(), choices[i]);
            served = !isNoDivider(error) && terms.peripherals[i].deniedPlls % 2 == 0;
            total += error * terms.peripherals[i].weight;
        }
        if (served)
            list.add({total * terms.scale, {{mul, computeClkoutDiv(mul, 0), 0}}, choices});
        if (!served || !definitelyLess(total, best, kMargin))
            continue;
        best = total;
        m_totalRelativeError = total * terms.scale;
        for (std::size_t i = 0; i < enabled.size(); ++i)
            peripheralResult[enabled[i]] = choices[i];
        pllResult = {{getPllNameByIndex(0), {mul, computeClkoutDiv(mul, 0)}}};
    }
    if (peripheralResult.empty())
        return false;
    keepSettings(list, settingOf(enabled, peripheralResult, pllResult));
    return true;
}

} // namespace hbs_clocking
