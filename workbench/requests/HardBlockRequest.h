// A question about a file of hard block metadata, with all its options.
#pragma once

#include <string>

#include "hardblock/HardBlockData.h"
#include "tq_workbench_export.h"
#include "workbench/requests/Console.h"

namespace tq {

/// Lists the hard blocks of a file, or shows one: all of it, its tree or the pins of a port.
struct TQ_WORKBENCH_EXPORT HardBlockRequest {
    std::string file;
    std::string name; ///< of the block; empty: all are listed
    std::string port; ///< see `findPins`
    bool tree = false;
    bool json = false;

    /// Raises `InputError`.
    [[nodiscard]] Outcome run(const Console& console) const;

private:
    [[nodiscard]] Outcome showBlock(const Console& console, hardblock::HardBlockData& block) const;
    [[nodiscard]] Outcome showPort(const Console& console, hardblock::HardBlockData& block) const;
};

} // namespace tq
