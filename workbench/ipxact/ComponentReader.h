// Reads components of the IP-XACT standard, in every edition from SPIRIT 1.4 to IEEE 1685-2022.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "diagnostics/Diagnostic.h"
#include "workbench/ipxact/ElementTree.h"
#include "workbench/ipxact/Parameters.h"
#include "workbench/ipxact/RegisterModel.h"

namespace tq::ipxact {

/// Finds the file of another top element, such as the type definitions that a component names;
/// null where there is none.
using TreeLookup = std::function<std::shared_ptr<const ElementTree>(const Vlnv&)>;

/// Reads a component with the values that its parameters have, or get from `overrides`. Elements
/// that the standard doesn't have, values that can't be computed and references to nothing are
/// findings; reading goes on. Raises `InputError` where the root isn't a component.
[[nodiscard]] Component readComponent(const ElementTree& tree, const Overrides& overrides,
                                      const TreeLookup& lookup, const DiagnosticSink& sink);

/// The identifying elements below a root.
[[nodiscard]] Vlnv vlnvOf(Element root);
/// The same from the attributes of a reference.
[[nodiscard]] Vlnv vlnvOfReference(Element reference);

} // namespace tq::ipxact
