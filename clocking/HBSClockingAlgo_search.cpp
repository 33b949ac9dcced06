// The run of the solvers with a NOC clock, and their search spread over threads.

#include "clocking/HBSClockingAlgo.h"

#include <algorithm>
#include <chrono>
#include <iostream>

#include "ComMsgMgr.h"
#include "HPAParamMgr.h"
#include "clocking/ClockingArithmetic.h"
#include "clocking/SearchInterruption.h"
#include "clocking/search/ComboSearch.h"
#include "clocking/search/RunTerms.h"
#include "clocking/search/SavedResults.h"
#include "clocking/search/SettingSearch.h"
#include "clocking/search/SharedExecutor.h"
#include "clocking/search/TupleSearch.h"

namespace hbs_clocking {

namespace {

using Clock = std::chrono::steady_clock;

/// Up to so many combinations aren't worth a task graph.
constexpr std::uint64_t kMaxForOneThread = 1000;
constexpr int kMaxThreads = 8;
/// What a PLL whose clock doesn't cross has for a cross-domain divider.
constexpr unsigned kNoCrossing = 4;
constexpr unsigned kTimingMask = 0x4000000;

/// The peripherals that the six-PLL solver keeps off PLLs 1 and 3.
[[nodiscard]] bool isBarredName(const std::string& name) {
    return name == "PSM_REF_CTRL" || name == "ASU_REF_CTRL";
}

[[nodiscard]] std::vector<SearchRequest> toRequests(const std::vector<HBSPeripheral*>& enabled,
                                                    const TreeShape& shape, const RunTerms& terms) {
    std::vector<SearchRequest> requests;
    requests.reserve(enabled.size());
    for (std::size_t i = 0; i < enabled.size(); ++i)
        requests.push_back({static_cast<unsigned>(enabled[i]->getPowerDomainIndex()),
                            enabled[i]->getRequestedFreq(),
                            shape.barsByName && isBarredName(enabled[i]->getName()),
                            terms.peripherals[i].weight, terms.peripherals[i].deniedPlls});
    return requests;
}

/// The setting of a role's PLL in a tuple: its clock without and with the cross-domain divider.
struct SetPll {
    float freqMhz;
    unsigned div;
    unsigned cross;
};

/// The chunks are those of the exhaustive search, one per thread: a near tie is decided by them.
[[nodiscard]] TupleSearch::Result searchChunks(const SearchProblem& problem) {
    const TupleSearch tuples(problem);
    const std::uint64_t n = problem.combinations.size();
    if (n <= kMaxForOneThread)
        return tuples.search(std::array{std::uint64_t{0}}, {});
    const int wanted = HPAParamMgr::getParamMgr()->getValueAsInt("general.maxThreads");
    // A count below 1 makes no sense; it is taken as 1.
    const auto threads = static_cast<unsigned>(std::clamp(wanted, 1, kMaxThreads));
    std::vector<std::uint64_t> chunks(threads);
    for (unsigned i = 0; i < threads; ++i)
        chunks[i] = i * (n / threads);
    TupleSearch::RunOnThreads onThreads;
    if (threads > 1)
        onThreads = [threads](const std::function<void()>& work) {
            runOnSharedExecutor("6pll_Clocking", threads, [&work](unsigned) { work(); });
        };
    return tuples.search(chunks, onThreads);
}

} // namespace

bool HBSClockingAlgo::runLadder(const TreeShape& shape, const ComboBuilder& buildCombos) {
    const Clock::time_point start = Clock::now();
    const std::vector<HBSPeripheral*> enabled = getEnabledPeripherals();
    const std::vector<HBSPeripheral*> noc = getNocPeripherals();
    if (noc.empty()) {
        std::cout << "NOC Peripheral is not enabled. Kindly enable noc peripheral\n";
        return false;
    }
    if (enabled.empty()) {
        std::cout << "No peripheral enabled\n";
        return false;
    }
    if (!validateConfig())
        return false;
    SavedResults saved(*this);
    resetResults();
    m_searchStatistics = {};
    if (usesStore() && applyCachedSolution(enabled))
        return true;
    try {
        climbSearchLadder(shape, buildCombos, enabled, noc);
    } catch (const SearchInterrupted&) {
        saved.restore();
        throw;
    }
    if (m_resultFound)
        sendTimingMessage(enabled.size(), start);
    return m_resultFound;
}

void HBSClockingAlgo::climbSearchLadder(const TreeShape& shape, const ComboBuilder& buildCombos,
                                        const std::vector<HBSPeripheral*>& enabled,
                                        const std::vector<HBSPeripheral*>& noc) {
    static_cast<void>(climbLadder([&] {
        SearchInterruption::raiseIfRequested();
        StepCandidates candidates;
        if (!collectStepCandidates(enabled, noc, candidates))
            return false;
        const CombinationList combos = buildCombos(candidates);
        ComboResult result;
        if (combos.isEmpty() || !searchCombos(shape, enabled, combos, result))
            return false;
        m_totalRelativeError = result.total;
        if (usesStore())
            storeSolution(enabled, result.peripherals, result.plls);
        applySolution(result.peripherals, result.plls);
        if (m_terms.settings != 0)
            listSettings(shape, enabled, combos, result);
        return true;
    }));
}

bool HBSClockingAlgo::validateNocAndReference() const {
    constexpr std::int32_t nocIndex = 1;
    if (getPowerDomainIndex("NOC_DOMAIN") != nocIndex)
        std::cout << "NOC_DOMAIN is not added in the desired order.\n";
    if (m_refClkFreq != 0.0F)
        return true;
    std::cout << "Input freq. is not set\n";
    return false;
}

void HBSClockingAlgo::sendTimingMessage(std::size_t enabledCount, Clock::time_point start) const {
    if (!HPAParamMgr::getParamMgr()->getValueIfExistAsBool("ybr.enableClockingComputationPrints",
                                                           false))
        return;
    const auto elapsed =
        std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
    ComMsgMgr::sendMsg::eval(5, __FILE__, __LINE__, "hbs", kTimingMask, "@91-42@%f%d%f%f%d",
                             m_refClkFreq, enabledCount, m_totalRelativeError, m_toleranceFactor,
                             elapsed.count());
}

bool HBSClockingAlgo::collectStepCandidates(const std::vector<HBSPeripheral*>& enabled,
                                            const std::vector<HBSPeripheral*>& noc,
                                            StepCandidates& candidates) {
    CandidateMap nocCandidates;
    MultiplierSet nocMultipliers;
    collectNocMultipliers(noc, nocCandidates, nocMultipliers);
    CandidateMap candidatesByPeripheral;
    MultiplierSet multipliers;
    collectPeripheralMultipliers(enabled, candidatesByPeripheral, multipliers);
    if (candidatesByPeripheral.size() != enabled.size() - noc.size())
        return false;
    candidates.bits = buildMultiplierBits(candidatesByPeripheral);
    candidates.multipliers.assign(multipliers.begin(), multipliers.end());
    candidates.nocMultipliers.assign(nocMultipliers.begin(), nocMultipliers.end());
    return true;
}

ClkoutDivCombos HBSClockingAlgo::buildClkoutDivCombos(const TreeShape& shape,
                                                      const Combination& combination) const {
    ClkoutDivCombos ranges{};
    for (unsigned pll = 0; pll < shape.pllCount; ++pll) {
        const unsigned role = shape.roleOf(pll);
        if (shape.boundingDomain[role] != TreeShape::kAbsent)
            ranges[pll] =
                DividerRange::from(computeClkoutDiv(combination[pll], shape.boundingDomain[role]));
    }
    return ranges;
}

SearchProblem HBSClockingAlgo::problemOf(const TreeShape& shape,
                                         const std::vector<HBSPeripheral*>& enabled,
                                         const CombinationList& combos) const {
    SearchProblem problem{&shape,
                          m_refClkFreq,
                          m_maxCrossDomainFreq,
                          m_toleranceFactor,
                          toRequests(enabled, shape, runTerms(enabled)),
                          {},
                          {},
                          combos};
    problem.outputDividers = [this, &shape](Role role, unsigned mul) {
        return DividerRange::from(computeClkoutDiv(mul, shape.boundingDomain[indexOf(role)]));
    };
    const bool hasOneNoc = getNocPeripherals().size() == 1;
    problem.nocDivider = [this, hasOneNoc](unsigned mul) {
        return hasOneNoc ? computeNocClkoutDiv(mul) : 1; // asking would print
    };
    return problem;
}

void HBSClockingAlgo::listSettings(const TreeShape& shape,
                                   const std::vector<HBSPeripheral*>& enabled,
                                   const CombinationList& combos, const ComboResult& result) {
    const SearchProblem problem = problemOf(shape, enabled, combos);
    SettingList list(m_terms.settings);
    SettingSearch(problem).find(list);
    list.scale(runTerms(enabled).scale);
    keepSettings(list, settingOf(enabled, result.peripherals, result.plls));
}

bool HBSClockingAlgo::searchCombos(const TreeShape& shape,
                                   const std::vector<HBSPeripheral*>& enabled,
                                   const CombinationList& combos, ComboResult& result) {
    const SearchProblem problem = problemOf(shape, enabled, combos);
    // Clocks reach a peripheral by its domain, so one of no domain has none.
    if (std::any_of(problem.requests.begin(), problem.requests.end(),
                    [](const SearchRequest& request) { return request.domain >= kDomains; }))
        return false;
    // Here and not where the tuples are looked at, as the output belongs to the caller's thread.
    if (getNocPeripherals().size() != 1)
        complainOfNocPeripherals(shape, combos);
    const TupleSearch::Result found = searchChunks(problem);
    m_searchStatistics = {combos.size(), found.evaluatedTuples};
    if (!found.winner)
        return false;
    result.total = found.winner->sum * runTerms(enabled).scale;
    writeDecisions(shape, enabled, found.winner->tuple, result);
    return true;
}

void HBSClockingAlgo::complainOfNocPeripherals(const TreeShape& shape,
                                               const CombinationList& combos) const {
    // Every tuple of dividers asks for the NOC divider, and every time is told what is wrong.
    const std::size_t crossTuples = buildCrossDivCombos().size();
    combos.forEach(0, combos.size(), [&](const Combination& combination) {
        SearchInterruption::raiseIfRequested();
        std::size_t tuples = crossTuples;
        for (const DividerRange& range : buildClkoutDivCombos(shape, combination))
            tuples *= range.size();
        for (std::size_t i = 0; i < tuples; ++i)
            static_cast<void>(computeNocClkoutDiv(combination[1]));
    });
}

void HBSClockingAlgo::writeDecisions(const TreeShape& shape,
                                     const std::vector<HBSPeripheral*>& enabled, const Tuple& tuple,
                                     ComboResult& result) const {
    std::array<SetPll, kRoles> plls{};
    const bool hasOneNoc = getNocPeripherals().size() == 1;
    for (unsigned pll = 0; pll < shape.pllCount; ++pll) {
        const unsigned roleIndex = shape.roleOf(pll);
        const auto role = static_cast<Role>(roleIndex);
        const unsigned mul = tuple.muls[roleIndex];
        unsigned div = tuple.div(role);
        if (role == Role::Noc)
            div = hasOneNoc ? computeNocClkoutDiv(mul) : 1;
        const float freqMhz = static_cast<float>(mul) * m_refClkFreq / static_cast<float>(div);
        const bool crosses = roleIndex < tuple.crossesBelow4.size();
        plls[roleIndex] = {freqMhz, div, crosses ? tuple.cross(role) : kNoCrossing};
        result.plls[getPllNameByIndex(pll)] = {mul, div, plls[roleIndex].cross};
    }
    const RunTerms terms = runTerms(enabled);
    for (std::size_t i = 0; i < enabled.size(); ++i) {
        HBSPeripheral* const peripheral = enabled[i];
        const auto domain = static_cast<unsigned>(peripheral->getPowerDomainIndex());
        std::vector<ClockSlot> slots(shape.pllCount);
        for (unsigned pll = 0; pll < slots.size(); ++pll) {
            const unsigned role = shape.roleOf(pll);
            const auto& [freqMhz, div, cross] = plls[role];
            const Reach reach = shape.reach[domain][role];
            if ((terms.peripherals[i].deniedPlls >> pll & 1U) != 0)
                continue;
            if (reach == Reach::Direct)
                slots[pll] = {freqMhz, div};
            else if (reach == Reach::Across)
                slots[pll] = {freqMhz / static_cast<float>(cross), div};
        }
        static_cast<void>(findBestDividerInSlots(slots, peripheral->getRequestedFreq(),
                                                 result.peripherals[peripheral]));
    }
}

} // namespace hbs_clocking
