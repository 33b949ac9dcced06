// A solved clock tree, or why it has no solution, as one page for a browser.
#pragma once

#include <iosfwd>
#include <string>

#include "tq_workbench_export.h"
#include "workbench/clocks/ClockReport.h"

namespace tq {

/// A self-contained HTML page: nothing is loaded. It holds the tree's picture, a table that sorts
/// and filters, and the conflicts and alternatives of the report; pointing at a PLL highlights what
/// it feeds. Follows the browser's light or dark scheme, and prints without its controls.
TQ_WORKBENCH_EXPORT void printClockPage(const ClockReport& report, float referenceMhz,
                                        const std::string& title, std::ostream& out);

/// The picture with a "data-pll" at all that belongs to a PLL.
void printMarkedClockPicture(const ClockReport& report, float referenceMhz, std::ostream& out);

} // namespace tq
