// Exports of solved clock trees for other tools.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"
#include "workbench/clocks/ClockReport.h"

namespace tq {

/// The formats, by the endings of their files.
enum class ClockFormat {
    Devicetree,  ///< ".dts", ".dtsi": fixed-factor clocks, and consumers with assigned rates
    Constraints, ///< ".sdc": a clock for the reference, generated clocks with exact ratios
    CHeader,     ///< ".h": macros, for C11 and C++17
    Csv,         ///< ".csv": a row for each peripheral
    Markdown,    ///< ".md": tables of PLLs and peripherals
};

/// By the ending of a file's name; empty for any other.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::optional<ClockFormat> clockFormatOf(std::string_view path);

/// The endings as a list for people: ".dts, .dtsi, …".
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string clockFormatEndings();

/// The whole file, of a report with a solution. Frequencies in Hz are rounded to whole ones. Names
/// are made legal in the format; the sink gets a remark for names that become equal
/// ("name-clash"). Disabled peripherals are left out. Raises `InputError` where a PLL's output
/// divider is 0, as that of a NOC clock beyond every PLL is.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string exportClocks(const ClockReport& report,
                                                           float referenceMhz, ClockFormat format,
                                                           const DiagnosticSink& sink = {});

} // namespace tq
