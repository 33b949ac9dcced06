// A summary of a handoff for people: counts, and what looks wrong in it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "handoff/HBSHandoff.h"
#include "tq_workbench_export.h"

namespace tq {

/// What the document holds, taken from what it was written from.
struct HandoffReport {
    /// A module with memory ranges.
    struct Master {
        std::string name;
        std::size_t ranges = 0;
    };
    /// A finding of the connectivity metadata.
    struct Warning {
        std::string kind; ///< the identifier of the finding, with blanks: "missing far port"
        std::string text;
    };

    std::string document; ///< its path
    std::string topName;
    /// Whether the metadata had all its sections; without one the document isn't complete.
    bool isComplete = true;
    std::size_t modules = 0;
    std::size_t ports = 0;         ///< of modules
    std::size_t signals = 0;       ///< different names on all ports
    std::size_t externalPorts = 0; ///< of the subsystem
    std::vector<Master> masters;   ///< in document order
    std::vector<Warning> warnings; ///< in the order of the findings
};

/// `findings` are those of deciding the handoff. Missing sections are no warnings
/// but show in `isComplete`.
[[nodiscard]] TQ_WORKBENCH_EXPORT HandoffReport
reportHandoff(const HBSHandoff& handoff, const std::string& document,
              const std::vector<Diagnostic>& findings);

/// A table of counts, and one of warnings if there are any.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string handoffTables(const HandoffReport& report);

/// The same as one JSON object.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string handoffJson(const HandoffReport& report);

} // namespace tq
