// Findings as a part of a JSON document.
#pragma once

#include <vector>

#include "diagnostics/Diagnostic.h"
#include "workbench/text/JsonWriter.h"

namespace tq {

/// Writes an array, in the form of `diagnosticsJson`.
void writeDiagnostics(JsonWriter& json, const std::vector<Diagnostic>& diagnostics);

} // namespace tq
