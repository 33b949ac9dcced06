// A question about a hardware handoff, with all its options.
#pragma once

#include <string>
#include <vector>

#include "tq_workbench_export.h"
#include "workbench/requests/Console.h"

namespace tq {

/// Writes the document of a job to `output`, checks the job, shows its maps or a net, or compares
/// two documents: one of these.
struct TQ_WORKBENCH_EXPORT HandoffRequest {
    std::string job;
    std::string output;
    bool noTimeStamp = false;
    bool check = false;
    bool map = false;
    std::string master;                 ///< of the map; empty: all
    std::vector<std::string> exports;   ///< files for the map, by their endings
    std::string net;                    ///< MODULE.PORT
    std::vector<std::string> documents; ///< two to compare, or none
    bool json = false;

    /// Raises `InputError`.
    [[nodiscard]] Outcome run(const Console& console) const;

private:
    [[nodiscard]] Outcome write(const Console& console) const;
    [[nodiscard]] Outcome runCheck(const Console& console) const;
    [[nodiscard]] Outcome showMap(const Console& console) const;
    [[nodiscard]] Outcome showNet(const Console& console) const;
    [[nodiscard]] Outcome showDifferences(const Console& console) const;
};

} // namespace tq
