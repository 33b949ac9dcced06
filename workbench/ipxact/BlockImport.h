// Brings components and designs into the block model, and into the tables of hard blocks.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "blockmodel/HABM.h"
#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"
#include "workbench/ipxact/Design.h"
#include "workbench/ipxact/RegisterModel.h"

namespace tq::ipxact {

/// Counts of what was imported from a file.
struct ImportSummary {
    std::size_t memoryMaps = 0;
    std::size_t blocks = 0;
    std::size_t registers = 0;
    std::size_t interfaces = 0;
    std::size_t instances = 0;
    std::size_t connections = 0;
    std::size_t left = 0; ///< objects that have no place in the block model, each a finding
};

/// A component as a definition: memory maps with address blocks and registers (banks, arrays and
/// register files unrolled, in bytes), address spaces, ports, interfaces and parameters; channels
/// and bridges become connections between its own interfaces. Fields, unknown addresses, and what
/// is there in some modes only, are left out with a finding.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::unique_ptr<HABMBlock>
importComponent(const Component& component, ImportSummary& summary, const DiagnosticSink& sink);

/// A design as a definition: its instances are sub-blocks with all that they hold, at the base
/// address at which the first initiator sees them.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::unique_ptr<HABMBlock>
importDesign(const Design& design, ImportSummary& summary, const DiagnosticSink& sink);

/// The tables of a definition without sub-blocks, by their names ("addrblocks.txt"), as
/// `HBSAddrParseUtil` reads them.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::map<std::string, std::string>
definitionTexts(const HABMBlock& block);

/// Where and how `importFile` writes.
struct ImportOptions {
    std::string area;                   ///< the data area
    std::vector<std::string> libraries; ///< folders of the components of designs
    bool asTables = false;              ///< text tables instead of a compiled definition
};
/// Reads a file, a component, device or design, and writes its definition below a data area:
/// AREA/mirrel/hardblocks/NAME/NAME.bmj, or, with `asTables`, the tables in NAME/data. Returns the
/// path of what was written. Raises `InputError` for a file that can't be read or written, and for
/// a design as tables.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string importFile(const std::string& path,
                                                         const ImportOptions& options,
                                                         ImportSummary& summary,
                                                         const DiagnosticSink& sink);

/// One line: "1 memory map, 3 address blocks, …; 4 objects left out".
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string importText(const ImportSummary& summary);

} // namespace tq::ipxact
