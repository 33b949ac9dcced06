// Runs an operation once for each of its allocations, with that one failing, and judges what came
// of it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "ComMsgMgr.h"
#include "memory/failing_allocations.h"

namespace memory {

/// What an operation is given: it prepares its input, does the work within `attempt`, and looks at
/// the result outside it.
class Attempt {
public:
    Attempt() = default;
    Attempt(std::uint64_t number, bool andAllLater, std::string right)
        : m_number(number), m_andAllLater(andAllLater), m_right(std::move(right)) {}

    /// The right result, for an operation that tries again itself.
    [[nodiscard]] const std::string& right() const { return m_right; }

    /// Calls `work`, which suffers the failing allocation.
    template <class Work>
    decltype(auto) operator()(Work&& work) const {
        const FailingAllocation failing(m_number, m_andAllLater);
        return std::forward<Work>(work)();
    }

private:
    std::uint64_t m_number = 0;
    bool m_andAllLater = false;
    std::string m_right;
};

/// Drops the messages sent while it lives: what a sink keeps would look like a leak.
class NoMessages {
public:
    NoMessages() : m_before(ComMsgMgr::setSink([](const ComMsg&) {})) {}
    ~NoMessages() { ComMsgMgr::setSink(std::move(m_before)); }
    NoMessages(const NoMessages&) = delete;
    NoMessages& operator=(const NoMessages&) = delete;

private:
    ComMsgMgr::Sink m_before;
};

/// The result as text; absent where the subsystem reported a failure in its own way. An operation
/// raises `std::logic_error` where it finds something changed that had to stay.
using Operation = std::function<std::optional<std::string>(const Attempt& attempt)>;

struct Trial {
    Operation operation;
    /// A process of its own for each point, so that each is the first use of the library.
    bool fresh = false;
    /// Distance between the points that are run: a process for each may take too long.
    std::uint64_t step = 1;
    /// Fails all allocations after the first one that fails, too.
    bool andAllLater = false;
    /// What stays allocated after a run by contract.
    enum class Keeps { Nothing, Results, PartsToo } keeps = Keeps::Nothing;
};

/// Goes through all points. Expects of each that the operation ends in `std::bad_alloc`, in its own
/// way of failing or with the right result, that nothing is leaked, and that it gives the right
/// result when it is done again. Prints how many points ended in which way.
void run(const Trial& trial);

/// The usual trial.
void failEachAllocation(const Operation& operation);

} // namespace memory
