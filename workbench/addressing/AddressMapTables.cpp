#include "workbench/addressing/AddressMapTables.h"

#include <ostream>
#include <string>

#include "workbench/text/Table.h"
#include "workbench/text/Text.h"

namespace tq {

namespace {

std::string hex(const HABMAddrValue& value) {
    return value.isValid() ? value.getPrettyHexStringValue(0) : "?";
}

std::string namesOf(const std::vector<const HABMInterface*>& interfaces) {
    std::string names;
    for (const HABMInterface* interface : interfaces)
        names += (names.empty() ? "" : ", ") + interface->getInterfaceName();
    return names;
}

void printBlocks(std::ostream& out, const std::vector<AddressMap::Block>& blocks) {
    using Align = Table::Align;
    Table table({{"base", Align::Right},
                 {"end", Align::Right},
                 {"size", Align::Right},
                 {"name"},
                 {"path"},
                 {"interfaces"},
                 {"reached from"},
                 {"state"}});
    for (const AddressMap::Block& block : blocks)
        table.addRow({hex(block.base), hex(block.end), block.size.getAbrvStringValue(),
                      block.definition->getName(), block.path, namesOf(block.access->interfaces),
                      namesOf(block.access->ports), block.instance == nullptr ? "off" : "on"});
    table.print(out);
}

void printRegisters(std::ostream& out, const AddressMap& map) {
    using Align = Table::Align;
    out << "\nRegisters:\n";
    Table table({{"address", Align::Right},
                 {"register"},
                 {"bits", Align::Right},
                 {"access"},
                 {"reset", Align::Right},
                 {"value", Align::Right},
                 {"block"},
                 {"state"}});
    for (const AddressMap::Block& block : map.blocks()) {
        for (const HABMRegister* const reg : AddressMap::registersOf(block))
            table.addRow({hex(block.base.plus(reg->getOffset())), reg->getName(),
                          std::to_string(reg->getWidth()),
                          HABMRegister::decodeRegisterAccess(reg->getAccess()),
                          hex(reg->getReset()), hex(map.valueOf(block, *reg)), block.path,
                          block.instance == nullptr ? "off" : "on"});
    }
    table.print(out);
}

void printSpace(std::ostream& out, const AddressMap::Space& space) {
    using Align = Table::Align;
    out << "\nAs seen from " << printable(space.path) << " ("
        << space.space->getRange().getAbrvStringValue() << "):\n";
    Table table({{"base", Align::Right},
                 {"end", Align::Right},
                 {"size", Align::Right},
                 {"block"},
                 {"kind"}});
    for (const AddressMap::SpaceEntry& entry : space.assigned)
        table.addRow({hex(entry.start), hex(AddressMap::endOf(entry.start, entry.size)),
                      entry.size.getAbrvStringValue(), entry.name,
                      HABMAddrAssign::decodeAssignType(entry.assign->getAssignType())});
    table.print(out);
}

void printRemoved(std::ostream& out, const std::vector<AddressMap::Removed>& removed) {
    out << "\nSwitched off:\n";
    Table table({{"kind"}, {"path"}, {"stays if"}});
    for (const AddressMap::Removed& item : removed) {
        const std::string& condition = item.interface == nullptr ? item.block->getEnablement()
                                                                 : item.interface->getEnablement();
        table.addRow({item.interface == nullptr ? "block" : "interface", item.path,
                      condition.empty() ? "it is connected" : condition});
    }
    table.print(out);
}

} // namespace

void printAddressMap(std::ostream& out, const AddressMap& map, bool withRegisters) {
    printBlocks(out, map.blocks());
    if (withRegisters)
        printRegisters(out, map);
    for (const AddressMap::Space& space : map.spaces())
        if (!space.assigned.empty())
            printSpace(out, space);
    if (!map.removed().empty())
        printRemoved(out, map.removed());
}

} // namespace tq
