// Findings of readers and checks as people and programs want them.
#pragma once

#include <string>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"

namespace tq {

/// "error", "warning" or "remark".
[[nodiscard]] TQ_WORKBENCH_EXPORT const char* severityName(Severity severity);

/// The finding as compilers show them, each line ended:
///
///     tree.json:3:25: error: unknown key "mhzz", expected one of: name, mhz [unknown-key]
///           { "name": "UART", "mhzz": 3 }
///                             ^
///     tree.json:2:7: note: first defined here
///
/// What is unknown of the place is left out. Bytes of the input that could steer a terminal, and
/// those that aren't UTF-8, are escaped.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string describe(const Diagnostic& diagnostic);

/// The first line of that without its end: for an exception's message.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string headline(const Diagnostic& diagnostic);

/// "1 error, 2 warnings, 0 remarks".
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string countsText(const DiagnosticList& findings);

/// A JSON array of objects with "severity", "id", "file", "line", "column", "text", "expected" and
/// "notes" (each with "file", "line", "column", "text"), indented by two blanks. Unknown lines and
/// columns are 0. Bytes that aren't UTF-8 become U+FFFD. See schemas/diagnostics.schema.json.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string
diagnosticsJson(const std::vector<Diagnostic>& diagnostics);

/// The JSON object {"diagnostics": [...]} of one error, for a program that asked for a result as
/// JSON where there is none.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string errorJson(const Diagnostic& error);

} // namespace tq
