// What the steps of a search of many PLLs hand to one another.
#pragma once

#include <cstdint>
#include <vector>

#include "clocking/ClockSearchTypes.h"
#include "clocking/search/CombinationList.h"
#include "clocking/search/TreeShape.h"

namespace hbs_clocking {

/// What the candidate stage found at one tolerance.
struct StepCandidates {
    MultiplierBitMap bits;                ///< per peripheral outside the NOC domain
    std::vector<unsigned> multipliers;    ///< the union, ascending
    std::vector<unsigned> nocMultipliers; ///< ascending
};

/// What came out best of the combinations.
struct ComboResult {
    PeripheralResult peripherals; ///< empty when nothing was found
    PllResult plls;
    float total = 0.0F;
};

} // namespace hbs_clocking
