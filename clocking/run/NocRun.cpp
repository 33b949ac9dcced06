#include "clocking/run/NocRun.h"

#include <algorithm>
#include <chrono>
#include <iostream>
#include <utility>

#include "ComMsgMgr.h"
#include "HPAParamMgr.h"
#include "clocking/ClockingArithmetic.h"
#include "clocking/SearchInterruption.h"
#include "clocking/run/PllDividers.h"
#include "clocking/run/SavedResults.h"
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
    // The last chunk takes the remainder of the division.
    for (unsigned i = 0; i < threads; ++i)
        chunks[i] = i * (n / threads);
    TupleSearch::RunOnThreads onThreads;
    if (threads > 1)
        onThreads = [threads](const std::function<void()>& work) {
            runOnSharedExecutor("6pll_Clocking", threads, [&work](unsigned) { work(); });
        };
    return tuples.search(chunks, onThreads);
}

void sendTimingMessage(const HBSClockingAlgo& tree, std::size_t enabledCount,
                       Clock::time_point start) {
    if (!HPAParamMgr::getParamMgr()->getValueIfExistAsBool("ybr.enableClockingComputationPrints",
                                                           false))
        return;
    const auto elapsed =
        std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
    ComMsgMgr::sendMsg::eval(5, __FILE__, __LINE__, "hbs", kTimingMask, "@91-42@%f%d%f%f%d",
                             tree.getRefClkFreq(), enabledCount, tree.getTotalRelativeError(),
                             tree.getToleranceFector(), elapsed.count());
}

} // namespace

NocRun::NocRun(HBSClockingAlgo& tree, const TreeShape& shape, ComboBuilder buildCombos)
    : m_tree(tree), m_shape(shape), m_buildCombos(std::move(buildCombos)),
      m_noc(tree.getNocPeripherals()), m_run(tree, shape.pllCount) {}

bool NocRun::solve() {
    const Clock::time_point start = Clock::now();
    if (m_noc.empty()) {
        std::cout << "NOC Peripheral is not enabled. Kindly enable noc peripheral\n";
        return false;
    }
    SavedResults saved(m_tree);
    if (!m_run.start())
        return false;
    m_run.setStatistics({});
    if (m_run.applyCachedSolution())
        return true;
    try {
        climbLadder();
    } catch (const SearchInterrupted&) {
        saved.restore();
        throw;
    }
    if (m_tree.is_result_found())
        sendTimingMessage(m_tree, m_run.enabled().size(), start);
    return m_tree.is_result_found();
}

void NocRun::climbLadder() {
    static_cast<void>(m_run.climbLadder([&] {
        SearchInterruption::raiseIfRequested();
        StepCandidates candidates;
        if (!collectStepCandidates(candidates))
            return false;
        const CombinationList combos = m_buildCombos(CombinationBuilder(m_run, candidates));
        StepResult result;
        if (combos.isEmpty() || !searchCombos(combos, result))
            return false;
        m_run.storeSolution(result);
        m_run.applySolution(result);
        if (m_run.wantedSettings() != 0)
            listSettings(combos, result);
        return true;
    }));
}

bool NocRun::collectStepCandidates(StepCandidates& candidates) {
    candidates.nocMultipliers = m_run.collectNocMultipliers();
    const std::size_t served = m_run.collectCandidates(candidates.bits, candidates.multipliers);
    return served == m_run.enabled().size() - m_noc.size();
}

ClkoutDivCombos NocRun::buildClkoutDivCombos(const Combination& combination) const {
    ClkoutDivCombos ranges{};
    for (unsigned pll = 0; pll < m_shape.pllCount; ++pll) {
        const unsigned domain = m_shape.boundingDomain[m_shape.roleOf(pll)];
        if (domain != TreeShape::kAbsent)
            ranges[pll] = DividerRange::from(computeClkoutDiv(m_tree, combination[pll], domain));
    }
    return ranges;
}

SearchProblem NocRun::problemOf(const CombinationList& combos) const {
    SearchProblem problem{&m_shape,
                          m_tree.getRefClkFreq(),
                          m_tree.getMaxCrossDomainFreq(),
                          m_run.tolerance(),
                          toRequests(m_run.enabled(), m_shape, m_run.terms()),
                          {},
                          {},
                          combos};
    problem.outputDividers = [this](Role role, unsigned mul) {
        return DividerRange::from(
            computeClkoutDiv(m_tree, mul, m_shape.boundingDomain[indexOf(role)]));
    };
    problem.nocDivider = [this](unsigned mul) { return nocDivider(mul); };
    return problem;
}

