// Paths of the block model's objects.
#pragma once

#include <string>

#include "tq_export.h"

class HABMAddrBlock;
class HABMAddrSegment;
class HABMBlock;
class HABMInterface;
class HABMPort;

/// The path of a top block is the empty text. The path of any other object is the path of its
/// owner, "/" and its name: "/cpu0" is a sub-block of the top block, "/cpu0/M_AXI" an interface of
/// it and "/cpu0/map/block/register" a register. No name holds a "/".
class TQ_EXPORT HABMPath {
public:
    HABMPath() = delete;

    /// True for a name that an object with a path may have: not empty, and without a "/".
    [[nodiscard]] static bool isName(const std::string& name);

    // --- Look-ups. The path is a full one, from the top block of the tree that `block` belongs to.
    // Null if no object of that kind has it. ---

    /// The empty path gives the top block.
    [[nodiscard]] static const HABMBlock* findBlock(const HABMBlock& block,
                                                    const std::string& path);
    [[nodiscard]] static HABMPort* findPort(const HABMBlock& block, const std::string& path);
    [[nodiscard]] static HABMInterface* findInterface(const HABMBlock& block,
                                                      const std::string& path);
    /// "/instance/map/block".
    [[nodiscard]] static HABMAddrBlock* findAddrBlock(const HABMBlock& block,
                                                      const std::string& path);
    /// "/instance/space/segment".
    [[nodiscard]] static HABMAddrSegment* findAddrSegment(const HABMBlock& block,
                                                          const std::string& path);

    /// The path of an object at or below `block` as seen from the block, without a "/" in front:
    /// the form that `HABMBlock::findRegister` takes. Empty for the block's own path and for a path
    /// that doesn't lead below it.
    [[nodiscard]] static std::string get_relative_path(const HABMBlock& block,
                                                       const std::string& path);
};
