// One net of a handoff: all that is on it, and why it has its name.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "handoff/HBSHandoff.h"
#include "tq_workbench_export.h"

namespace tq {

/// All ends that are joined by connections, whichever of them lists the other.
struct HandoffNet {
    /// A port of a module, or of the subsystem's outside.
    struct End {
        std::string module; ///< of an outer port the top
        std::string port;
        bool isThere = true; ///< false for an end that is only connected to
        std::string direction;
        std::string kind;
        std::string signal;
        std::string reason;                ///< why it carries that signal, as a sentence
        std::vector<std::string> connects; ///< ends that it lists, "MODULE.PORT"
    };

    std::vector<std::string> names; ///< of signals, in the order of their first occurrence
    std::vector<End> ends;          ///< in document order, then outer ports, then missing ends
};

/// The net of "MODULE.PORT"; either name may hold dots. Raises `InputError` if there is no such
/// port, with the ports of the module or the modules. Linear in the handoff.
[[nodiscard]] TQ_WORKBENCH_EXPORT HandoffNet findNet(const HBSHandoff& handoff,
                                                     const std::string& end);

/// Two tables: the ends, and what they connect to.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string netTables(const HandoffNet& net);

/// The same as one JSON object.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string netJson(const HandoffNet& net);

} // namespace tq
