// The types that the steps of a run exchange.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "clocking/ClockSearchTypes.h"

namespace hbs_clocking {

/// Multipliers as a bit set: `v` is bit `v & 31` of word `min(v >> 5, 4)`. The last word takes
/// whatever lies above it, so that 160 shares its bit with 128.
using MultiplierBits = std::array<std::uint32_t, 5>;
/// Per peripheral the multipliers that can serve it.
using MultiplierBitMap = std::map<HBSPeripheral*, MultiplierBits>;

/// One PLL as a peripheral sees it: frequency in MHz and the PLL's divider; empty where the PLL
/// is out of reach. Slots are in the order of `getPllNameByIndex`.
using ClockSlot = std::optional<std::pair<float, unsigned>>;

/// Cross-domain dividers of one try, in PLL order; the last place is always 1.
using CrossDivCombo = std::array<unsigned, 4>;

using PeripheralResult = std::map<HBSPeripheral*, DividerChoice>;
/// Per PLL name: multiplier, output divider and, in trees with cross-domain clocks, cross-domain
/// divider.
using PllResult = std::map<std::string, std::vector<unsigned>>;

/// The best setting that a step of the ladder found.
struct StepResult {
    PeripheralResult peripherals; ///< empty when nothing was found
    PllResult plls;
    float total = 0.0F; ///< sum of the relative errors
};

} // namespace hbs_clocking
