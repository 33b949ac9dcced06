#include "clocking/run/BestSetting.h"

#include <utility>

namespace hbs_clocking {

bool BestSetting::takes(float total) const {
    return definitelyLess(total, m_best, kMargin) || total * m_terms.scale <= m_list.limit();
}

void BestSetting::offer(float total, const std::vector<ClockSetting::Pll>& plls,
                        const std::vector<DividerChoice>& choices) {
    m_list.add({total * m_terms.scale, plls, choices});
    if (!definitelyLess(total, m_best, kMargin))
        return;
    m_best = total;
    m_result.total = total * m_terms.scale;
    for (std::size_t i = 0; i < choices.size(); ++i)
        m_result.peripherals[m_run.enabled()[i]] = choices[i];
    m_result.plls.clear();
    for (unsigned pll = 0; pll < plls.size(); ++pll)
        m_result.plls[m_run.tree().getPllNameByIndex(pll)] = {plls[pll].multiplier,
                                                              plls[pll].outputDivider};
}

bool BestSetting::finish(StepResult& result) {
    if (m_result.peripherals.empty())
        return false;
    m_run.keepSettings(m_list, m_result);
    result = std::move(m_result);
    return true;
}

} // namespace hbs_clocking
