// The address map of a configured hard block subsystem: where its registers and memories lie, what
// its initiators see, and what the config removed.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "blockmodel/HABM.h"
#include "tq_workbench_export.h"

namespace tq {

/// Built once from a definition and an instance of it; never changes. The rows are copies of
/// addresses and names and point to the objects behind them, so that definition and instance must
/// outlive the map and mustn't change meanwhile. Addresses and sizes are in bytes; one that can't
/// be computed (it would need more than 127 bits, or the block has none) is invalid. Paths are
/// those of the block model without the leading "/".
///
///     const auto instance = HBSAddressing::createSubsystemInstance(*definition, config);
///     const AddressMap map(*definition, *instance);
///     for (const AddressMap::Block& block : map.blocks())
///         ...
///
/// Where things lie: the base address of a sub-block moves all that its memory maps hold, and so do
/// those of the blocks around it; an invalid one counts as 0. The one exception is memory whose map
/// holds bus addresses already, as that of a memory controller whose base address is that of its
/// registers. The initiators tell: an assign that isn't "excluded" puts the memory at its offset in
/// the map and none puts it where the base address would, or, without either, the windows (address
/// segments) of the initiators that lead to the map in the definition hold all its memory unmoved,
/// and not all of it moved. So the map agrees with the addressing report, which gives offsets in
/// the memory maps (`definition->getOffset()`) and addresses of assigns.
///
/// Cost: time and memory are linear in the objects of both trees and in what the map shows, with
/// a logarithm for sorting, and with the initiators that are looked up for unassigned memory in
/// blocks with a base address. Building raises `std::bad_alloc` alone.
class TQ_WORKBENCH_EXPORT AddressMap {
public:
    /// How a memory map is reached in the instance; empty for one that the config removed.
    struct Access {
        std::vector<const HABMInterface*> interfaces; ///< of its own block, that refer to it
        std::vector<const HABMInterface*> ports;      ///< of the top block, that lead to those
    };

    /// An address block of the definition.
    struct Block {
        HABMAddrValue base;
        HABMAddrValue end; ///< last address; the base if it is empty
        HABMAddrValue size;
        std::string path;
        const HABMAddrBlock* definition = nullptr;
        const HABMAddrBlock* instance = nullptr; ///< null if the config removed it
        std::shared_ptr<const Access> access;    ///< shared by the rows of a memory map
    };

    /// Something in an address space: a window, or an address block that was assigned.
    struct SpaceEntry {
        HABMAddrValue start;
        HABMAddrValue size;
        std::string name; ///< of a window; of an assigned block the path
        const HABMAddrSegment* segment = nullptr;
        const HABMAddrAssign* assign = nullptr; ///< null for a window
        const HABMAddrBlock* block = nullptr;   ///< null for a window
    };

    /// An address space of the instance. Entries are sorted by start, size and name.
    struct Space {
        std::string path; ///< of the space: "cpu0/data"
        const HABMAddrSpace* space = nullptr;
        std::vector<SpaceEntry> windows;
        std::vector<SpaceEntry> assigned;
    };

    /// A block or an interface of the definition that the config removed.
    struct Removed {
        std::string path;
        const HABMBlock* block = nullptr;         ///< the block, or that of the interface
        const HABMInterface* interface = nullptr; ///< null for a block
    };

    /// `instance` is what a config left of `definition`. Both may be the same block. `config`,
    /// which may be null and must outlive the map, is the block that the instance was made by: it
    /// gives the values of registers in blocks that were removed.
    AddressMap(const HABMBlock& definition, const HABMBlock& instance,
               const HABMBlock* config = nullptr);

    /// Sorted by base, size and path.
    [[nodiscard]] const std::vector<Block>& blocks() const { return m_blocks; }
    /// In the order of `HABMBlock::findAddrSpaces`.
    [[nodiscard]] const std::vector<Space>& spaces() const { return m_spaces; }
    /// In the order of the tree; without what went with a block that is listed.
    [[nodiscard]] const std::vector<Removed>& removed() const { return m_removed; }

    /// The registers of the block, of the instance if it has the block.
    [[nodiscard]] static std::vector<HABMRegister*> registersOf(const Block& block);
    /// The value of one of them: what the config gives it, also where it removed the block.
    [[nodiscard]] HABMAddrValue valueOf(const Block& block, const HABMRegister& reg) const;

    /// Last address of a range; its start, if it is empty.
    [[nodiscard]] static HABMAddrValue endOf(const HABMAddrValue& start, const HABMAddrValue& size);

private:
    class Builder;

    const HABMBlock* m_config;
    std::vector<Block> m_blocks;
    std::vector<Space> m_spaces;
    std::vector<Removed> m_removed;
};

} // namespace tq
