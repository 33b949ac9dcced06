// Exports of register descriptions for other tools.
#pragma once

#include <string>

#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"
#include "workbench/ipxact/RegisterModel.h"

namespace tq::ipxact {

/// The text of an export by the ending of the file's name: ".xml" is IP-XACT 2014, ".2022.xml" that
/// of 2022 (`ComponentWriter.h`), all others are those of `MapExport.h`. Raises `InputError` for
/// another ending.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string
exportComponent(const Component& component, const std::string& path, const DiagnosticSink& sink);

} // namespace tq::ipxact
