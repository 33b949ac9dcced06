// The working structures of a clock search, shared by the solvers.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace hbs_clocking {

class HBSPeripheral;

/// Multipliers as a bit set: `v` is bit `v & 31` of word `min(v >> 5, 4)`. The last word takes
/// whatever lies above it, so that 160 shares its bit with 128.
using MultiplierBits = std::array<std::uint32_t, 5>;

/// Per peripheral the multipliers that can serve it, in the order found.
using CandidateMap = std::map<HBSPeripheral*, std::vector<unsigned>>;
/// The same lists as bit sets.
using MultiplierBitMap = std::map<HBSPeripheral*, MultiplierBits>;
/// The union of the lists.
using MultiplierSet = std::set<unsigned>;

/// One PLL as a peripheral sees it: frequency in MHz and the PLL's divider; empty where the PLL
/// is out of reach. Slots are in the order of `getPllNameByIndex`.
using ClockSlot = std::optional<std::pair<float, unsigned>>;

/// Position of the PLL that a peripheral takes, and the peripheral's own divider.
using DividerChoice = std::pair<unsigned, unsigned>;
using PeripheralResult = std::map<HBSPeripheral*, DividerChoice>;

/// Per PLL name: multiplier, output divider and, in trees with cross-domain clocks, cross-domain
/// divider.
using PllResult = std::map<std::string, std::vector<unsigned>>;

/// Cross-domain dividers of one try, in PLL order; the last place is always 1.
using CrossDivCombo = std::array<unsigned, 4>;

} // namespace hbs_clocking
