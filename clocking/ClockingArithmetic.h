// The solvers' numbers: limits, margins, the tolerance ladder, and the divider arithmetic that
// doesn't depend on a solver's state.
//
// All of it is single precision in the order written, because the results meet thresholds: a
// product rounded once instead of twice can turn a candidate into a miss.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>

#include "clocking/run/RunTypes.h"

namespace hbs_clocking {

/// Feedback multipliers are tried from the largest down.
inline constexpr unsigned kMaxMultiplier = 160;
inline constexpr unsigned kMinMultiplier = 25;
/// What the VCO runs at: reference × multiplier.
inline constexpr float kMinVcoHz = 2.16e9F;
inline constexpr float kMaxVcoHz = 4.32e9F;
inline constexpr float kHzPerMhz = 1e6F;
/// Relative margin of every comparison unless another is named.
inline constexpr float kMargin = 1e-5F;
/// How far, relatively, a NOC clock may lie above its request.
inline constexpr float kNocCeilingMargin = 0.0001F;
/// Largest peripheral divider; reaching it counts as a perfect match.
inline constexpr std::uint32_t kMaxPeripheralDiv = 1023;
/// More than any sum of errors that a search accepts.
inline constexpr float kWorstTotalError = 1000.0F;
/// Tolerances, tried in this order; the first that yields a solution ends the search.
inline constexpr std::array<float, 8> kToleranceLadder = {0.001F, 0.01F, 0.02F, 0.05F,
                                                          0.1F,   0.2F,  0.5F,  1.0F};

// Comparisons with a relative margin. A NaN makes the first two false; the searches rely on it.

[[nodiscard]] inline float largerMagnitude(float a, float b) {
    return std::max(std::fabs(a), std::fabs(b));
}

[[nodiscard]] inline bool definitelyGreater(float a, float b, float margin) {
    return a - b > largerMagnitude(a, b) * margin;
}

[[nodiscard]] inline bool definitelyLess(float a, float b, float margin) {
    return b - a > largerMagnitude(a, b) * margin;
}

[[nodiscard]] inline bool approximatelyEqual(float a, float b, float margin) {
    if (a == b)
        return true;
    const float distance = std::fabs(a - b);
    if (a == 0.0F || b == 0.0F)
        return margin > distance;
    return largerMagnitude(a, b) * margin >= distance;
}

/// A float as an integer, cut off towards 0. What has no such integer saturates: NaN and negative
/// values give 0, values too large give the maximum.
[[nodiscard]] inline std::uint32_t saturatedUint32(float value) {
    constexpr float beyond = 4294967296.0F;
    if (!(value > 0.0F))
        return 0;
    if (value >= beyond)
        return std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(value);
}

/// The divider that brings `freq` closest to `target` from below; both in Hz, or in MHz with
/// `inMhz`. Not capped: 0xFFFFFFFF where the quotient is 0, negative or NaN.
[[nodiscard]] std::uint32_t nearestDivider(float freq, float target, bool inMhz);

/// `|(wanted − given) ÷ wanted|`; 0 for a request of about 0, and for a saturated divider, which
/// counts as a perfect match however wrong the frequency is.
[[nodiscard]] inline float relativeError(float wanted, float given, std::uint32_t divider) {
    if (divider == kMaxPeripheralDiv || approximatelyEqual(wanted, 0.0F, kMargin))
        return 0.0F;
    return std::fabs((wanted - given) / wanted);
}

/// What one clock can do for a peripheral, whatever the other clocks can.
struct DividerOffer {
    std::uint32_t divider = 0;
    float error = 0.0F; ///< relative
};

/// The offer of a clock of `freqMhz`, with the ceiling of the quotient as divider.
[[nodiscard]] DividerOffer offerCeilingDivider(float freqMhz, float targetMhz);
/// The offer of a clock of `freqMhz`, with `nearestDivider`.
[[nodiscard]] DividerOffer offerNearestDivider(float freqMhz, float targetMhz);

/// Follows the offers of several clocks to one peripheral and keeps the best one under the
/// tolerance. A later offer must win by the margin, so ties go to the first.
class BestOffer {
public:
    explicit BestOffer(float tolerance) : m_error(tolerance) {}

    void consider(unsigned position, const DividerOffer& offer) {
        if (!definitelyLess(offer.error, m_error, kMargin))
            return;
        m_error = offer.error;
        m_choice = {position, offer.divider};
        m_found = true;
    }

    [[nodiscard]] bool isFound() const { return m_found; }
    [[nodiscard]] float error() const { return m_error; }
    [[nodiscard]] const DividerChoice& choice() const { return m_choice; }

private:
    float m_error;
    DividerChoice m_choice{};
    bool m_found = false;
};

/// True for the result of `findBestDivider` when there was nothing to take.
[[nodiscard]] inline bool isNoDivider(float result) {
    return static_cast<int>(result) == -1;
}

/// Sets the bit of each multiplier of the list.
void setMultiplierBits(std::span<const unsigned> list, MultiplierBits& words);
/// Whether a word of `a` and the same word of `b` share a bit. Word 0 isn't looked at: a
/// multiplier below 32 never counts as covering a peripheral.
[[nodiscard]] inline bool anyCommonBit(const MultiplierBits& a, const MultiplierBits& b) {
    return (a[4] & b[4]) != 0 || (a[3] & b[3]) != 0 || (a[2] & b[2]) != 0 || (a[1] & b[1]) != 0;
}
/// The coverage test: a combination covers a domain when it shares a bit with every peripheral.
[[nodiscard]] bool coversAll(const MultiplierBits& combo, std::span<const MultiplierBits> needs);

/// True, with the slot emptied, when its frequency lies above `maxCrossMhz` by the margin. The
/// slot must be engaged.
[[nodiscard]] bool exceedsCrossLimit(float maxCrossMhz, ClockSlot& slot, float margin);

/// The 64 tuples of cross-domain dividers, 4 down to 1 in each place, the first place outermost.
[[nodiscard]] std::vector<CrossDivCombo> buildCrossDivCombos();

} // namespace hbs_clocking
