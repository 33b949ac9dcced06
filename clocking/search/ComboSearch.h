// What the steps of a search of many PLLs hand to one another.
#pragma once

#include <cstdint>
#include <vector>

#include "clocking/ClockSearchTypes.h"
#include "clocking/search/CombinationList.h"
#include "clocking/search/TreeShape.h"

namespace hbs_clocking {

class TupleSearch;

/// What the candidate stage found at one tolerance.
struct StepCandidates {
    MultiplierBitMap bits;                ///< per peripheral outside the NOC domain
    std::vector<unsigned> multipliers;    ///< the union, ascending
    std::vector<unsigned> nocMultipliers; ///< ascending
};

/// One step's search: what is searched, and by whom it is asked for.
struct ComboSearch {
    const TreeShape& shape;
    const std::vector<HBSPeripheral*>& enabled;
    const CombinationList& combos;
    const TupleSearch& tuples;
    double knownSum; ///< that some combination gives; see `TupleSearch::search`
    bool isSolvable; ///< false once it is proven that no combination gives a sum
};

/// What came out best of a range of combinations.
struct ComboResult {
    PeripheralResult peripherals; ///< empty when nothing was found
    PllResult plls;
    float total = 0.0F;
    std::uint64_t evaluatedTuples = 0;
};

} // namespace hbs_clocking
