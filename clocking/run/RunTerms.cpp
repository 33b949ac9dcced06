#include "clocking/run/RunTerms.h"

#include <algorithm>

#include "clocking/ClockingArithmetic.h"

namespace hbs_clocking {

namespace {

[[nodiscard]] bool isSameWay(const ClockSetting& a, const ClockSetting& b) {
    const auto sameMultiplier = [](const ClockSetting::Pll& x, const ClockSetting::Pll& y) {
        return x.multiplier == y.multiplier;
    };
    const auto sameSource = [](const DividerChoice& x, const DividerChoice& y) {
        return x.first == y.first;
    };
    return std::equal(a.plls.begin(), a.plls.end(), b.plls.begin(), b.plls.end(), sameMultiplier) &&
           std::equal(a.peripherals.begin(), a.peripherals.end(), b.peripherals.begin(),
                      b.peripherals.end(), sameSource);
}

} // namespace

RunTerms::RunTerms(const SearchTerms& terms, const HBSClockingAlgo& solver, unsigned pllCount,
                   const std::vector<HBSPeripheral*>& enabled)
    : peripherals(enabled.size()) {
    if (!terms.weights.empty())
        scale = 0.0F;
    for (std::size_t i = 0; i < enabled.size(); ++i) {
        const auto source = terms.sources.find(enabled[i]->getName());
        if (source != terms.sources.end())
            for (unsigned pll = 0; pll < pllCount; ++pll)
                if (solver.getPllNameByIndex(pll) != source->second)
                    peripherals[i].deniedPlls |= static_cast<std::uint8_t>(1U << pll);
        const auto weight = terms.weights.find(enabled[i]->getName());
        if (weight != terms.weights.end())
            peripherals[i].weight = weight->second;
        scale = std::max(scale, peripherals[i].weight);
    }
    // Divided by the largest: weights above 1 would lift errors over the tolerance that each must
    // meet.
    for (Peripheral& peripheral : peripherals)
        peripheral.weight /= scale;
}

void SettingList::add(ClockSetting setting) {
    if (m_most == 0)
        return;
    const auto same = std::find_if(m_settings.begin(), m_settings.end(),
                                   [&](const auto& known) { return isSameWay(known, setting); });
    if (same != m_settings.end()) {
        if (same->sum <= setting.sum)
            return;
        m_settings.erase(same);
    }
    const auto place = std::upper_bound(
        m_settings.begin(), m_settings.end(), setting,
        [](const ClockSetting& a, const ClockSetting& b) { return a.sum < b.sum; });
    m_settings.insert(place, std::move(setting));
    if (m_settings.size() > m_most)
        m_settings.pop_back();
}

float SettingList::limit() const {
    if (m_most == 0)
        return -1.0F;
    return m_settings.size() < m_most ? kWorstTotalError : m_settings.back().sum;
}

void SettingList::scale(float factor) {
    for (ClockSetting& setting : m_settings)
        setting.sum *= factor;
}

std::vector<ClockSetting> SettingList::take(const ClockSetting& answer) {
    std::erase_if(m_settings, [&](const auto& known) { return isSameWay(known, answer); });
    m_settings.insert(m_settings.begin(), answer);
    m_settings.resize(std::min(m_settings.size(), m_most));
    return std::move(m_settings);
}

} // namespace hbs_clocking
