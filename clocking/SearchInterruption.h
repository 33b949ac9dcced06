// Ends a long search of a clock tree from outside.
#pragma once

#include <atomic>
#include <exception>

#include "tq_export.h"

namespace hbs_clocking {

/// What `runSolution` of a tree of four or six PLLs raises when its search was interrupted. Results
/// and error limits of the tree are then those from before the run.
class TQ_EXPORT SearchInterrupted : public std::exception {
public:
    ~SearchInterrupted() override;
    [[nodiscard]] const char* what() const noexcept override;
};

/// The request to end the search that runs in this process, for a user who won't wait. It stays
/// until it is withdrawn, and ends every search that meets it. All operations may be called on any
/// thread and in a signal handler.
class TQ_EXPORT SearchInterruption {
public:
    SearchInterruption() = delete;

    static void request() noexcept { s_isRequested.store(true, std::memory_order_relaxed); }
    static void withdraw() noexcept { s_isRequested.store(false, std::memory_order_relaxed); }

    /// Called by the search, about once per millisecond. Raises `SearchInterrupted`.
    static void raiseIfRequested() {
        if (s_isRequested.load(std::memory_order_relaxed))
            throw SearchInterrupted();
    }

private:
    static std::atomic<bool> s_isRequested;
};

} // namespace hbs_clocking
