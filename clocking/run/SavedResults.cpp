#include "clocking/run/SavedResults.h"

#include <utility>

namespace hbs_clocking {

SavedResults::SavedResults(HBSClockingAlgo& algo)
    : m_algo(algo), m_resultFound(algo.m_resultFound), m_toleranceFactor(algo.m_toleranceFactor),
      m_totalRelativeError(algo.m_totalRelativeError), m_statistics(algo.m_searchStatistics),
      m_settings(algo.m_settings) {
    for (const auto& domain : algo.m_powerDomains)
        m_errorLimits.push_back(domain->getErrorLimit());
    for (HBSPll* pll : algo.getAllPlls())
        m_plls.push_back({pll, pll->getVcoMul(), pll->getClkoutDiv(), pll->getCrossDomainDiv(),
                          pll->getVcoFreq()});
    for (const auto& peripheral : algo.m_peripherals)
        m_peripherals.push_back({peripheral->m_pllName, peripheral->m_clkoutDiv});
}

void SavedResults::restore() {
    m_algo.m_resultFound = m_resultFound;
    m_algo.m_toleranceFactor = m_toleranceFactor;
    m_algo.m_totalRelativeError = m_totalRelativeError;
    m_algo.m_searchStatistics = m_statistics;
    m_algo.m_settings = std::move(m_settings);
    for (std::size_t i = 0; i < m_errorLimits.size(); ++i)
        m_algo.m_powerDomains[i]->setErrorLimit(m_errorLimits[i]);
    for (const auto& [pll, mul, div, cross, freqMhz] : m_plls)
        pll->setConfig(mul, div, cross, freqMhz);
    // Not through `setPllResult`: the actual frequency was never cleared.
    for (std::size_t i = 0; i < m_peripherals.size(); ++i) {
        m_algo.m_peripherals[i]->m_pllName = std::move(m_peripherals[i].pllName);
        m_algo.m_peripherals[i]->m_clkoutDiv = m_peripherals[i].div;
    }
}

} // namespace hbs_clocking
