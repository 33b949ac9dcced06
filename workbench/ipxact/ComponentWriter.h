// Writes components as IP-XACT.
#pragma once

#include <string>

#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"
#include "workbench/ipxact/RegisterModel.h"

namespace tq::ipxact {

/// The editions of the standard that can be written.
enum class WrittenEdition { Ieee2014, Ieee2022 };

/// The whole file, valid against the standard's schema: memory maps with their blocks, banks,
/// register files, registers and fields, with computed values. Read again it gives the same
/// registers. A register without fields gets one with an id that marks it as none, as the standard
/// wants one. What isn't written is reported as "not-exported": unknown values, local memory maps,
/// remaps, alternates, subspace maps and all that isn't memory. Names that the standard doesn't
/// allow are changed ("renamed"); elements of arrays with labels are written one by one.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string
writeComponent(const Component& component, WrittenEdition edition, const DiagnosticSink& sink);

} // namespace tq::ipxact
