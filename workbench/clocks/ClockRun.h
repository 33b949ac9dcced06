// One tree solved on its own: the solver with its result, and the lines that it printed.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "clocking/HBSClockingAlgo.h"
#include "tq_workbench_export.h"
#include "workbench/clocks/ClockTree.h"

namespace tq {

/// Keeps the library's lines off standard output while it lives, apart for each thread. One at a
/// time in the process; solvers may run on several threads meanwhile.
class TQ_WORKBENCH_EXPORT LibraryTexts {
public:
    LibraryTexts();
    ~LibraryTexts();
    LibraryTexts(const LibraryTexts&) = delete;
    LibraryTexts& operator=(const LibraryTexts&) = delete;

    /// The different lines said on this thread since the last call, in the order in which each was
    /// said first. Raises `std::bad_alloc` if some of them found no memory.
    [[nodiscard]] std::vector<std::string> takeLines();

private:
    struct Buffer;
    std::unique_ptr<Buffer> m_buffer;
    std::streambuf* m_before;
};

/// The complaint of the tree's solver about the shape of the tree, or an empty text.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string faultOfClockTree(const ClockTree& tree);

/// A solved tree, or one without a solution, and what the solver printed.
struct ClockRun {
    std::unique_ptr<hbs_clocking::HBSClockingAlgo> solver; ///< after its run
    std::vector<std::string> said;                         ///< each line once
};

/// Solves the tree, with nothing on standard output. The answer never comes from the process's
/// store of solutions, so that no other tree's can be given. Give `texts` where several runs share
/// one, as runs on several threads must. A search keeps to the terms.
[[nodiscard]] TQ_WORKBENCH_EXPORT ClockRun
runClockTree(const ClockTree& tree, const StepObserver& observer = {},
             LibraryTexts* texts = nullptr, const hbs_clocking::SearchTerms& terms = {});

/// Whether a search found a setting and gave every request less than its allowed error.
[[nodiscard]] TQ_WORKBENCH_EXPORT bool
meetsAllRequests(const ClockTree& tree, const hbs_clocking::HBSClockingAlgo& solver);

} // namespace tq
