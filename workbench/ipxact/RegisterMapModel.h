// A component's registers as the plain model that exports are written from.
#pragma once

#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"
#include "workbench/addressing/export/MapModel.h"
#include "workbench/ipxact/RegisterModel.h"

namespace tq::ipxact {

/// Each address block with its registers, arrays unrolled, in bytes. Names of registers in register
/// files hold those of the files, with "_" between. What is unknown or needs more than 64 bits is
/// left out and reported as "not-exported", as are registers that are there in some modes only.
[[nodiscard]] TQ_WORKBENCH_EXPORT MapModel mapModelOf(const Component& component,
                                                      const DiagnosticSink& sink);

/// The name of a register below its block, a single word: "CH_0_STATUS" for "CH[0]/STATUS".
[[nodiscard]] std::string flatName(std::string_view path, std::string_view blockPath);

} // namespace tq::ipxact
