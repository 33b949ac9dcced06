// The tool's messages as findings.
#pragma once

#include "ComMsgMgr.h"
#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"

namespace tq {

/// A message as a warning, as the operation that sent it goes on. The id is that in the catalogue,
/// such as "91-44", else the scope; the lines after the first, such as a script's trace, are notes.
///
///     ComMsgMgr::setSink([](const ComMsg& message) {
///         std::cerr << describe(findingOf(message));
///     });
[[nodiscard]] TQ_WORKBENCH_EXPORT Diagnostic findingOf(const ComMsg& message);

} // namespace tq
