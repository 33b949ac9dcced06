#include "clocking/ClockingArithmetic.h"

namespace hbs_clocking {

std::uint32_t nearestDivider(float freq, float target, bool inMhz) {
    const std::uint32_t ceiling = saturatedUint32(std::ceil(freq / target));
    if (ceiling == 0)
        return std::numeric_limits<std::uint32_t>::max();
    if (ceiling == 1)
        return 1;
    const float unit = inMhz ? 1.0F : kHzPerMhz;
    const float low = freq / static_cast<float>(ceiling) / unit;
    const float high = freq / static_cast<float>(ceiling - 1) / unit;
    const float wanted = target / unit;
    if (high - wanted > 0.0F)
        return ceiling;
    // Only rounding brings the higher frequency down to the request; then the closer one wins.
    const float lowError = std::fabs((wanted - low) / wanted);
    const float highError = std::fabs((wanted - high) / wanted);
    return lowError - highError > 0.0F ? ceiling - 1 : ceiling;
}

DividerOffer offerCeilingDivider(float freqMhz, float targetMhz) {
    std::uint32_t divider = kMaxPeripheralDiv;
    if (!approximatelyEqual(targetMhz, 0.0F, kMargin))
        divider = std::min(saturatedUint32(std::ceil(freqMhz / targetMhz)), kMaxPeripheralDiv);
    // A divider of 0 comes from a clock of 0 and gives a NaN error, which no comparison takes.
    return {divider, relativeError(targetMhz, freqMhz / static_cast<float>(divider), divider)};
}

DividerOffer offerNearestDivider(float freqMhz, float targetMhz) {
    std::uint32_t divider = kMaxPeripheralDiv;
    if (!approximatelyEqual(targetMhz, 0.0F, kMargin))
        divider = std::min(nearestDivider(freqMhz, targetMhz, true), kMaxPeripheralDiv);
    return {divider, relativeError(targetMhz, freqMhz / static_cast<float>(divider), divider)};
}

void setMultiplierBits(std::span<const unsigned> list, MultiplierBits& words) {
    constexpr unsigned lastWord = 4;
    for (const unsigned multiplier : list)
        words[std::min(multiplier >> 5U, lastWord)] |= 1U << (multiplier & 31U);
}

bool coversAll(const MultiplierBits& combo, std::span<const MultiplierBits> needs) {
    return std::all_of(needs.begin(), needs.end(),
                       [&combo](const MultiplierBits& need) { return anyCommonBit(combo, need); });
}

bool exceedsCrossLimit(float maxCrossMhz, ClockSlot& slot, float margin) {
    if (!definitelyGreater(slot->first, maxCrossMhz, margin))
        return false;
    slot.reset();
    return true;
}

std::vector<CrossDivCombo> buildCrossDivCombos() {
    constexpr unsigned largest = 4;
    constexpr std::size_t count = 64;
    std::vector<CrossDivCombo> combos;
    combos.reserve(count);
    for (unsigned c0 = largest; c0 >= 1; --c0)
        for (unsigned c1 = largest; c1 >= 1; --c1)
            for (unsigned c2 = largest; c2 >= 1; --c2)
                combos.push_back({c0, c1, c2, 1});
    return combos;
}

} // namespace hbs_clocking
