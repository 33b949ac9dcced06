#include "workbench/addressing/AddressViews.h"

#include <algorithm>

namespace tq {

namespace {

AddressViews::Registers indexOf(const AddressMap::Block& block) {
    if (block.instance == nullptr)
        return {};
    const std::vector<HABMRegister*> registers = block.instance->getRegisters();
    std::vector<AddressViews::Registers::Interval> intervals;
    intervals.reserve(registers.size());
    for (const HABMRegister* const reg : registers)
        if (const std::uint64_t bytes = (std::uint64_t{reg->getWidth()} + 7) / 8; bytes != 0)
            intervals.push_back(
                {reg->getOffset(), reg->getOffset().plus(HABMAddrValue(bytes - 1)), reg});
    return AddressViews::Registers(std::move(intervals));
}

bool isEmpty(const HABMAddrValue& size) {
    return !(HABMAddrValue(std::uint64_t{0}) < size);
}

/// The windows of a space, joined where they touch or overlap, sorted.
std::vector<HABMAddrAperture> windowsOf(const AddressMap::Space& space) {
    std::set<HABMAddrAperture> windows;
    for (const AddressMap::SpaceEntry& entry : space.windows)
        if (!isEmpty(entry.size))
            windows.emplace(entry.start, entry.size);
    windows = HABMAddrApertureUtils::compress(windows, false, false);
    return {windows.begin(), windows.end()};
}

} // namespace

/// An interface that connections lead to, and the last of them; null for a start.
struct AddressViews::Reached {
    const HABMInterface* interface;
    const HABMInterfaceConnection* by;
    std::size_t before; ///< position of the interface that it was reached from
};

class AddressViews::Builder {
public:
    Builder(AddressViews& views, const HABMBlock& instance) : m_views(views), m_map(views.m_map) {
        for (const AddressMap::Block& block : m_map.blocks())
            if (block.instance != nullptr)
                m_blocks.emplace(block.instance, &block);
        for (const HABMInterfaceConnection* const connection :
             instance.findInterfaceConnections("", true))
            if (const HABMInterface* const source = connection->getSourceInterface())
                m_views.m_next[source].push_back(connection);
        for (const AddressMap::Space& space : m_map.spaces())
            addSpace(space);
        for (HABMInterface* const port : instance.getInterfaces())
            if (!port->isSourceInterface())
                addPort(*port);
    }

private:
    void addSpace(const AddressMap::Space& space) {
        const HABMBlock& owner = *space.space->getParent();
        const std::string path = owner.getInstancePath();
        View view;
        view.from = path.empty() ? space.path : path.substr(1);
        view.path = space.path;
        view.space = space.space;
        for (HABMInterface* const interface : owner.getInterfaces())
            if (interface->isSourceInterface() &&
                interface->getAddrSpaceRef() == space.space->getName())
                view.interfaces.push_back(interface);
        std::vector<Regions::Interval> regions;
        std::unordered_set<const HABMAddrBlock*> assigned;
        for (const AddressMap::SpaceEntry& entry : space.assigned) {
            assigned.insert(entry.block);
            if (entry.assign->getAssignType() != HABMAddrAssign::Excluded && !isEmpty(entry.size))
                regions.push_back({entry.start,
                                   AddressMap::endOf(entry.start, entry.size),
                                   {entry.start, m_blocks.at(entry.block), entry.assign, nullptr}});
        }
        addReached(view, regions, assigned, windowsOf(space));
        view.regions = Regions(std::move(regions));
        m_views.m_views.push_back(std::move(view));
    }

    void addPort(HABMInterface& port) {
        View view{port.getInterfaceName(), port.getInterfaceName(), nullptr, {&port}, {}};
        std::vector<Regions::Interval> regions;
        std::unordered_set<const HABMAddrBlock*> assigned;
        addReached(view, regions, assigned, {});
        // An interface of a bus without addresses sees nothing.
        if (regions.empty())
            return;
        view.regions = Regions(std::move(regions));
        m_views.m_views.push_back(std::move(view));
    }

    /// Adds the blocks that aren't in `seen`, and enters them there.
    void addReached(const View& view, std::vector<Regions::Interval>& regions,
                    std::unordered_set<const HABMAddrBlock*>& seen,
                    const std::vector<HABMAddrAperture>& windows) {
        for (const Reached& reached : m_views.reachedFrom(view.interfaces)) {
            const HABMInterface& target = *reached.interface;
            const HABMMemoryMap* const map =
                target.isSourceInterface()
                    ? nullptr
                    : target.getParent()->getMemoryMap(target.getMemoryMapRef());
            if (map == nullptr)
                continue;
            for (const HABMAddrBlock* const block : map->getAddrBlocks())
                if (seen.insert(block).second)
                    addOwn(*m_blocks.at(block), target, regions, windows);
        }
    }

