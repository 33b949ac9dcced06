// What a run came to, as members of a JSON object.
#pragma once

#include "workbench/clocks/ClockReport.h"
#include "workbench/text/JsonWriter.h"

namespace tq {

/// Adds "solved", and for a solution "tolerance", "sum_ppm", "worst_ppm" and "worst".
void writeOutcome(const ClockOutcome& outcome, JsonWriter& json);

} // namespace tq
