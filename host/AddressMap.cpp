#include "host/AddressMap.h"

#include <algorithm>
#include <map>
#include <ostream>
#include <set>
#include <tuple>

#include "host/Table.h"

namespace host {

namespace {

void appendTo(std::string& list, const std::string& item) {
    list += (list.empty() ? "" : ", ") + item;
}

/// The block at an instance path, or null.
const HABMBlock* blockAt(const HABMBlock& top, const std::string& path) {
    std::size_t start = 1;
    const HABMBlock* block = &top;
    while (block != nullptr && start < path.size()) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        block = block->getSubBlock(path.substr(start, end - start));
        start = end + 1;
    }
    return block;
}

std::string pathOf(const HABMInterface& interface) {
    return interface.getParent()->getInstancePath() + "/" + interface.getInterfaceName();
}

HABMAddrValue baseOf(const HABMBlock* block) {
    HABMAddrValue base(std::uint64_t{0});
    for (; block->getParent() != nullptr; block = block->getParent())
        if (const HABMAddrValue own = block->getBaseAddress(); own.isValid())
            base = base.plus(own);
    return base;
}

/// Surveys one instance against the whole definition.
class Survey {
public:
    Survey(const HABMBlock& full, const HABMBlock& instance) : m_full(full), m_instance(instance) {
        for (HABMInterface* port : instance.getInterfaces())
            if (!port->isSourceInterface())
                for (const HABMInterface* target : port->getTargetInterfaces())
                    appendTo(m_ports[pathOf(*target)], port->getInterfaceName());
    }

    AddressMap map() {
        AddressMap map;
        for (const HABMMemoryMap* memoryMap : m_full.findMemoryMaps("", true))
            addBlocks(map, *memoryMap);
        std::sort(map.blocks.begin(), map.blocks.end(), [](const auto& a, const auto& b) {
            return std::tie(a.base, a.size, a.path) < std::tie(b.base, b.size, b.path);
        });
        addSpaces(map);
        addOff(map, m_full);
        return map;
    }

private:
    void addBlocks(AddressMap& map, const HABMMemoryMap& memoryMap) {
        const HABMBlock& owner = *memoryMap.getParent();
        const HABMBlock* const kept = blockAt(m_instance, owner.getInstancePath());
        MappedBlock row;
        row.isOff = kept == nullptr;
        if (kept != nullptr)
            addAccess(row, *kept, memoryMap.getName());
        const HABMAddrValue base = baseOf(&owner);
        for (const HABMAddrBlock* block : memoryMap.getAddrBlocks()) {
            const bool isMemory = block->getMemoryType() == HABMAddrBlock::MemoryType::Memory;
            row.base = isMemory ? block->getOffset() : base.plus(block->getOffset());
            row.size = block->getRange();
            row.end = endOf(row.base, row.size);
            row.name = block->getName();
            row.path = block->getPath().substr(1);
            map.blocks.push_back(row);
        }
    }

    void addAccess(MappedBlock& row, const HABMBlock& owner, const std::string& mapName) {
        for (const HABMInterface* interface : owner.getInterfaces()) {
            if (interface->isSourceInterface() || interface->getMemoryMapRef() != mapName)
                continue;
            appendTo(row.interfaces, interface->getInterfaceName());
            if (const auto ports = m_ports.find(pathOf(*interface)); ports != m_ports.end())
                appendTo(row.ports, ports->second);
        }
    }

    void addSpaces(AddressMap& map) const {
        const auto assigns = m_instance.findAddrAssigns("", true);
        for (const HABMAddrSpace* space : m_instance.findAddrSpaces("", true)) {
            SpaceMap entry{space->getPath().substr(1), space->getRange(), {}, {}};
            for (const HABMAddrSegment* segment : space->getAddrSegments())
                entry.windows.push_back(
                    {segment->getOffset(), segment->getRange(), segment->getName(),
                     HABMAddrSegment::decodeMemoryType(segment->getMemoryType())});
            for (const HABMAddrAssign* assign : HABMAddrAssign::filterByAddrSpace(assigns, space))
                if (const HABMAddrBlock* block = assign->getSourceAddrBlock())
                    entry.assigned.push_back(
                        {assign->getOffset(), assign->getRange(), block->getPath().substr(1),
                         HABMAddrAssign::decodeAssignType(assign->getAssignType())});
            sortByStart(entry.windows);
            sortByStart(entry.assigned);
            map.spaces.push_back(std::move(entry));
        }
    }

