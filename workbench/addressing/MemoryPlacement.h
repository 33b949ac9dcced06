// Decides whether base addresses move the memory of a memory map.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "blockmodel/HABM.h"

namespace tq {

/// `AddressMap` documents the rule. Reads the assigns of an instance once; the instance isn't
/// kept.
class MemoryPlacement {
public:
    explicit MemoryPlacement(const HABMBlock& instance);

    /// `base` is the sum of the base addresses around `map`, and `interfaces` are those of its
    /// block that refer to it. True also for a map without memory.
    [[nodiscard]] bool movesWithBase(const HABMMemoryMap& map, const HABMAddrValue& base,
                                     const std::vector<HABMInterface*>& interfaces) const;

private:
    using Blocks = std::vector<const HABMAddrBlock*>;
    enum class Hint { None, Moved, Unmoved };

    [[nodiscard]] Hint hintOfAssigns(const Blocks& memory, const HABMAddrValue& base) const;

    /// By the path of the block, which an assign keeps when the config removes the block: memory
    /// lies at the same address whether or not it is switched off.
    std::unordered_map<std::string, std::vector<HABMAddrValue>> m_offsets;
};

} // namespace tq
