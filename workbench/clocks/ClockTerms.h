// Terms of a clock search as options give them: pins and weights by the names of the tree.
#pragma once

#include <string>

#include "clocking/SearchTerms.h"
#include "tq_workbench_export.h"
#include "workbench/clocks/ClockTree.h"

namespace tq {

/// Adds a pin: `PLL.multiplier=90` or `PERIPHERAL.source=PLL`. Raises `InputError` that names the
/// option, the value and what was expected: a multiplier that keeps the VCO in its range, a PLL
/// within the peripheral's reach, an enabled peripheral, one pin for each.
TQ_WORKBENCH_EXPORT void addPin(const ClockTree& tree, const std::string& text,
                                hbs_clocking::SearchTerms& terms);

/// Adds a weight: `PERIPHERAL=10`, from 0.001 to 1000. Raises `InputError` likewise.
TQ_WORKBENCH_EXPORT void addWeight(const ClockTree& tree, const std::string& text,
                                   hbs_clocking::SearchTerms& terms);

} // namespace tq
