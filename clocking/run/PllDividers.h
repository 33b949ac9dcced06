// Output dividers of a tree's PLLs, and the choice of a clock and a divider for one peripheral.
#pragma once

#include <span>

#include "clocking/run/RunTypes.h"

namespace hbs_clocking {

class HBSClockingAlgo;

/// Smallest PLL output divider of 1, 2, 4 and 8 that keeps the PLL under its domain's limit; 1
/// for a domain that doesn't exist.
[[nodiscard]] unsigned computeClkoutDiv(const HBSClockingAlgo& tree, unsigned mul,
                                        unsigned domainIndex);
/// Output divider of the NOC PLL, any integer; 1, after a line on standard output, unless exactly
/// one NOC peripheral is enabled.
[[nodiscard]] unsigned computeNocClkoutDiv(const HBSClockingAlgo& tree, unsigned mul);
/// The clock in MHz that leaves a PLL of that domain: multiplier × reference ÷ output divider.
[[nodiscard]] float pllFreqMhz(const HBSClockingAlgo& tree, unsigned mul, unsigned domainIndex);

/// Takes the best of the clocks for one peripheral: `out` is its position and the divider, the
/// result its relative error. -1 when none is under the tolerance; see `isNoDivider`. Ties go to
/// the first clock.
[[nodiscard]] float findBestDivider(std::span<const float> frequenciesMhz, float targetMhz,
                                    float tolerance, DividerChoice& out);
/// The same over slots, empty ones skipped, with the divider of `nearestDivider`.
[[nodiscard]] float findBestDividerInSlots(std::span<const ClockSlot> slots, float targetMhz,
                                           float tolerance, DividerChoice& out);

} // namespace hbs_clocking
