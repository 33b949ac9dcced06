// What is wrong with the address ranges of a handoff.
#pragma once

#include "handoff/HWHFindings.h"
#include "handoff/HWHModel.h"

namespace hwh {

/// Warns of addresses that can't be read, of a start without an end, of ranges that end before they
/// start, and of ranges that overlap in the map of a master, once for each pair. The inside and the
/// outside of one piece may have the same range.
void checkRanges(const Model& model, const Findings& findings);

} // namespace hwh
