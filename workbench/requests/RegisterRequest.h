// A question about a register description file, with all its options.
#pragma once

#include <string>
#include <vector>

#include "tq_workbench_export.h"
#include "workbench/requests/Console.h"

namespace tq {

/// Lists and exports the registers of an IP-XACT or CMSIS-SVD file; or, strictly, those that the
/// narrow reader of the library finds, and where it stops.
struct TQ_WORKBENCH_EXPORT RegisterRequest {
    std::string file;
    std::string match = "*";            ///< names to list, as `fnmatch`
    std::vector<std::string> libraries; ///< folders of definitions
    std::vector<std::string> exports;   ///< files, by their endings
    std::string schemas; ///< folder of schemas to hold the file against; empty: it isn't
    bool fields = false;
    bool strict = false;
    bool json = false;

    /// Raises `InputError`.
    [[nodiscard]] Outcome run(const Console& console) const;

private:
    [[nodiscard]] Outcome runStrict(const Console& console) const;
};

} // namespace tq