    static void sortByStart(std::vector<SpaceEntry>& entries) {
        std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) {
            return std::tie(a.start, a.size, a.name) < std::tie(b.start, b.size, b.name);
        });
    }

    void addOff(AddressMap& map, const HABMBlock& block) const {
        const HABMBlock* const kept =
            &block == &m_full ? &m_instance : blockAt(m_instance, block.getInstancePath());
        if (kept == nullptr) {
            map.off.push_back({block.getInstancePath().substr(1), "block", block.getEnablement()});
            return;
        }
        std::set<std::string> interfaces;
        for (const HABMInterface* interface : kept->getInterfaces())
            interfaces.insert(interface->getInterfaceName());
        for (const HABMInterface* interface : block.getInterfaces())
            if (interfaces.count(interface->getInterfaceName()) == 0)
                map.off.push_back(
                    {pathOf(*interface).substr(1), "interface", interface->getEnablement()});
        for (const HABMBlock* child : block.getSubBlocks())
            addOff(map, *child);
    }

    const HABMBlock& m_full;
    const HABMBlock& m_instance;
    std::map<std::string, std::string> m_ports; ///< by the path of the interface they lead to
};

std::string hex(const HABMAddrValue& value) {
    return value.isValid() ? value.getPrettyHexStringValue(0) : "?";
}

void printBlocks(std::ostream& out, const std::vector<MappedBlock>& blocks) {
    using Align = Table::Align;
    Table table({{"base", Align::Right},
                 {"end", Align::Right},
                 {"size", Align::Right},
                 {"name"},
                 {"path"},
                 {"interfaces"},
                 {"reached from"},
                 {"state"}});
    for (const MappedBlock& block : blocks)
        table.addRow({hex(block.base), hex(block.end), block.size.getAbrvStringValue(), block.name,
                      block.path, block.interfaces, block.ports, block.isOff ? "off" : "on"});
    table.print(out);
}

void printSpace(std::ostream& out, const SpaceMap& space) {
    using Align = Table::Align;
    out << "\nAs seen from " << space.path << " (" << space.range.getAbrvStringValue() << "):\n";
    Table table({{"base", Align::Right},
                 {"end", Align::Right},
                 {"size", Align::Right},
                 {"block"},
                 {"kind"}});
    for (const SpaceEntry& entry : space.assigned)
        table.addRow({hex(entry.start), hex(endOf(entry.start, entry.size)),
                      entry.size.getAbrvStringValue(), entry.name, entry.kind});
    table.print(out);
}

void printOff(std::ostream& out, const std::vector<SwitchedOff>& off) {
    out << "\nSwitched off:\n";
    Table table({{"kind"}, {"path"}, {"stays if"}});
    for (const SwitchedOff& item : off)
        table.addRow(
            {item.kind, item.path, item.condition.empty() ? "it is connected" : item.condition});
    table.print(out);
}

} // namespace

HABMAddrValue endOf(const HABMAddrValue& start, const HABMAddrValue& size) {
    return HABMAddrAperture(start, size).getHighAddress();
}

AddressMap surveyAddressing(const HABMBlock& full, const HABMBlock& instance) {
    return Survey(full, instance).map();
}

void printAddressMap(std::ostream& out, const AddressMap& map) {
    printBlocks(out, map.blocks);
    for (const SpaceMap& space : map.spaces)
        if (!space.assigned.empty())
            printSpace(out, space);
    if (!map.off.empty())
        printOff(out, map.off);
}

} // namespace host
