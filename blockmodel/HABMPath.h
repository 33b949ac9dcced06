// Paths of the block model's objects.
#pragma once

#include <string>

#include "tq_export.h"

class HABMBlock;

/// The path of a top block is the empty text. The path of any other object is the path of its
/// owner, "/" and its name: "/cpu0" is a sub-block of the top block, "/cpu0/M_AXI" an interface of
/// it and "/cpu0/map/block/register" a register. No name holds a "/".
class TQ_EXPORT HABMPath {
public:
    HABMPath() = delete;

    /// The path of an object at or below `block` as seen from the block, without a "/" in front:
    /// the form that `HABMBlock::findRegister` takes. Empty for the block's own path and for a path
    /// that doesn't lead below it.
    [[nodiscard]] static std::string get_relative_path(const HABMBlock& block,
                                                       const std::string& path);
};
