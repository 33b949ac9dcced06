// Faults in the registers and interfaces of a component.
#pragma once

#include "diagnostics/Diagnostic.h"
#include "workbench/ipxact/ElementTree.h"
#include "workbench/ipxact/RegisterModel.h"

namespace tq::ipxact {

/// Reports, each with its place: fields that overlap or stick out of their register, registers that
/// overlap (unless one is only read and the other only written) or lie beyond their block, blocks
/// that overlap, resets wider than what they reset, names that occur twice, and references of
/// interfaces, bridges, channels and subspace maps to nothing. Unknown values are in no fault.
/// `tree` is the one that the component was read from.
void checkComponent(const Component& component, const ElementTree& tree,
                    const DiagnosticSink& sink);

} // namespace tq::ipxact
