// What each initiator of a subsystem sees at which address.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "blockmodel/HABM.h"
#include "tq_workbench_export.h"
#include "workbench/addressing/AddressMap.h"
#include "workbench/addressing/IntervalIndex.h"

namespace tq {

/// Built from an address map, which must outlive it, as must the instance that the map was built
/// from. The initiators are the address spaces of the instance, and the interfaces of its top block
/// by which others reach into it.
///
///     const AddressViews views(map, *instance);
///     for (const AddressViews::Match& match : views.at(HABMAddrValue("0xFF010004")))
///         ...
///
/// An initiator sees a block where an assign puts it in its address space. A block without an
/// assign there is seen at its own address if connections lead from the initiator's interfaces
/// to one that offers the block, as far as it lies in the windows (segments) of the space, if it
/// has any. An assign of the type "excluded" hides the block. Blocks without a size, and those
/// whose address can't be computed, aren't seen.
///
/// Building takes the time of sorting what all initiators see together, and of walking the
/// connections that lead from each; `at` a logarithm for each initiator.
class TQ_WORKBENCH_EXPORT AddressViews {
public:
    /// A block as one initiator sees it.
    struct Region {
        HABMAddrValue origin; ///< the address of the block's first byte
        const AddressMap::Block* block = nullptr;
        const HABMAddrAssign* assign = nullptr; ///< null where the block lies at its own address
        const HABMInterface* target = nullptr;  ///< that offers it; null for one of an assign alone
    };
    using Regions = IntervalIndex<Region>;

    /// What one initiator sees.
    struct View {
        std::string from;                     ///< path of the block of the space, or the interface
        std::string path;                     ///< of the space; the interface
        const HABMAddrSpace* space = nullptr; ///< null for an interface of the top block
        std::vector<HABMInterface*> interfaces; ///< by which the initiator looks out
        Regions regions;
    };

    /// What lies at an address for one initiator.
    struct Match {
        const View* view = nullptr;
        const Regions::Interval* region = nullptr;
        const HABMRegister* reg = nullptr; ///< of the instance; null where no register lies
        HABMAddrValue offset;              ///< of the address in the block
    };

    /// `instance` is the one that the map was built from.
    AddressViews(const AddressMap& map, const HABMBlock& instance);

    /// The spaces in the order of the map, then the interfaces in theirs.
    [[nodiscard]] const std::vector<View>& views() const { return m_views; }
    /// True if `from` names the initiator: "cpu0", "cpu0/data" or an interface, "S_AXI"; empty
    /// names all.
    [[nodiscard]] static bool isNamed(const View& view, const std::string& from);

    /// What lies at an address: a match for each initiator, block and register. Empty if nothing
    /// does.
    [[nodiscard]] std::vector<Match> at(const HABMAddrValue& address,
                                        const std::string& from = "") const;
    /// Adds what one initiator sees to `matches`.
    void addMatches(const View& view, const HABMAddrValue& address,
                    std::vector<Match>& matches) const;

    /// The connections that lead from the initiator to the block, nearest first; empty if none do.
    [[nodiscard]] std::vector<const HABMInterfaceConnection*> wayTo(const View& view,
                                                                    const Region& region) const;

    using Registers = IntervalIndex<const HABMRegister*>;
    /// The registers of a block by their offsets; those without a width are left out.
    [[nodiscard]] const Registers& registersOf(const AddressMap::Block& block) const;

private:
    struct Reached;
    class Builder;

    [[nodiscard]] std::vector<Reached> reachedFrom(const std::vector<HABMInterface*>& starts) const;

    const AddressMap& m_map;
    std::vector<View> m_views;
    std::vector<Registers> m_registers; ///< by the position of the block in the map
    std::unordered_map<const HABMInterface*, std::vector<const HABMInterfaceConnection*>> m_next;
};

} // namespace tq
