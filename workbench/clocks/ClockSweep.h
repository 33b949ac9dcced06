// Sweeps: a tree solved once for each of several values of one of its numbers.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "tq_workbench_export.h"
#include "workbench/clocks/ClockReport.h"
#include "workbench/clocks/ClockTree.h"

namespace tq {

/// What a sweep changes, and to which values.
struct ClockSweep {
    enum class What { Reference, MaxCross, PllLimit, Request, AllowedError };

    std::string subject; ///< as it was given, such as "reference" or "UART0.mhz"
    What what = What::Reference;
    std::size_t pll = 0;        ///< of a limit, among all PLLs in the order of the file
    std::size_t peripheral = 0; ///< of a request or an allowed error
    std::vector<double> values; ///< ascending, each once
};

/// Reads `SUBJECT=VALUE,FIRST:LAST:STEP,...`. Subjects are `reference` and `max_cross`, `PLL.max`,
/// and `PERIPHERAL.mhz` and `PERIPHERAL.max_error`, with the names of the tree. Values are MHz and
/// percent; at most 10,000 of them. Raises `InputError` that says what was expected.
[[nodiscard]] TQ_WORKBENCH_EXPORT ClockSweep readClockSweep(const ClockTree& tree,
                                                            const std::string& text);

/// The answer for one value of a sweep.
struct SweepPoint : ClockOutcome {
    double value = 0.0;
};

/// One point for each value. Each is the answer of its own tree, whatever was solved before. Raises
/// `SearchInterrupted` when interrupted (clocking/SearchInterruption.h).
[[nodiscard]] TQ_WORKBENCH_EXPORT std::vector<SweepPoint> runClockSweep(const ClockTree& tree,
                                                                        const ClockSweep& sweep);

/// The point of the smallest sum, the first of equals; null where none has a solution.
[[nodiscard]] TQ_WORKBENCH_EXPORT const SweepPoint*
bestPoint(const std::vector<SweepPoint>& points);

/// A table with bars, whose length follows the logarithm of the sum, and the best value.
TQ_WORKBENCH_EXPORT void printClockSweep(const ClockSweep& sweep,
                                         const std::vector<SweepPoint>& points, std::ostream& out);
/// The same as one JSON object.
TQ_WORKBENCH_EXPORT void printClockSweepJson(const ClockSweep& sweep,
                                             const std::vector<SweepPoint>& points,
                                             std::ostream& out);
/// The sum and the worst error over the values as an SVG document, with a logarithmic scale.
TQ_WORKBENCH_EXPORT void printClockSweepPicture(const ClockSweep& sweep,
                                                const std::vector<SweepPoint>& points,
                                                std::ostream& out);

} // namespace tq
