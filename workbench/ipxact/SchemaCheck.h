// Register descriptions and designs held against the schemas of their format.
#pragma once

#include <string>

#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"

namespace tq::ipxact {

/// Reports what of a file its schema doesn't allow, each an error "schema" with its place; gives
/// the count. The schema is looked for below `folder`: the file index.xsd with the namespace of the
/// file's root element as its target, or else any .xsd with that target that declares the root.
///
/// Only schemas beside that one are opened, whatever it or the file names; nothing is fetched.
/// Raises `InputError` for a file that `ElementTree` refuses, where there is no schema for it, and
/// for a schema that can't be used.
TQ_WORKBENCH_EXPORT std::size_t checkSchema(const std::string& path, const std::string& folder,
                                            const DiagnosticSink& sink);

} // namespace tq::ipxact
