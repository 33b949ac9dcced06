// The combinations of multipliers that cover the power domains: lists that aren't laid out.

#include "clocking/HBSClockingAlgo.h"

#include <algorithm>
#include <iostream>

#include "clocking/ClockingArithmetic.h"
#include "clocking/search/ComboSearch.h"

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

} // namespace

CombinationList HBSClockingAlgo::lockIfAny(CombinationList combos, unsigned domainIndex) {
    if (!combos.isEmpty())
        lockTolerance(domainIndex);
    return combos;
}

CombinationList HBSClockingAlgo::buildPairsForDomain(const StepCandidates& candidates,
                                                     std::span<const unsigned> others,
                                                     unsigned domainIndex) {
    return lockIfAny(CombinationList({toBytes(allowedMultipliers(0, candidates.multipliers)),
                                      toBytes(others),
                                      CombinationStage::Order::Any,
                                      needsOf(candidates, domainIndex),
                                      {}}),
                     domainIndex);
}

CombinationList HBSClockingAlgo::buildFreePairs(std::span<const unsigned> firsts,
                                                std::span<const unsigned> others) {
    return CombinationList(
        {toBytes(firsts), toBytes(others), CombinationStage::Order::Any, {}, {}});
}

CombinationList HBSClockingAlgo::extendCombosForDomain(const StepCandidates& candidates,
                                                       const CombinationList& combos,
                                                       unsigned domainIndex) {
    return lockIfAny(
        combos.extendedBy({toBytes(allowedMultipliers(combos.width(), candidates.multipliers)),
                           {},
                           CombinationStage::Order::Single,
                           needsOf(candidates, domainIndex),
                           allPlacesOf(combos)}),
        domainIndex);
}

CombinationList HBSClockingAlgo::buildOrderedPairsForDomain(const StepCandidates& candidates,
                                                            unsigned domainIndex) {
    return extendCombosWithPairsForDomain(candidates, {}, domainIndex);
}

CombinationList HBSClockingAlgo::extendCombosWithPairsForDomain(const StepCandidates& candidates,
                                                                const CombinationList& combos,
                                                                unsigned domainIndex) {
    const unsigned pll = firstPllOf(domainIndex);
    return lockIfAny(
        combos.extendedBy({toBytes(allowedMultipliers(pll, candidates.multipliers)),
                           toBytes(allowedMultipliers(pll + 1, candidates.multipliers)),
                           CombinationStage::Order::Different, needsOf(candidates, domainIndex),
                           allPlacesOf(combos)}),
        domainIndex);
}

CombinationList HBSClockingAlgo::buildUnorderedPairsForDomain(const StepCandidates& candidates,
                                                              unsigned domainIndex) {
    const unsigned pll = firstPllOf(domainIndex);
    return lockIfAny(CombinationList({toBytes(allowedMultipliers(pll, candidates.multipliers)),
                                      toBytes(allowedMultipliers(pll + 1, candidates.multipliers)),
                                      tellApart(pll, pll + 1) ? CombinationStage::Order::Different
                                                              : CombinationStage::Order::Ascending,
                                      needsOf(candidates, domainIndex),
                                      {}}),
                     domainIndex);
}

CombinationList HBSClockingAlgo::appendToCombos(const CombinationList& combos,
                                                std::span<const unsigned> list) {
    return combos.timesList(
        CombinationList({toBytes(list), {}, CombinationStage::Order::Single, {}, {}}));
}

CombinationList HBSClockingAlgo::appendPairsToCombos(const CombinationList& combos,
                                                     const CombinationList& pairs) {
    return combos.timesList(pairs);
}

CombinationList HBSClockingAlgo::extendCombosWithCrossCheck(const StepCandidates& candidates,
                                                            const CombinationList& combos,
                                                            unsigned domainIndex) const {
    constexpr unsigned leastWidth = 4;
    if (combos.width() < leastWidth) {
        for (std::uint64_t i = 0; i < combos.size(); ++i)
            std::cout << "Less than 4 size combination found\n";
        return {};
    }
    // The crossing clocks are those of PLLs 0 and 2. They serve a request only when the least that
    // it accepts may cross. The tolerance isn't locked here: what holds the domain isn't its own.
    const auto mayCross = [this](const HBSPeripheral& peripheral) {
        const float least = peripheral.getRequestedFreq() * (1.0F - m_toleranceFactor);
        return !definitelyGreater(least, m_maxCrossDomainFreq, kMargin);
    };
    const unsigned pll = firstPllOf(domainIndex);
    return combos.extendedBy({toBytes(allowedMultipliers(pll, candidates.multipliers)),
                              toBytes(allowedMultipliers(pll + 1, candidates.multipliers)),
                              tellApart(pll, pll + 1) ? CombinationStage::Order::Different
                                                      : CombinationStage::Order::Ascending,
                              needsOf(candidates, domainIndex, mayCross),
                              {0, 2}});
}

} // namespace hbs_clocking
