// Reports the missing parts of a subsystem.
#pragma once

#include "blockmodel/HABM.h"
#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"

namespace tq {

/// Reports each stub in `block` and below it, in the order of the tree, as an error: what its
/// definition describes is missing from the subsystem. `HBSAddressing::createSubsystemDefinition`
/// leaves such stubs without a message. The kinds are "recursive-definition" for a stub that names
/// a definition around it, by the name in the VLNV alone, as definitions are looked up by that
/// name, and "unresolved-stub". Linear in the blocks, with the levels above each stub.
TQ_WORKBENCH_EXPORT void reportStubs(const HABMBlock& block, const DiagnosticSink& sink);

/// The same for one stub.
[[nodiscard]] TQ_WORKBENCH_EXPORT Diagnostic findingOfStub(const HABMBlock& stub);

} // namespace tq
