#include "workbench/addressing/AddressMap.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "workbench/addressing/MemoryPlacement.h"

namespace tq {

namespace {

/// The interfaces of a block that offer memory maps, by the name of the map.
using TargetsByMap = std::unordered_map<std::string, std::vector<HABMInterface*>>;

TargetsByMap targetsOf(const HABMBlock& block) {
    TargetsByMap targets;
    for (HABMInterface* interface : block.getInterfaces())
        if (!interface->isSourceInterface())
            targets[interface->getMemoryMapRef()].push_back(interface);
    return targets;
}

const std::vector<HABMInterface*>& targetsOf(const TargetsByMap& targets, const std::string& map) {
    static const std::vector<HABMInterface*> none;
    const auto found = targets.find(map);
    return found == targets.end() ? none : found->second;
}

std::string withoutSlash(const std::string& path) {
    return path.substr(std::min<std::size_t>(path.size(), 1));
}

bool isMemory(const HABMAddrBlock& block) {
    return block.getMemoryType() == HABMAddrBlock::MemoryType::Memory;
}

void sortByStart(std::vector<AddressMap::SpaceEntry>& entries) {
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) {
        return std::tie(a.start, a.size, a.name) < std::tie(b.start, b.size, b.name);
    });
}

} // namespace

/// Walks definition and instance side by side.
class AddressMap::Builder {
public:
    Builder(AddressMap& map, const HABMBlock& definition, const HABMBlock& instance)
        : m_map(map), m_instance(instance), m_placement(instance) {
        for (HABMInterface* port : instance.getInterfaces())
            if (!port->isSourceInterface())
                for (const HABMInterface* target : port->getTargetInterfaces())
                    m_portsOf[target].push_back(port);
        addBlock(definition, &instance, HABMAddrValue(std::uint64_t{0}));
        std::sort(map.m_blocks.begin(), map.m_blocks.end(), [](const Block& a, const Block& b) {
            return std::tie(a.base, a.size, a.path) < std::tie(b.base, b.size, b.path);
        });
        addSpaces();
    }

private:
    /// `kept` is what the instance has of the block; null if the config removed it.
    void addBlock(const HABMBlock& full, const HABMBlock* kept, const HABMAddrValue& base) {
        if (kept != nullptr)
            addRemovedInterfaces(full, *kept);
        addMaps(full, kept, base);
        for (const HABMBlock* child : full.getSubBlocks())
            addSubBlock(*child, kept, base);
    }

    void addSubBlock(const HABMBlock& full, const HABMBlock* keptParent,
                     const HABMAddrValue& base) {
        const HABMBlock* const kept =
            keptParent == nullptr ? nullptr : keptParent->getSubBlock(full.getInstanceName());
        if (keptParent != nullptr && kept == nullptr)
            m_map.m_removed.push_back({withoutSlash(full.getInstancePath()), &full, nullptr});
        const HABMAddrValue& own = full.getBaseAddress();
        addBlock(full, kept, own.isValid() ? base.plus(own) : base);
    }

    void addRemovedInterfaces(const HABMBlock& full, const HABMBlock& kept) {
        for (const HABMInterface* interface : full.getInterfaces())
            if (kept.getInterface(interface->getInterfaceName()) == nullptr)
                m_map.m_removed.push_back(
                    {withoutSlash(full.getInstancePath() + "/" + interface->getInterfaceName()),
                     &full, interface});
    }

    void addMaps(const HABMBlock& full, const HABMBlock* kept, const HABMAddrValue& base) {
        const std::vector<HABMMemoryMap*> maps = full.getMemoryMaps();
        if (maps.empty())
            return;
        const TargetsByMap fullTargets = targetsOf(full);
        const TargetsByMap keptTargets = kept == nullptr ? TargetsByMap() : targetsOf(*kept);
        for (const HABMMemoryMap* map : maps) {
            const HABMMemoryMap* const keptMap =
                kept == nullptr ? nullptr : kept->getMemoryMap(map->getName());
            const bool isMoved =
                m_placement.movesWithBase(*map, base, targetsOf(fullTargets, map->getName()));
            const auto access = accessOf(targetsOf(keptTargets, map->getName()));
            for (const HABMAddrBlock* block : map->getAddrBlocks())
                addRow(*block, keptMap,
                       isMoved || !isMemory(*block) ? base : HABMAddrValue(std::uint64_t{0}),
                       access);
        }
    }

