// Checks that a block hangs together: that every name, path and reference leads to its object.
#pragma once

#include <string>
#include <vector>

#include "tq_export.h"

class HABMBlock;

/// What a check has found, each as a line for a person that begins with the path of the object.
struct TQ_EXPORT HABMBlockFindings {
    /// Faults of the model itself: an object that its name or path doesn't lead to, a wrong owner,
    /// a connection that its ends don't know of. None is to be expected, ever.
    std::vector<std::string> faults;
    /// References, and ends of connections and assigns, where nothing stands, which the model
    /// allows. Ends within a stub aren't among them, as what they lead to comes with its
    /// definition.
    std::vector<std::string> dangling;
};

class TQ_EXPORT HABMBlockCheck {
public:
    HABMBlockCheck() = delete;

    /// Walks the block and all below it; the time is linear to their objects.
    [[nodiscard]] static HABMBlockFindings run(const HABMBlock& block);
};