unsigned NocRun::nocDivider(unsigned mul) const {
    return m_noc.size() == 1 ? computeNocClkoutDiv(m_tree, mul) : 1; // asking would print
}

void NocRun::listSettings(const CombinationList& combos, const StepResult& result) {
    const SearchProblem problem = problemOf(combos);
    SettingList list(m_run.wantedSettings());
    SettingSearch(problem).find(list);
    list.scale(m_run.terms().scale);
    m_run.keepSettings(list, result);
}

bool NocRun::searchCombos(const CombinationList& combos, StepResult& result) {
    const SearchProblem problem = problemOf(combos);
    // Clocks reach a peripheral by its domain, so one of no domain has none.
    if (std::any_of(problem.requests.begin(), problem.requests.end(),
                    [](const SearchRequest& request) { return request.domain >= kDomains; }))
        return false;
    // Here and not where the tuples are looked at, as the output belongs to the caller's thread.
    if (m_noc.size() != 1)
        complainOfNocPeripherals(combos);
    const TupleSearch::Result found = searchChunks(problem);
    m_run.setStatistics({combos.size(), found.evaluatedTuples});
    if (!found.winner)
        return false;
    result.total = found.winner->sum * m_run.terms().scale;
    writeDecisions(found.winner->tuple, result);
    return true;
}

void NocRun::complainOfNocPeripherals(const CombinationList& combos) const {
    // Users know this output: one line for every tuple of dividers, as trying each of them one by
    // one would ask for the NOC divider and print it.
    const std::size_t crossTuples = buildCrossDivCombos().size();
    combos.forEach(0, combos.size(), [&](const Combination& combination) {
        SearchInterruption::raiseIfRequested();
        std::size_t tuples = crossTuples;
        for (const DividerRange& range : buildClkoutDivCombos(combination))
            tuples *= range.size();
        for (std::size_t i = 0; i < tuples; ++i)
            static_cast<void>(computeNocClkoutDiv(m_tree, combination[1]));
    });
}

std::vector<NocRun::PllClocks> NocRun::writePlls(const Tuple& tuple, StepResult& result) const {
    std::vector<PllClocks> clocks;
    for (unsigned pll = 0; pll < m_shape.pllCount; ++pll) {
        const unsigned roleIndex = m_shape.roleOf(pll);
        const auto role = static_cast<Role>(roleIndex);
        const unsigned mul = tuple.muls[roleIndex];
        const unsigned div = role == Role::Noc ? nocDivider(mul) : tuple.div(role);
        const bool crosses = roleIndex < tuple.crossesBelow4.size();
        const unsigned cross = crosses ? tuple.cross(role) : kNoCrossing;
        const float freqMhz =
            static_cast<float>(mul) * m_tree.getRefClkFreq() / static_cast<float>(div);
        clocks.push_back(
            {std::pair(freqMhz, div), std::pair(freqMhz / static_cast<float>(cross), div)});
        result.plls[m_tree.getPllNameByIndex(pll)] = {mul, div, cross};
    }
    return clocks;
}

void NocRun::writeDecisions(const Tuple& tuple, StepResult& result) const {
    const std::vector<PllClocks> clocks = writePlls(tuple, result);
    const RunTerms terms = m_run.terms();
    for (std::size_t i = 0; i < m_run.enabled().size(); ++i) {
        HBSPeripheral* const peripheral = m_run.enabled()[i];
        const auto domain = static_cast<unsigned>(peripheral->getPowerDomainIndex());
        std::vector<ClockSlot> slots(clocks.size());
        for (unsigned pll = 0; pll < slots.size(); ++pll) {
            const Reach reach = m_shape.reach[domain][m_shape.roleOf(pll)];
            if ((terms.peripherals[i].deniedPlls >> pll & 1U) != 0)
                continue;
            if (reach == Reach::Direct)
                slots[pll] = clocks[pll].direct;
            else if (reach == Reach::Across)
                slots[pll] = clocks[pll].across;
        }
        static_cast<void>(findBestDividerInSlots(slots, peripheral->getRequestedFreq(),
                                                 m_run.tolerance(),
                                                 result.peripherals[peripheral]));
    }
}

} // namespace hbs_clocking
