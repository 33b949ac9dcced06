// The searches of one and two PLLs as plain as they can be told: nothing pruned, nothing worked
// out ahead, no code shared with the library. What the solvers are held against, bit for bit.
#pragma once

#include <string>

#include "clocking/trees.h"

namespace reference {

/// The description, as `trees::describe` gives it, that a solver fresh from `trees::build` must
/// have after its run.
std::string solve(const trees::Tree& tree);

} // namespace reference
