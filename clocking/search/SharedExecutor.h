// The worker threads that all clock searches of the process share.
#pragma once

#include <functional>
#include <string>

namespace hbs_clocking {

/// Runs `task(0)` to `task(count - 1)` as one named graph without edges and waits for all of them.
/// The pool, made at first use with as many workers as the machine has threads, is replaced by one
/// of `count` workers when it has another number and nothing in flight. One caller at a time.
///
/// The pool belongs to the process that made it: the child of a fork leaves its parent's pool alone
/// (its memory isn't given back) and makes one of its own when it first needs it.
///
/// @throws std::bad_alloc; the next call tries again.
void runOnSharedExecutor(const std::string& name, unsigned count,
                         const std::function<void(unsigned)>& task);

} // namespace hbs_clocking
