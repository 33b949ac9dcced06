// Long searches: one at a time in the process, beside other threads of the scripts, with a way out
// for the user.
#pragma once

#include <functional>

#include "bindings/core/Object.h"

namespace tq::bindings {

/// What a language does while one of its threads waits for a search.
class TQ_BINDINGS_EXPORT Waiting {
public:
    Waiting() = default;
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;
    virtual ~Waiting();

    /// Lets the language's other threads run, and stops them again.
    virtual void letOthersRun() {}
    virtual void stopOthers() {}
    /// Whether the user wants the search to end; asked about fifty times a second, between
    /// `letOthersRun` and `stopOthers`.
    [[nodiscard]] virtual bool isInterrupted() { return false; }
};

/// Lets the other threads of the language run for as long as it lives.
class OthersRun {
public:
    explicit OthersRun(Waiting& waiting) : m_waiting(waiting) { m_waiting.letOthersRun(); }
    ~OthersRun() { m_waiting.stopOthers(); }
    OthersRun(const OthersRun&) = delete;
    OthersRun& operator=(const OthersRun&) = delete;

private:
    Waiting& m_waiting;
};

/// Runs `work` for a clock tree, on a thread of its own, while the calling thread waits. Until it
/// ends, the tree can't be used by others. Called without the lock of the registry. Raises what
/// `work` raises; `ScriptError` for a tree that is gone or searched already, and for a
/// search within a search; `SearchInterrupted` once the user has enough, also where the work came
/// to its end at that moment.
TQ_BINDINGS_EXPORT void runSearch(Object& root, Waiting& waiting,
                                  const std::function<void()>& work);

/// Ends the searches that run, and gives them a while to end: for a process that is about to exit.
TQ_BINDINGS_EXPORT void endSearches() noexcept;

/// In the child of a fork: no search runs there, whatever ran in the parent.
void forgetSearch() noexcept;

} // namespace tq::bindings
