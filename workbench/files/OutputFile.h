// Files that reports are written to.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tq_workbench_export.h"

namespace tq {

/// The path that means the standard output.
inline constexpr const char* kStandardOutput = "-";

/// Raises `InputError` if a file to be written is one of the inputs, under any name: writing
/// it would lose the input. Paths without a file are accepted, and the standard output.
TQ_WORKBENCH_EXPORT void refuseInput(const std::string& output,
                                     const std::vector<std::string>& inputs);

/// Writes a whole text or raises `OutputError`; the file that was there before stays then. What
/// isn't a file, such as a FIFO or /dev/stdout, is written to directly. "-" is the standard output;
/// an empty path means no output.
TQ_WORKBENCH_EXPORT void writeOutput(const std::string& path, std::string_view text);

} // namespace tq
