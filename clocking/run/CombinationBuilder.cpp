#include "clocking/run/CombinationBuilder.h"

#include <algorithm>
#include <iostream>
#include <utility>

#include "clocking/ClockingArithmetic.h"
#include "clocking/run/DomainCover.h"
#include "clocking/run/SolverRun.h"

namespace hbs_clocking {

namespace {

[[nodiscard]] std::vector<std::uint8_t> toBytes(std::span<const unsigned> multipliers) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(multipliers.size());
    for (const unsigned mul : multipliers)
        bytes.push_back(static_cast<std::uint8_t>(mul));
    return bytes;
}

/// The multipliers that count as covering a peripheral: by their bits, aliases and all.
[[nodiscard]] MultiplierMask toMask(const MultiplierBits& bits) {
    MultiplierMask mask;
    for (unsigned mul = kMinMultiplier; mul <= kMaxMultiplier; ++mul) {
        MultiplierBits own{};
        setMultiplierBits({&mul, 1}, own);
        if (anyCommonBit(own, bits))
            mask.insert(mul);
    }
    return mask;
}

/// The peripherals of a domain as needs; heads serve those that `mayCross` lets through.
template <class MayCross>
[[nodiscard]] std::vector<CoverNeed> needsOf(const StepCandidates& candidates, unsigned domainIndex,
                                             const MayCross& mayCross) {
    std::vector<CoverNeed> needs;
    for (const auto& [peripheral, bits] : candidates.bits)
        if (peripheral->getPowerDomainIndex() == static_cast<std::int32_t>(domainIndex))
            needs.push_back({toMask(bits), mayCross(*peripheral)});
    return needs;
}

[[nodiscard]] std::vector<CoverNeed> needsOf(const StepCandidates& candidates,
                                             unsigned domainIndex) {
    return needsOf(candidates, domainIndex, [](const HBSPeripheral&) { return true; });
}

[[nodiscard]] std::vector<std::uint8_t> allPlacesOf(const CombinationList& combos) {
    std::vector<std::uint8_t> places(combos.width());
    for (std::size_t i = 0; i < places.size(); ++i)
        places[i] = static_cast<std::uint8_t>(i);
    return places;
}

/// Position of a domain's first PLL in the solver's order.
[[nodiscard]] unsigned firstPllOf(const HBSClockingAlgo& tree, unsigned domainIndex) {
    std::size_t pll = 0;
    for (unsigned i = 0; i < domainIndex; ++i)
        if (const HBSPowerDomain* domain = tree.getPowerDomainAt(i))
            pll += domain->getPllCount();
    return static_cast<unsigned>(pll);
}

} // namespace

std::vector<unsigned> CombinationBuilder::filterMultipliersForDomain(unsigned pll,
                                                                     unsigned domainIndex) const {
    return hbs_clocking::filterMultipliersForDomain(
        m_run.tree(), m_run.allowedMultipliers(pll, m_candidates.multipliers), m_candidates.bits,
        domainIndex);
}

std::vector<unsigned> CombinationBuilder::nocMultipliers() const {
    return m_run.allowedMultipliers(1, m_candidates.nocMultipliers);
}

std::vector<std::uint8_t> CombinationBuilder::candidatesOf(unsigned pll) const {
    return toBytes(m_run.allowedMultipliers(pll, m_candidates.multipliers));
}

CombinationList CombinationBuilder::lockIfAny(CombinationList combos, unsigned domainIndex) const {
    if (!combos.isEmpty())
        lockTolerance(m_run.tree(), domainIndex);
    return combos;
}

CombinationStage CombinationBuilder::pairStage(unsigned domainIndex, CombinationStage::Order order,
                                               std::vector<CoverNeed> needs,
                                               std::vector<std::uint8_t> places) const {
    const unsigned pll = firstPllOf(m_run.tree(), domainIndex);
    return {candidatesOf(pll), candidatesOf(pll + 1), order, std::move(needs), std::move(places)};
}

CombinationStage::Order CombinationBuilder::unorderedOf(unsigned domainIndex) const {
    const unsigned pll = firstPllOf(m_run.tree(), domainIndex);
    return m_run.tellsApart(pll, pll + 1) ? CombinationStage::Order::Different
                                          : CombinationStage::Order::Ascending;
}

CombinationList CombinationBuilder::buildPairsForDomain(std::span<const unsigned> others,
                                                        unsigned domainIndex) const {
    return lockIfAny(CombinationList({candidatesOf(0),
                                      toBytes(others),
                                      CombinationStage::Order::Any,
                                      needsOf(m_candidates, domainIndex),
                                      {}}),
                     domainIndex);
}

CombinationList CombinationBuilder::buildFreePairs(std::span<const unsigned> firsts,
                                                   std::span<const unsigned> others) {
    return CombinationList(
        {toBytes(firsts), toBytes(others), CombinationStage::Order::Any, {}, {}});
}

CombinationList CombinationBuilder::extendCombosForDomain(const CombinationList& combos,
                                                          unsigned domainIndex) const {
    return lockIfAny(combos.extendedBy({candidatesOf(combos.width()),
                                        {},
                                        CombinationStage::Order::Single,
                                        needsOf(m_candidates, domainIndex),
                                        allPlacesOf(combos)}),
                     domainIndex);
}

CombinationList CombinationBuilder::buildOrderedPairsForDomain(unsigned domainIndex) const {
    return extendCombosWithPairsForDomain({}, domainIndex);
}

CombinationList CombinationBuilder::extendCombosWithPairsForDomain(const CombinationList& combos,
                                                                   unsigned domainIndex) const {
    return lockIfAny(
        combos.extendedBy(pairStage(domainIndex, CombinationStage::Order::Different,
                                    needsOf(m_candidates, domainIndex), allPlacesOf(combos))),
        domainIndex);
}

CombinationList CombinationBuilder::buildUnorderedPairsForDomain(unsigned domainIndex) const {
    return lockIfAny(CombinationList(pairStage(domainIndex, unorderedOf(domainIndex),
                                               needsOf(m_candidates, domainIndex), {})),
                     domainIndex);
}

CombinationList CombinationBuilder::appendToCombos(const CombinationList& combos,
                                                   std::span<const unsigned> list) {
    return combos.timesList(
        CombinationList({toBytes(list), {}, CombinationStage::Order::Single, {}, {}}));
}

CombinationList CombinationBuilder::appendPairsToCombos(const CombinationList& combos,
                                                        const CombinationList& pairs) {
    return combos.timesList(pairs);
}

CombinationList CombinationBuilder::extendCombosWithCrossCheck(const CombinationList& combos,
                                                               unsigned domainIndex) const {
    constexpr unsigned leastWidth = 4;
    if (combos.width() < leastWidth) {
        for (std::uint64_t i = 0; i < combos.size(); ++i)
            std::cout << "Less than 4 size combination found\n";
        return {};
    }
    // The crossing clocks are those of PLLs 0 and 2. They serve a request only when the least that
    // it accepts may cross. The tolerance isn't locked here: what holds the domain isn't its own.
    const float tolerance = m_run.tolerance();
    const float limitMhz = m_run.tree().getMaxCrossDomainFreq();
    const auto mayCross = [tolerance, limitMhz](const HBSPeripheral& peripheral) {
        const float least = peripheral.getRequestedFreq() * (1.0F - tolerance);
        return !definitelyGreater(least, limitMhz, kMargin);
    };
    return combos.extendedBy(pairStage(domainIndex, unorderedOf(domainIndex),
                                       needsOf(m_candidates, domainIndex, mayCross), {0, 2}));
}

} // namespace hbs_clocking
