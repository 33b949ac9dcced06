// Hard block definitions compiled from their text tables, and which rows were used.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "addressing/HBSAddrParseUtil.h"
#include "blockmodel/HABM.h"
#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"

namespace tq {

/// A compiled hard block, and how much of its tables was used.
struct CompiledDefinition {
    std::string folder; ///< of the hard block: its tables are in its folder "data"
    std::unique_ptr<HABMBlock> block;
    std::vector<HBSTableReport> tables; ///< in the order of their reading
    std::vector<std::string> dangling;  ///< references that lead to no object of the block
    std::string written;                ///< path of the `.bmj` file, if it was written
};

/// Compiles the tables of the hard block `name` below `directory`; the sink gets the library's
/// findings (listed at `HBSAddrParseUtil`). Raises `InputError` if a table can't be read, or if
/// there is none.
[[nodiscard]] TQ_WORKBENCH_EXPORT CompiledDefinition compileDefinition(const std::string& directory,
                                                                       const std::string& name,
                                                                       const DiagnosticSink& sink);

/// Writes FOLDER/NAME.bmj, where definitions are read from, and keeps the path in `written`. Raises
/// `OutputError` if it can't be written.
TQ_WORKBENCH_EXPORT void writeDefinition(CompiledDefinition& definition);

/// A table of tables, and the block as a tree of objects.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string definitionTables(const CompiledDefinition& definition,
                                                               bool withRegisters);

/// The same as one JSON object, without the tree, and the findings as "diagnostics". See
/// schemas/definition_report.schema.json.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string
definitionJson(const CompiledDefinition& definition, const std::vector<Diagnostic>& findings);

} // namespace tq
