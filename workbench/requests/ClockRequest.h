// A question about clock tree files, with all its options.
#pragma once

#include <string>
#include <vector>

#include "tq_workbench_export.h"
#include "workbench/clocks/ClockTree.h"
#include "workbench/requests/Console.h"

namespace tq {

/// One tree is solved, checked (`settingPath`) or swept; several, or a folder, are solved on all
/// cores.
struct TQ_WORKBENCH_EXPORT ClockRequest {
    std::vector<std::string> paths; ///< at least one
    bool json = false;
    bool explain = false;
    int threads = 1; ///< one number everywhere, as near ties are decided by the split
    std::string picturePath;
    std::string pagePath;
    std::string settingPath;
    std::string sweep; ///< see `readClockSweep`
    unsigned alternatives = 0;
    std::vector<std::string> pins;    ///< see `addPin`
    std::vector<std::string> weights; ///< see `addWeight`
    std::vector<std::string> exports; ///< files, by their endings

    /// Whether the paths are several trees or a folder.
    [[nodiscard]] bool isBatch() const;
    /// Reads, solves, prints and writes. Outputs are checked before anything is solved. Raises
    /// `InputError`.
    [[nodiscard]] Outcome run(const Console& console) const;

private:
    void checkOutputs() const;
    [[nodiscard]] Outcome runBatch(const Console& console) const;
    [[nodiscard]] Outcome runCheck(const Console& console, const ClockTree& tree) const;
    [[nodiscard]] Outcome runSweep(const Console& console, const ClockTree& tree) const;
    [[nodiscard]] Outcome solve(const Console& console, const ClockTree& tree) const;
};

} // namespace tq
