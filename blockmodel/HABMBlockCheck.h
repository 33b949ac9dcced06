// Checks the consistency of a block: that every name, path and reference leads to its object.
#pragma once

#include <string>
#include <vector>

#include "tq_export.h"

class HABMBlock;

/// The findings of a check, each a line of text that begins with the path of the object.
struct TQ_EXPORT HABMBlockFindings {
    /// Faults of the model itself: an object that its name or path doesn't lead to, a wrong owner,
    /// a connection that its ends don't know of. Always empty for a block that was built through
    /// this library's operations; anything else is a fault of the library or overwritten memory.
    std::vector<std::string> faults;
    /// Unresolved references and ends of connections and assigns, which the model allows. Ends
    /// within a stub aren't listed, as their objects come with its definition.
    std::vector<std::string> dangling;
};

/// The check; for tests, and after reading what others wrote.
class TQ_EXPORT HABMBlockCheck {
public:
    HABMBlockCheck() = delete;

    /// Walks the block and all below it; the time is linear in the number of objects.
    [[nodiscard]] static HABMBlockFindings run(const HABMBlock& block);
};
