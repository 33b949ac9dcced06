// Hard block metadata files for people: their hard blocks listed, and what looks like a slip.
#pragma once

#include <string>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "hardblock/HardBlockData.h"
#include "tq_workbench_export.h"

namespace tq {

/// The hard blocks of one metadata file, in file order. The library's manager keeps them until the
/// process ends. The sink gets the findings of the manager, whose messages aren't
/// shown. Raises `InputError` for a file that isn't hard block metadata, with the place where it
/// isn't JSON.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::vector<hardblock::HardBlockData*>
readHardBlocks(const std::string& path, const DiagnosticSink& sink);

/// A table of hard blocks with the counts of what they hold.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string
hardBlockList(const std::vector<hardblock::HardBlockData*>& blocks);

/// The same as a JSON array.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string
hardBlockListJson(const std::vector<hardblock::HardBlockData*>& blocks);

/// Tables of pins, interfaces and port maps.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string hardBlockTables(hardblock::HardBlockData& block);

/// The same as one JSON object.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string hardBlockJson(hardblock::HardBlockData& block);

/// The interfaces with their logical ports and the physical pins of these, each level indented.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string hardBlockTree(hardblock::HardBlockData& block);

/// The same as one JSON object.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string hardBlockTreeJson(hardblock::HardBlockData& block);

/// The physical pins of an interface's port, or of some bits of it.
struct PortAnswer {
    /// Bits of the port and the pins that they are mapped to, in the order asked for; neighbours
    /// are joined: "A[7:4]" and "x[3:0]".
    struct Mapping {
        std::string port;
        std::string pin; ///< empty where there is none
    };

    std::vector<Mapping> mappings;
    std::string problem; ///< which bits have no pin; empty if all have

    /// Whether every bit has a pin.
    [[nodiscard]] bool isWhole() const { return problem.empty(); }
};

/// Answers for "INTERFACE:PORT", "INTERFACE:PORT[BIT]" and "INTERFACE:PORT[FIRST:LAST]", such as
/// "M_AXI:AWADDR[6:0]". The name of the interface may hold ":". Raises `InputError` for a text of
/// another form and for more than 65,536 bits.
[[nodiscard]] TQ_WORKBENCH_EXPORT PortAnswer findPins(hardblock::HardBlockData& block,
                                                      const std::string& port);

/// The pin alone for an answer of one mapping, else a table of ports and pins.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string portTable(const PortAnswer& answer);

/// A JSON object with "port" and "mapped", and with "parts", a list of such objects, if there are
/// several.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string portJson(const std::string& port,
                                                       const PortAnswer& answer);

} // namespace tq
