#include "clocking/run/SolverRun.h"

#include <algorithm>
#include <array>
#include <iostream>

#include "clocking/ClockingArithmetic.h"
#include "clocking/ClockingSolutionCache.h"
#include "clocking/run/DomainCover.h"

namespace hbs_clocking {

bool SolverRun::start() {
    if (m_enabled.empty())
        std::cout << "No peripheral enabled\n";
    else if (m_tree.validateConfig()) {
        m_tree.resetResults();
        return true;
    }
    return false;
}

bool SolverRun::climbLadder(const std::function<bool()>& solveStep) {
    return std::any_of(kToleranceLadder.begin(), kToleranceLadder.end(), [&](float tolerance) {
        m_tree.m_toleranceFactor = tolerance;
        return solveStep();
    });
}

std::size_t SolverRun::collectCandidates(MultiplierBitMap& multiplierBits,
                                         std::vector<unsigned>& multipliers) {
    CandidateMap candidatesByPeripheral;
    MultiplierSet allMultipliers;
    m_tree.collectPeripheralMultipliers(m_enabled, candidatesByPeripheral, allMultipliers);
    multiplierBits = buildMultiplierBits(candidatesByPeripheral);
    multipliers.assign(allMultipliers.begin(), allMultipliers.end());
    return candidatesByPeripheral.size();
}

std::vector<unsigned> SolverRun::collectNocMultipliers() {
    CandidateMap candidatesByPeripheral;
    MultiplierSet multipliers;
    m_tree.collectNocMultipliers(m_tree.getNocPeripherals(), candidatesByPeripheral, multipliers);
    return {multipliers.begin(), multipliers.end()};
}

std::vector<unsigned> SolverRun::allowedMultipliers(unsigned pll,
                                                    std::span<const unsigned> list) const {
    constexpr unsigned nocPll = 1;
    const auto& multipliers = m_tree.m_terms.multipliers;
    std::vector<unsigned> allowed(list.begin(), list.end());
    if (multipliers.empty())
        return allowed;
    const auto own = multipliers.find(m_tree.getPllNameByIndex(pll));
    if (own == multipliers.end())
        return allowed;
    const float vcoHz = static_cast<float>(own->second) * m_tree.m_refClkFreq * kHzPerMhz;
    if (definitelyGreater(vcoHz, kMaxVcoHz, kMargin) || definitelyLess(vcoHz, kMinVcoHz, kMargin))
        return {};
    const bool isListed = std::find(list.begin(), list.end(), own->second) != list.end();
    if (m_pllCount > 2 && pll == nocPll && !isListed)
        return {};
    return {own->second};
}

bool SolverRun::tellsApart(unsigned pllA, unsigned pllB) const {
    const SearchTerms& terms = m_tree.m_terms;
    if (terms.multipliers.empty() && terms.sources.empty())
        return false;
    const std::array names = {m_tree.getPllNameByIndex(pllA), m_tree.getPllNameByIndex(pllB)};
    return std::any_of(names.begin(), names.end(), [&terms](const std::string& name) {
        return terms.multipliers.count(name) != 0 ||
               std::any_of(terms.sources.begin(), terms.sources.end(),
                           [&name](const auto& source) { return source.second == name; });
    });
}

void SolverRun::configurePll(const std::string& name, const std::vector<unsigned>& config) {
    HBSPll* pll = m_tree.getPll(name);
    if (pll == nullptr)
        return;
    const unsigned mul = config[0];
    const unsigned div = config[1];
    const unsigned crossDiv = config.size() > 2 ? config[2] : 0;
    const float freqMhz = m_tree.m_refClkFreq * static_cast<float>(mul) / static_cast<float>(div);
    pll->setConfig(mul, div, crossDiv, static_cast<double>(freqMhz));
}

void SolverRun::applySolution(const StepResult& result) {
    m_tree.m_totalRelativeError = result.total;
    m_tree.m_resultFound = true;
    for (const auto& [name, config] : result.plls)
        configurePll(name, config);
    for (const auto& [peripheral, choice] : result.peripherals)
        peripheral->setPllResult(m_tree.getPllNameByIndex(choice.first), choice.second);
}

ClockSetting SolverRun::settingOf(const StepResult& result) const {
    ClockSetting setting;
    setting.sum = result.total;
    for (unsigned pll = 0; pll < m_pllCount; ++pll) {
        const auto config = result.plls.find(m_tree.getPllNameByIndex(pll));
        if (config != result.plls.end())
            setting.plls.push_back({config->second[0], config->second[1],
                                    config->second.size() > 2 ? config->second[2] : 0});
    }
    for (HBSPeripheral* peripheral : m_enabled)
        if (const auto choice = result.peripherals.find(peripheral);
            choice != result.peripherals.end())
            setting.peripherals.push_back(choice->second);
    return setting;
}

void SolverRun::keepSettings(SettingList& list, const StepResult& solution) {
    if (wantedSettings() != 0)
        m_tree.m_settings = list.take(settingOf(solution));
}

bool SolverRun::usesStore() const {
    const SearchTerms& terms = m_tree.m_terms;
    return m_tree.m_sharesSolutions && terms.multipliers.empty() && terms.sources.empty() &&
           terms.weights.empty() && terms.settings == 0;
}

std::vector<std::pair<std::string, float>> SolverRun::buildSolutionKey() const {
    std::vector<std::pair<std::string, float>> key;
    key.emplace_back("reference_freq", m_tree.m_refClkFreq);
    key.emplace_back("max_cross_freq", m_tree.m_maxCrossDomainFreq);
    for (unsigned i = 0; i < m_pllCount; ++i) {
        const std::string name = m_tree.getPllNameByIndex(i);
        const HBSPll* pll = m_tree.getPll(name);
        key.emplace_back(name, pll == nullptr ? 0.0F : pll->getMaxPllFreq());
    }
    const auto firstPeripheral = static_cast<std::ptrdiff_t>(key.size());
    for (const HBSPeripheral* peripheral : m_enabled)
        key.emplace_back(peripheral->getName(), peripheral->getRequestedFreq());
    std::stable_sort(key.begin() + firstPeripheral, key.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    return key;
}

bool SolverRun::applyCachedSolution() {
    const ClockingSolutionCache& cache = ClockingSolutionCache::getGlobal();
    const ClockingSolution* solution =
        !usesStore() || cache.isEmpty() ? nullptr : cache.find(buildSolutionKey());
    if (solution == nullptr)
        return false;
    m_tree.m_toleranceFactor = solution->toleranceFactor;
    m_tree.m_totalRelativeError = solution->totalRelativeError;
    m_tree.m_resultFound = true;
    for (const auto& [name, config] : solution->plls)
        configurePll(name, config);
    for (const auto& [name, choice] : solution->peripherals)
        if (HBSPeripheral* peripheral = m_tree.getPeripheral(name))
            peripheral->setPllResult(m_tree.getPllNameByIndex(choice.first), choice.second);
    return true;
}

void SolverRun::storeSolution(const StepResult& result) const {
    ClockingSolutionCache& cache = ClockingSolutionCache::getGlobal();
    if (!usesStore() || cache.isFull())
        return;
    ClockingSolution solution{tolerance(), result.total, {}, {}};
    // In declared order, so that of peripherals with one name it is always the first that counts.
    for (HBSPeripheral* peripheral : m_enabled)
        if (const auto entry = result.peripherals.find(peripheral);
            entry != result.peripherals.end())
            solution.peripherals.try_emplace(peripheral->getName(), entry->second);
    solution.plls.insert(result.plls.begin(), result.plls.end());
    cache.store(buildSolutionKey(), std::move(solution));
}

} // namespace hbs_clocking
