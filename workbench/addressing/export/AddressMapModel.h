// The address map of a subsystem as the plain model that exports are written from.
#pragma once

#include <string>

#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"
#include "workbench/addressing/AddressMap.h"
#include "workbench/addressing/export/MapModel.h"

namespace tq {

/// All blocks of the map at their own addresses, in its order, with their registers unless
/// `withRegisters` is false. What needs more than 64 bits is left out, and
/// reported as "not-exported".
[[nodiscard]] TQ_WORKBENCH_EXPORT MapModel mapModelOf(const AddressMap& map,
                                                      const std::string& name,
                                                      bool withRegisters = true,
                                                      const DiagnosticSink& sink = {});

} // namespace tq
