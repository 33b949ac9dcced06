// A given setting of a clock tree's PLLs and peripherals, checked from the arithmetic alone.
#pragma once

#include <iosfwd>
#include <optional>

#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"
#include "workbench/clocks/ClockTree.h"
#include "workbench/files/JsonFile.h"

namespace tq {

/// The outcome of a check.
struct ClockCheck {
    DiagnosticList findings; ///< each broken rule is an error, with its number and its bound
    /// Sum of the relative errors of the enabled peripherals whose clock is known; a divider of
    /// 1023 and a request of 0 count as no error, as they do in a search.
    double sum = 0.0;
    std::optional<double> bestSum; ///< of the solver's own answer, once added

    /// Whether the setting keeps to all rules.
    [[nodiscard]] bool holds() const { return !findings.hasErrors(); }
};

/// Checks a file that `hbs clocks --json` printed, or one written by hand, that has at least
///
///     {
///       "plls": [ { "name": "PLL0", "multiplier": 90, "output_divider": 2,
///                   "cross_domain_divider": 0 }, ... ],
///       "peripherals": [ { "name": "UART", "pll": "PLL0", "divider": 15 }, ... ]
///     }
///
/// The rules, each with the relative margin of 1e-5 that the solvers grant:
///
/// - multipliers are 25 to 160 and keep the VCO within 2160 to 4320 MHz;
/// - output dividers are 1, 2, 4 or 8 and keep the PLL under the highest limit of its domain (the
///   main PLL of larger trees under the NOC domain's). That of the NOC PLL is the whole number
///   nearest to VCO ÷ request instead, and its VCO must reach the request from below by 1, 2, 4 or
///   8;
/// - cross-domain dividers are 1 to 4 where a clock crosses, else 4, and 0 in trees of one and two
///   PLLs; a clock stays under the crossing limit wherever peripherals could take it;
/// - every enabled peripheral takes a PLL within its reach, divides by 1 to 1023 and is within its
///   allowed error; the NOC peripheral gets at most 0.01 % more than it asks for;
/// - frequencies, errors and the sum that the file states are those of its dividers.
///
/// Its form is that of schemas/clock_assignment.schema.json.
///
/// The check has its own arithmetic, in double precision, and shares none with the search. Raises
/// `InputError` for a file of another form, and for a tree that its solver refuses.
[[nodiscard]] TQ_WORKBENCH_EXPORT ClockCheck checkClockSetting(const ClockTree& tree,
                                                               const JsonFile& setting);

/// Runs the tree's solver for the sum to compare with.
TQ_WORKBENCH_EXPORT void addBestSum(ClockCheck& check, const ClockTree& tree);

/// The outcome without the findings: the sum, and how far it is from the best.
TQ_WORKBENCH_EXPORT void printClockCheck(const ClockCheck& check, std::ostream& out);
/// "valid", the sums, "distance_ppm" and "findings" as one JSON object.
TQ_WORKBENCH_EXPORT void printClockCheckJson(const ClockCheck& check, std::ostream& out);

} // namespace tq