    [[nodiscard]] std::shared_ptr<const Access>
    accessOf(const std::vector<HABMInterface*>& targets) const {
        auto access = std::make_shared<Access>();
        for (const HABMInterface* target : targets) {
            access->interfaces.push_back(target);
            if (const auto ports = m_portsOf.find(target); ports != m_portsOf.end())
                access->ports.insert(access->ports.end(), ports->second.begin(),
                                     ports->second.end());
        }
        return access;
    }

    void addRow(const HABMAddrBlock& block, const HABMMemoryMap* keptMap, const HABMAddrValue& base,
                const std::shared_ptr<const Access>& access) {
        Block row;
        row.base = base.plus(block.getOffset());
        row.size = block.getRange();
        row.end = endOf(row.base, row.size);
        row.path = withoutSlash(block.getPath());
        row.definition = &block;
        row.instance = keptMap == nullptr ? nullptr : keptMap->getAddrBlock(block.getName());
        row.access = access;
        m_map.m_blocks.push_back(std::move(row));
    }

    void addSpaces() {
        std::unordered_map<const HABMAddrSpace*, std::vector<SpaceEntry>> assigned;
        for (const HABMAddrAssign* assign : m_instance.findAddrAssigns("", true))
            if (const HABMAddrSegment* segment = assign->getTargetAddrSegment())
                if (const HABMAddrBlock* block = assign->getSourceAddrBlock())
                    assigned[segment->getParent()].push_back(
                        {assign->getOffset(), assign->getRange(), withoutSlash(block->getPath()),
                         segment, assign, block});
        for (const HABMAddrSpace* space : m_instance.findAddrSpaces("", true)) {
            Space row{withoutSlash(space->getPath()), space, {}, {}};
            for (const HABMAddrSegment* segment : space->getAddrSegments())
                row.windows.push_back({segment->getOffset(), segment->getRange(),
                                       segment->getName(), segment, nullptr, nullptr});
            if (const auto found = assigned.find(space); found != assigned.end())
                row.assigned = std::move(found->second);
            sortByStart(row.windows);
            sortByStart(row.assigned);
            m_map.m_spaces.push_back(std::move(row));
        }
    }

    AddressMap& m_map;
    const HABMBlock& m_instance;
    const MemoryPlacement m_placement;
    std::unordered_map<const HABMInterface*, std::vector<const HABMInterface*>> m_portsOf;
};

AddressMap::AddressMap(const HABMBlock& definition, const HABMBlock& instance,
                       const HABMBlock* config)
    : m_config(config) {
    Builder(*this, definition, instance);
}

std::vector<HABMRegister*> AddressMap::registersOf(const Block& block) {
    return (block.instance != nullptr ? block.instance : block.definition)->getRegisters();
}

HABMAddrValue AddressMap::valueOf(const Block& block, const HABMRegister& reg) const {
    const HABMBlock* const all =
        block.instance == nullptr && m_config != nullptr ? m_config->getSubBlock("inst") : nullptr;
    const std::size_t slash = block.path.find('/');
    const HABMBlock* const settings =
        all == nullptr ? nullptr : all->getSubBlock(block.path.substr(0, slash));
    const HABMRegister* const set =
        settings == nullptr
            ? nullptr
            : settings->findRegister(block.path.substr(slash + 1) + "/" + reg.getName(), true);
    return set == nullptr ? reg.getValue() : set->getValue();
}

HABMAddrValue AddressMap::endOf(const HABMAddrValue& start, const HABMAddrValue& size) {
    return HABMAddrAperture(start, size).getHighAddress();
}

} // namespace tq