    static void addOwn(const AddressMap::Block& block, const HABMInterface& target,
                       std::vector<Regions::Interval>& regions,
                       const std::vector<HABMAddrAperture>& windows) {
        if (isEmpty(block.size))
            return;
        const Region region{block.base, &block, nullptr, &target};
        if (windows.empty())
            regions.push_back({block.base, block.end, region});
        auto window = std::upper_bound(windows.begin(), windows.end(), block.base,
                                       [](const HABMAddrValue& base, const auto& aperture) {
                                           return base < aperture.getStart();
                                       });
        if (window != windows.begin())
            --window;
        for (; window != windows.end() && !(block.end < window->getStart()); ++window) {
            const HABMAddrValue first = std::max(block.base, window->getStart());
            const HABMAddrValue last = std::min(block.end, window->getHighAddress());
            if (!(last < first))
                regions.push_back({first, last, region});
        }
    }

    AddressViews& m_views;
    const AddressMap& m_map;
    std::unordered_map<const HABMAddrBlock*, const AddressMap::Block*> m_blocks;
};

AddressViews::AddressViews(const AddressMap& map, const HABMBlock& instance) : m_map(map) {
    m_registers.reserve(map.blocks().size());
    for (const AddressMap::Block& block : map.blocks())
        m_registers.push_back(indexOf(block));
    Builder(*this, instance);
}

bool AddressViews::isNamed(const View& view, const std::string& from) {
    return from.empty() || view.from == from || view.path == from;
}

/// Breadth first. The starts come first.
std::vector<AddressViews::Reached>
AddressViews::reachedFrom(const std::vector<HABMInterface*>& starts) const {
    std::vector<Reached> reached;
    std::unordered_set<const HABMInterface*> seen;
    for (const HABMInterface* const start : starts)
        if (seen.insert(start).second)
            reached.push_back({start, nullptr, 0});
    for (std::size_t at = 0; at < reached.size(); ++at) {
        const auto next = m_next.find(reached[at].interface);
        if (next == m_next.end())
            continue;
        for (const HABMInterfaceConnection* const connection : next->second)
            if (const HABMInterface* const target = connection->getTargetInterface();
                target != nullptr && seen.insert(target).second)
                reached.push_back({target, connection, at});
    }
    return reached;
}

std::vector<AddressViews::Match> AddressViews::at(const HABMAddrValue& address,
                                                  const std::string& from) const {
    std::vector<Match> matches;
    for (const View& view : m_views)
        if (isNamed(view, from))
            addMatches(view, address, matches);
    return matches;
}

void AddressViews::addMatches(const View& view, const HABMAddrValue& address,
                              std::vector<Match>& matches) const {
    view.regions.forEachAt(address, [&](const Regions::Interval& region) {
        const std::size_t count = matches.size();
        const HABMAddrValue offset = address.minus(region.value.origin);
        registersOf(*region.value.block).forEachAt(offset, [&](const auto& found) {
            matches.push_back({&view, &region, found.value, offset});
        });
        if (matches.size() == count)
            matches.push_back({&view, &region, nullptr, offset});
    });
}

std::vector<const HABMInterfaceConnection*> AddressViews::wayTo(const View& view,
                                                                const Region& region) const {
    const HABMMemoryMap* const map = region.block->instance->getParent();
    const std::vector<Reached> reached = reachedFrom(view.interfaces);
    const auto found = std::find_if(reached.begin(), reached.end(), [&](const Reached& item) {
        return !item.interface->isSourceInterface() &&
               item.interface->getParent() == map->getParent() &&
               item.interface->getMemoryMapRef() == map->getName();
    });
    std::vector<const HABMInterfaceConnection*> way;
    if (found == reached.end())
        return way;
    for (const Reached* item = &*found; item->by != nullptr; item = &reached[item->before])
        way.push_back(item->by);
    std::reverse(way.begin(), way.end());
    return way;
}

const AddressViews::Registers& AddressViews::registersOf(const AddressMap::Block& block) const {
    return m_registers[static_cast<std::size_t>(&block - m_map.blocks().data())];
}

} // namespace tq
