// Hard block metadata files for people: their hard blocks listed, and what looks like a slip.
#pragma once

#include <string>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "hardblock/HardBlockData.h"
#include "tq_workbench_export.h"

namespace tq {

/// The hard blocks of one metadata file, in file order. They live to the end of the process, as the
/// library's manager keeps them. The manager's messages (of values that it skips) become warnings;
/// unknown keys, which it ignores, too. Raises `InputError` for a file that isn't hard block
/// metadata.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::vector<hardblock::HardBlockData*>
readHardBlocks(const std::string& path, const DiagnosticSink& sink);

/// Tables of pins, interfaces and port maps.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string hardBlockTables(hardblock::HardBlockData& block);

/// The same as one JSON object.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string hardBlockJson(hardblock::HardBlockData& block);

/// The physical pin behind one bit of an interface's port.
struct PortAnswer {
    std::string pin;     ///< empty where there is none
    std::string problem; ///< why there is none
};

/// Answers for "INTERFACE:PORT", such as "M_AXI:AWADDR[6]". Raises `InputError` for a text of
/// another form.
[[nodiscard]] TQ_WORKBENCH_EXPORT PortAnswer findPin(hardblock::HardBlockData& block,
                                                     const std::string& port);

/// A JSON object with "port" and "mapped", for an answer that names a pin.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string portJson(const std::string& port,
                                                       const PortAnswer& answer);

} // namespace tq
