// Writing a solution into the tree, and the use of the store of solutions.

#include "clocking/HBSClockingAlgo.h"

#include <algorithm>

#include "clocking/ClockingSolutionCache.h"

namespace hbs_clocking {

void HBSClockingAlgo::configurePll(const std::string& name, const std::vector<unsigned>& config) {
    HBSPll* pll = getPll(name);
    if (pll == nullptr)
        return;
    const unsigned mul = config[0];
    const unsigned div = config[1];
    const unsigned crossDiv = config.size() > 2 ? config[2] : 0;
    const float freqMhz = m_refClkFreq * static_cast<float>(mul) / static_cast<float>(div);
    pll->setConfig(mul, div, crossDiv, static_cast<double>(freqMhz));
}

void HBSClockingAlgo::applySolution(const PeripheralResult& peripheralResult,
                                    const PllResult& pllResult) {
    m_resultFound = true;
    for (const auto& [name, config] : pllResult)
        configurePll(name, config);
    for (const auto& [peripheral, choice] : peripheralResult)
        peripheral->setPllResult(getPllNameByIndex(choice.first), choice.second);
}

std::vector<std::pair<std::string, float>>
HBSClockingAlgo::buildSolutionKey(const std::vector<HBSPeripheral*>& enabled) const {
    std::vector<std::pair<std::string, float>> key;
    key.emplace_back("reference_freq", m_refClkFreq);
    key.emplace_back("max_cross_freq", m_maxCrossDomainFreq);
    for (unsigned i = 0; i < m_pllCount; ++i) {
        const std::string name = getPllNameByIndex(i);
        const HBSPll* pll = getPll(name);
        key.emplace_back(name, pll == nullptr ? 0.0F : pll->getMaxPllFreq());
    }
    const auto firstPeripheral = static_cast<std::ptrdiff_t>(key.size());
    for (const HBSPeripheral* peripheral : enabled)
        key.emplace_back(peripheral->getName(), peripheral->getRequestedFreq());
    std::stable_sort(key.begin() + firstPeripheral, key.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    return key;
}

bool HBSClockingAlgo::applyCachedSolution(const std::vector<HBSPeripheral*>& enabled) {
    const ClockingSolutionCache& cache = ClockingSolutionCache::getGlobal();
    const ClockingSolution* solution =
        cache.isEmpty() ? nullptr : cache.find(buildSolutionKey(enabled));
    if (solution == nullptr)
        return false;
    m_toleranceFactor = solution->toleranceFactor;
    m_totalRelativeError = solution->totalRelativeError;
    m_resultFound = true;
    for (const auto& [name, config] : solution->plls)
        configurePll(name, config);
    for (const auto& [name, choice] : solution->peripherals)
        if (HBSPeripheral* peripheral = getPeripheral(name))
            peripheral->setPllResult(getPllNameByIndex(choice.first), choice.second);
    return true;
}

void HBSClockingAlgo::storeSolution(const std::vector<HBSPeripheral*>& enabled,
                                    const PeripheralResult& peripheralResult,
                                    const PllResult& pllResult) const {
    ClockingSolutionCache& cache = ClockingSolutionCache::getGlobal();
    if (cache.isFull())
        return;
    ClockingSolution solution{m_toleranceFactor, m_totalRelativeError, {}, {}};
    // In declared order, so that of peripherals with one name it is always the first that counts.
    for (HBSPeripheral* peripheral : enabled)
        if (const auto entry = peripheralResult.find(peripheral); entry != peripheralResult.end())
            solution.peripherals.try_emplace(peripheral->getName(), entry->second);
    solution.plls.insert(pllResult.begin(), pllResult.end());
    cache.store(buildSolutionKey(enabled), std::move(solution));
}

} // namespace hbs_clocking
