// The registers of a description file, as the library's reader finds them, and where it stopped.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "regfile/HBSRegFileParser.h"
#include "tq_workbench_export.h"

namespace tq {

/// The registers of a file, and the places where the reader stopped.
struct RegisterList {
    std::unique_ptr<hbs::HBSRegistersMap> map;
    std::vector<const hbs::HBSRegister*> registers; ///< of the map, in file order
    std::vector<hbs::HBSRegFileStop> stops;         ///< likewise
};

/// Lists the registers whose names match a pattern (as `fnmatch`). Each place where the reader
/// stopped, and a file without registers, is a warning. Raises `InputError` for a file that can't
/// be parsed.
[[nodiscard]] TQ_WORKBENCH_EXPORT RegisterList listRegisters(const std::string& path,
                                                             const std::string& pattern,
                                                             const DiagnosticSink& sink);

/// A table of names, offsets and descriptions; empty for no registers.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string registerTable(const RegisterList& list);

/// A JSON object of "registers", "stops" and the findings as "diagnostics".
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string registerJson(const RegisterList& list,
                                                           const std::vector<Diagnostic>& findings);

} // namespace tq
