// Many clock trees at once, on all cores.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

#include "tq_workbench_export.h"
#include "workbench/clocks/ClockReport.h"

namespace tq {

/// The results of a batch of trees.
struct ClockBatch {
    /// The result of one tree.
    struct Line : ClockOutcome {
        std::string path;
        std::string error; ///< why the file can't be used; empty for a tree that was solved
    };
    /// The worst first: files that can't be used, trees without a solution, then by the sum. What
    /// was interrupted isn't here.
    std::vector<Line> lines;
    std::size_t asked = 0; ///< trees that were to be solved
    std::size_t failed = 0;
    std::size_t unsolved = 0;
    bool isInterrupted = false;
};

/// False also where nothing is at the path.
[[nodiscard]] TQ_WORKBENCH_EXPORT bool isFolder(const std::string& path);

/// The files of the list, and of its folders those that end in ".json", by name. Raises
/// `InputError` for a folder that can't be read or has none.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::vector<std::string>
findTrees(const std::vector<std::string>& paths);

/// Solves each tree as one thread does, several at once. A file that can't be used becomes a
/// line with an error. `progress` may be null; else it gets a bar, rewritten in place, with the
/// throughput and what is left. Sets "general.maxThreads" to 1. One batch at a time in the process.
[[nodiscard]] TQ_WORKBENCH_EXPORT ClockBatch runClockBatch(const std::vector<std::string>& paths,
                                                           std::ostream* progress = nullptr,
                                                           unsigned threads = 0);
/// Ends the batch that runs in this process, or the next one, at once and with what is done. May be
/// called in a signal handler.
TQ_WORKBENCH_EXPORT void interruptClockBatch() noexcept;

/// A line for each tree and a summary.
TQ_WORKBENCH_EXPORT void printClockBatch(const ClockBatch& batch, std::ostream& out);
TQ_WORKBENCH_EXPORT void printClockBatchJson(const ClockBatch& batch, std::ostream& out);
/// A row for each tree.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string clockBatchCsv(const ClockBatch& batch);

} // namespace tq
