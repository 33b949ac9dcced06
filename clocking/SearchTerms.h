// Conditions of a clock search beyond its tree, and the settings that it can list.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "clocking/ClockSearchTypes.h"

namespace hbs_clocking {

/// Conditions on the answer, by the names of the tree; names that it doesn't have are ignored. With
/// none set, the result is bit for bit that of a search without terms.
struct SearchTerms {
    /// The feedback multiplier of a PLL. One that the VCO can't run with finds nothing.
    std::map<std::string, unsigned> multipliers;
    /// The PLL that feeds a peripheral. One out of its reach finds nothing.
    std::map<std::string, std::string> sources;
    /// How often a peripheral's error counts in the sum; 1 unless given. Above 0. The tolerance
    /// holds for the error as it is.
    std::map<std::string, float> weights;
    /// How many of the best settings are listed, the answer included.
    unsigned settings = 0;
};

/// A complete setting of a tree.
struct ClockSetting {
    struct Pll {
        unsigned multiplier = 0;
        unsigned outputDivider = 0;
        unsigned crossDivider = 0; ///< 0 in trees of one and two PLLs
    };
    float sum = 0.0F;                       ///< of the errors, each times its weight
    std::vector<Pll> plls;                  ///< in the order of `getPllNameByIndex`
    std::vector<DividerChoice> peripherals; ///< of the enabled peripherals, in their order
};

} // namespace hbs_clocking
