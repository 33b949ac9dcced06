// The types that the solvers share with those who extend them or read their settings.
#pragma once

#include <map>
#include <set>
#include <utility>
#include <vector>

namespace hbs_clocking {

class HBSPeripheral;

/// Per peripheral the multipliers that can serve it, in the order found.
using CandidateMap = std::map<HBSPeripheral*, std::vector<unsigned>>;
/// The union of the lists.
using MultiplierSet = std::set<unsigned>;

/// Position of the PLL that a peripheral takes, in the order of `getPllNameByIndex`, and the
/// peripheral's own divider.
using DividerChoice = std::pair<unsigned, unsigned>;

} // namespace hbs_clocking
