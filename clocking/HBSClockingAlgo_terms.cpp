// What the terms of a search leave to it.

#include "clocking/HBSClockingAlgo.h"

#include <algorithm>
#include <array>

#include "clocking/ClockingArithmetic.h"
#include "clocking/search/RunTerms.h"

namespace hbs_clocking {

bool HBSClockingAlgo::usesStore() const {
    return m_sharesSolutions && m_terms.multipliers.empty() && m_terms.sources.empty() &&
           m_terms.weights.empty() && m_terms.settings == 0;
}

RunTerms HBSClockingAlgo::runTerms(const std::vector<HBSPeripheral*>& enabled) const {
    return {m_terms, *this, m_pllCount, enabled};
}

std::vector<unsigned> HBSClockingAlgo::allowedMultipliers(unsigned pll,
                                                          std::span<const unsigned> list) const {
    constexpr unsigned nocPll = 1;
    std::vector<unsigned> allowed(list.begin(), list.end());
    if (m_terms.multipliers.empty())
        return allowed;
    const auto own = m_terms.multipliers.find(getPllNameByIndex(pll));
    if (own == m_terms.multipliers.end())
        return allowed;
    const float vcoHz = static_cast<float>(own->second) * m_refClkFreq * kHzPerMhz;
    if (definitelyGreater(vcoHz, kMaxVcoHz, kMargin) || definitelyLess(vcoHz, kMinVcoHz, kMargin))
        return {};
    const bool isListed = std::find(list.begin(), list.end(), own->second) != list.end();
    if (m_pllCount > 2 && pll == nocPll && !isListed)
        return {};
    return {own->second};
}

bool HBSClockingAlgo::tellApart(unsigned pllA, unsigned pllB) const {
    if (m_terms.multipliers.empty() && m_terms.sources.empty())
        return false;
    const std::array names = {getPllNameByIndex(pllA), getPllNameByIndex(pllB)};
    return std::any_of(names.begin(), names.end(), [this](const std::string& name) {
        return m_terms.multipliers.count(name) != 0 ||
               std::any_of(m_terms.sources.begin(), m_terms.sources.end(),
                           [&name](const auto& source) { return source.second == name; });
    });
}

unsigned HBSClockingAlgo::firstPllOf(unsigned domainIndex) const {
    unsigned pll = 0;
    for (unsigned i = 0; i < domainIndex && i < m_powerDomains.size(); ++i)
        pll += static_cast<unsigned>(m_powerDomains[i]->getPllCount());
    return pll;
}

ClockSetting HBSClockingAlgo::settingOf(const std::vector<HBSPeripheral*>& enabled,
                                        const PeripheralResult& peripheralResult,
                                        const PllResult& pllResult) const {
    ClockSetting setting;
    setting.sum = m_totalRelativeError;
    for (unsigned pll = 0; pll < m_pllCount; ++pll) {
        const auto config = pllResult.find(getPllNameByIndex(pll));
        if (config != pllResult.end())
            setting.plls.push_back({config->second[0], config->second[1],
                                    config->second.size() > 2 ? config->second[2] : 0});
    }
    for (HBSPeripheral* peripheral : enabled)
        if (const auto choice = peripheralResult.find(peripheral); choice != peripheralResult.end())
            setting.peripherals.push_back(choice->second);
    return setting;
}

void HBSClockingAlgo::keepSettings(SettingList& list, const ClockSetting& answer) {
    if (m_terms.settings != 0)
        m_settings = list.take(answer);
}

} // namespace hbs_clocking
