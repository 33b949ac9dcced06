// Reads CMSIS-SVD device descriptions into the model of components.
#pragma once

#include "diagnostics/Diagnostic.h"
#include "workbench/ipxact/ElementTree.h"
#include "workbench/ipxact/RegisterModel.h"

namespace tq::ipxact {

[[nodiscard]] bool isSvd(const ElementTree& tree);

/// A device becomes a memory map of its name, each peripheral an address block, a cluster a
/// register file. Sizes, accesses and resets come from the levels around, `derivedFrom` from the
/// other object, whose own elements win. Numbers that can't be read, objects derived from nothing
/// and unknown elements are findings. Copies of derived objects are made up to `kMostDerived` in
/// all.
inline constexpr std::size_t kMostDerived = 300'000;
[[nodiscard]] Component readSvd(const ElementTree& tree, const DiagnosticSink& sink);

} // namespace tq::ipxact
