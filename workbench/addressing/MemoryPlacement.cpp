#include "workbench/addressing/MemoryPlacement.h"

#include <algorithm>
#include <utility>

namespace tq {

namespace {

constexpr HABMAddrValue kZero{std::uint64_t{0}};

std::vector<const HABMAddrBlock*> memoryOf(const HABMMemoryMap& map) {
    std::vector<const HABMAddrBlock*> memory;
    for (const HABMAddrBlock* block : map.getAddrBlocks())
        if (block->getMemoryType() == HABMAddrBlock::MemoryType::Memory)
            memory.push_back(block);
    return memory;
}

/// The windows through which the initiators of a memory map look out.
class Windows {
public:
    explicit Windows(const std::vector<HABMInterface*>& interfaces) {
        for (HABMInterface* interface : interfaces)
            for (const HABMInterface* source : interface->getSourceInterfaces())
                addSpaceOf(*source);
        std::sort(m_windows.begin(), m_windows.end());
        HABMAddrValue reached;
        for (auto& [start, last] : m_windows)
            last = reached = std::max(reached, last);
    }

    /// True if each block, moved by `base`, lies in one window.
    [[nodiscard]] bool hold(const std::vector<const HABMAddrBlock*>& memory,
                            const HABMAddrValue& base) const {
        return std::all_of(memory.begin(), memory.end(), [&](const HABMAddrBlock* block) {
            const HABMAddrAperture moved(base.plus(block->getOffset()), block->getRange());
            return hold(moved.getStart(), moved.getHighAddress());
        });
    }

private:
    void addSpaceOf(const HABMInterface& initiator) {
        const HABMAddrSpace* const space =
            initiator.isSourceInterface()
                ? initiator.getParent()->getAddrSpace(initiator.getAddrSpaceRef())
                : nullptr;
        if (space == nullptr)
            return;
        for (const HABMAddrSegment* segment : space->getAddrSegments())
            m_windows.emplace_back(segment->getOffset(), segment->getAperture().getHighAddress());
    }

    [[nodiscard]] bool hold(const HABMAddrValue& start, const HABMAddrValue& last) const {
        const auto after = std::upper_bound(m_windows.begin(), m_windows.end(), start,
                                            [](const HABMAddrValue& address, const auto& window) {
                                                return address < window.first;
                                            });
        return last.isValid() && after != m_windows.begin() && !(std::prev(after)->second < last);
    }

    /// Start, and the furthest last address of this window and those before it: the window that
    /// holds a range, if any does, starts at or before the range and ends the furthest.
    std::vector<std::pair<HABMAddrValue, HABMAddrValue>> m_windows;
};

} // namespace

MemoryPlacement::MemoryPlacement(const HABMBlock& instance) {
    for (const HABMAddrAssign* assign : instance.findAddrAssigns("", true))
        if (assign->getAssignType() != HABMAddrAssign::Excluded)
            m_offsets[assign->getSourcePath()].push_back(assign->getOffset());
}

bool MemoryPlacement::movesWithBase(const HABMMemoryMap& map, const HABMAddrValue& base,
                                    const std::vector<HABMInterface*>& interfaces) const {
    // Both placements are the same without memory or without a base; the cheap answers come first.
    const Blocks memory = memoryOf(map);
    if (memory.empty() || base == kZero)
        return true;
    const Hint hint = hintOfAssigns(memory, base);
    if (hint != Hint::None)
        return hint == Hint::Moved;
    const Windows windows(interfaces);
    return windows.hold(memory, base) || !windows.hold(memory, kZero);
}

MemoryPlacement::Hint MemoryPlacement::hintOfAssigns(const Blocks& memory,
                                                     const HABMAddrValue& base) const {
    Hint hint = Hint::None;
    for (const HABMAddrBlock* block : memory) {
        const auto found = m_offsets.find(block->getPath());
        if (found == m_offsets.end())
            continue;
        for (const HABMAddrValue& offset : found->second) {
            // One initiator that sees the memory at its moved place is enough: another may reach
            // it at its bare offset through an alias.
            if (offset == base.plus(block->getOffset()))
                return Hint::Moved;
            if (offset == block->getOffset())
                hint = Hint::Unmoved;
        }
    }
    return hint;
}

} // namespace tq
