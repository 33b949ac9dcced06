// What scripts get of the runs of a clock tree.
#pragma once

#include <string>
#include <vector>

#include "bindings/core/Convert.h"
#include "bindings/interface/Findings.h"
#include "workbench/clocks/ClockReport.h"
#include "workbench/clocks/ClockSweep.h"

namespace tq::bindings {

/// A report with what its picture and its page need besides.
struct ScriptReport {
    ClockReport report;
    float referenceMhz = 0.0F;
    std::string tree;
};

struct ScriptSweep {
    ClockSweep sweep;
    std::vector<SweepPoint> points;
    std::string tree;
};

} // namespace tq::bindings
