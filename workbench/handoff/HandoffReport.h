// What a person wants to know of a handoff: its counts, and what looks wrong in it.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "handoff/HWHTables.h"
#include "tq_workbench_export.h"

namespace tq {

/// Taken from the written document, so that it tells what a reader of the document will find.
struct HandoffReport {
    struct Master {
        std::string name;
        std::size_t ranges = 0;
    };
    /// Something the library passes over in silence.
    struct Warning {
        const char* kind;
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
    std::vector<Warning> warnings; ///< in document order, kind after kind

    /// Kinds of warnings.
    static constexpr const char* kMissingFarPort = "missing far port";
    static constexpr const char* kTwoNames = "two names";
    static constexpr const char* kUnresolved = "unresolved parameter";
};

/// A table of counts, and one of warnings if there are any.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string handoffTables(const HandoffReport& report);

/// The same as one JSON object.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string handoffJson(const HandoffReport& report);

/// Reads the document. `parameters` are the metadata's: a value that went into the document
/// unchanged, looks like a name and names no design parameter resolved to nothing.
/// Raises `InputError` for a file that is no such document.
[[nodiscard]] TQ_WORKBENCH_EXPORT HandoffReport
reportHandoff(const std::string& document, const HWHParameterTable& parameters,
              const std::map<std::string, std::string>& design);

} // namespace tq
