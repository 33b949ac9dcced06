#include "addressing/HBSAddrParseUtil.h"

#include <cstdlib>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "HUTFile.h"
#include "addressing/DefinitionTables.h"
#include "blockmodel/HABM.h"

namespace {

using namespace hbs_tables;

/// Rows of a table by a text that they bear, in the order of the table.
template <class Row>
using RowsByText = std::unordered_map<std::string_view, std::vector<const Row*>>;

template <class Row>
RowsByText<Row> byInterface(const std::vector<Row>& rows) {
    RowsByText<Row> byName;
    for (const Row& row : rows)
        for (const std::string& interface : row.interfaces)
            byName[interface].push_back(&row);
    return byName;
}

/// The tables of one hard block, and the way from them to its block.
class DefinitionBuilder {
public:
    explicit DefinitionBuilder(std::vector<HBSTableReport>* report) : m_notes(report) {}

    /// `directory` is the hard block's own.
    void readTables(const std::string& directory) {
        parseAddrBlocks(directory, kAddrBlocks, m_addrBlocks, m_notes);
        parseRegisters(directory, kRegisters, m_registers, m_notes);
        parseAddrSegments(directory, kAddrSegments, m_addrSegments, m_notes);
        parsePorts(directory, kPorts, m_ports, m_notes);
        parseInterfaces(directory, kInterfaces, m_interfaces, m_notes);
        parseParameters(directory, kParameters, m_parameters, m_notes);
        parseInstances(directory, kInstances, m_instances, m_notes);
        parseConnections(directory, kConnections, m_connections, m_notes);
    }

    std::unique_ptr<HABMBlock> build(const std::string& name) {
        std::unique_ptr<HABMBlock> block = HABMBlock::createTopBlock(name);
        block->setModuleVlnv("kestrom:hardblock:" + name + ":1.0");
        addInstances(*block);
        addAddrBlocks(*block);
        addAddrSegments(*block);
        addPorts(*block);
        addInterfaces(*block);
        addConnections(*block);
        addParameters(*block);
        m_notes.end();
        return block;
    }

private:
    static constexpr const char* kRefused = "unusable or repeated name";

    /// What atoi gives, also for numbers beyond an int, where atoi itself may do anything.
    unsigned decimal(const char* table, std::size_t line, const char* key,
                     const std::string& text) {
        char* end = nullptr;
        const long number = std::strtol(text.c_str(), &end, 10);
        if (end == text.c_str())
            m_notes.dropPart(table, line, std::string(key) + " without digits", text);
        return static_cast<unsigned>(static_cast<int>(number));
    }

    void addInstances(HABMBlock& block) {
        for (const HBSInstanceRow& row : m_instances) {
            std::string vendor;
            std::string library;
            std::string name;
            std::string version;
            if (!HABMUtils::splitVLNV(row.vlnv, vendor, library, name, version)) {
                m_notes.drop(kInstances, row.line, "vlnv hasn't four fields", row.vlnv);
                continue;
            }
            HABMBlock* const stub = block.createSubBlock(row.instance, name, false);
            if (stub == nullptr) {
                m_notes.drop(kInstances, row.line, kRefused, row.instance);
                continue;
            }
            stub->setBlockStub(true);
            stub->setModuleVlnv(row.vlnv);
            stub->setEnablement(row.enable);
            const HABMAddrValue base(row.baseAddress);
            if (!base.isValid())
                m_notes.dropPart(kInstances, row.line, "base_address that can't be read",
                                 row.baseAddress);
            stub->setBaseAddress(base);
        }
    }

    /// A row's memory map or address space; an empty name stands for the block's module name.
    static const std::string& nameOrModule(const std::string& name, const HABMBlock& block) {
        return name.empty() ? block.getModuleName() : name;
    }

    /// Lets a memory map or an address space reach to the end of an aperture.
    template <class Extent>
    static void widen(Extent& extent, const HABMAddrAperture& aperture) {
        const HABMAddrValue reach = aperture.getHighAddress().roundUpPow2();
        extent.setRange(extent.getRange() < reach ? reach : HABMAddrValue(extent.getRange()));
    }

    void addAddrBlocks(HABMBlock& block) {
        RowsByText<HBSRegisterRow> registers;
        for (const HBSRegisterRow& row : m_registers)
            registers[row.addrblock].push_back(&row);
        RowsByText<HBSRegisterRow> unclaimed = registers;
        for (const HBSAddrBlockRow& row : m_addrBlocks) {
            const std::string& name = nameOrModule(row.memorymap, block);
            HABMMemoryMap* map = block.getMemoryMap(name);
            if (map == nullptr)
                map = block.createMemoryMap(name);
            if (map == nullptr) {
                m_notes.drop(kAddrBlocks, row.line, "unusable memory map", name);
                continue;
            }
            widen(*map, row.aperture);
            HABMAddrBlock* const addrBlock = map->createAddrBlock(row.addrblock);
            if (addrBlock == nullptr) {
                m_notes.drop(kAddrBlocks, row.line, kRefused, row.addrblock);
                continue;
            }
            addrBlock->setMemoryType(HABMAddrBlock::encodeMemoryType(row.type));
            addrBlock->setAperture(row.aperture);
            addRegisters(*addrBlock, registers[row.addrblock]);
            unclaimed.erase(row.addrblock);
        }
        for (const auto& [addrBlock, rows] : unclaimed)
            for (const HBSRegisterRow* const row : rows)
                m_notes.drop(kRegisters, row->line, "there is no address block", addrBlock);
    }

    void addRegisters(HABMAddrBlock& addrBlock, const std::vector<const HBSRegisterRow*>& rows) {
        for (const HBSRegisterRow* const row : rows) {
            HABMRegister* const created = addrBlock.createRegister(row->registerName);
            if (created == nullptr) {
                m_notes.drop(kRegisters, row->line, kRefused, row->registerName);
                continue;
            }
            created->setOffset(row->offset);
            created->setWidth(decimal(kRegisters, row->line, "width", row->width));
            created->setReset(row->reset);
            created->setAccess(HABMRegister::encodeRegisterAccess(row->access));
        }
    }

    void addAddrSegments(HABMBlock& block) {
        for (const HBSAddrSegmentRow& row : m_addrSegments) {
            const std::string& name = nameOrModule(row.addrspace, block);
            HABMAddrSpace* space = block.getAddrSpace(name);
            if (space == nullptr)
                space = block.createAddrSpace(name);
            if (space == nullptr) {
                m_notes.drop(kAddrSegments, row.line, "unusable address space", name);
                continue;
            }
            widen(*space, row.aperture);
            HABMAddrSegment* const segment = space->createAddrSegment(row.addrsegment);
            if (segment == nullptr) {
                m_notes.drop(kAddrSegments, row.line, kRefused, row.addrsegment);
                continue;
            }
            segment->setMemoryType(HABMAddrSegment::encodeMemoryType(row.type));
            segment->setAperture(row.aperture);
        }
    }

    void addPorts(HABMBlock& block) {
        for (const HBSPortRow& row : m_ports) {
            HABMPort* const port = block.createPort(row.port, false);
            if (port == nullptr) {
                m_notes.drop(kPorts, row.line, kRefused, row.port);
                continue;
            }
            port->setPortType(HABMPort::encodePortType(row.type));
            port->setPortDirection(HABMPort::encodePortDirection(row.direction));
            if (!port->isWirePort()) {
                port->setPortLeft(decimal(kPorts, row.line, "left", row.left));
                port->setPortRight(decimal(kPorts, row.line, "right", row.right));
            }
        }
    }

    void addInterfaces(HABMBlock& block) {
        const RowsByText<HBSAddrBlockRow> addrBlocks = byInterface(m_addrBlocks);
        const RowsByText<HBSAddrSegmentRow> addrSegments = byInterface(m_addrSegments);
        for (const HBSInterfaceRow& row : m_interfaces) {
            HABMInterface* const interface = block.createInterface(row.interface, false);
            if (interface == nullptr) {
                m_notes.drop(kInterfaces, row.line, kRefused, row.interface);
                continue;
            }
            interface->setInterfaceVlnv(row.vlnv);
            interface->setInterfaceMode(HABMInterface::encodeInterfaceMode(row.mode));
            if (!row.enable.empty())
                interface->setEnablement(row.enable);
            for (const auto& [logicalPort, physicalPort] : row.portmaps)
                interface->createPortMap(logicalPort, physicalPort);
            if (interface->isSourceInterface())
                refer(*interface, addrSegments, &HBSAddrSegmentRow::addrspace,
                      &HABMInterface::setAddrSpaceRef);
            else
                refer(*interface, addrBlocks, &HBSAddrBlockRow::memorymap,
                      &HABMInterface::setMemoryMapRef);
        }
    }

    /// Lets an interface refer to the first of the maps or spaces of its rows, by name, and gives
    /// it the apertures of all its rows.
    template <class Row>
    static void refer(HABMInterface& interface, const RowsByText<Row>& rowsByInterface,
                      std::string Row::*extent, void (HABMInterface::*set)(const std::string&)) {
        const auto rows = rowsByInterface.find(interface.getInterfaceName());
        if (rows == rowsByInterface.end())
            return;
        std::set<std::string> names;
        std::set<HABMAddrAperture> apertures;
        for (const Row* const row : rows->second) {
            names.insert(nameOrModule(row->*extent, *interface.getParent()));
            apertures.insert(row->aperture);
        }
        (interface.*set)(*names.begin());
        interface.setApertures(HABMAddrApertureUtils::compress(apertures, false, false), false);
    }

    void addConnections(HABMBlock& block) {
        for (const HBSConnectionRow& row : m_connections) {
            if (row.type == "port")
                addPortConnection(block, row);
            else if (row.type == "interface")
                addInterfaceConnections(block, row);
            else
                m_notes.drop(kConnections, row.line,
                             "neither type=port nor type=interface but type", row.type);
        }
    }

    static void addPortConnection(HABMBlock& block, const HBSConnectionRow& row) {
        HABMPortConnection* const connection = block.createPortConnection("", false);
        if (connection == nullptr)
            return;
        connection->setConnectionType(HABMPortConnection::encodeConnectionType(row.style));
        connection->setSourcePath(row.source);
        connection->setTargetPaths(row.targets);
    }

    static void addInterfaceConnections(HABMBlock& block, const HBSConnectionRow& row) {
        for (const std::string& target : row.targets) {
            HABMInterfaceConnection* const connection = block.createInterfaceConnection("", false);
            if (connection == nullptr)
                continue;
            connection->setConnectionType(HABMInterfaceConnection::encodeConnectionType(row.style));
            connection->setSourcePath(row.source);
            connection->setTargetPath(target);
        }
    }

    void addParameters(HABMBlock& block) {
        for (const HBSParameterRow& row : m_parameters)
            block.setParameter(row.name, row.value, true);
    }

    HBSTableNotes m_notes;
    std::vector<HBSAddrBlockRow> m_addrBlocks;
    std::vector<HBSRegisterRow> m_registers;
    std::vector<HBSAddrSegmentRow> m_addrSegments;
    std::vector<HBSPortRow> m_ports;
    std::vector<HBSInterfaceRow> m_interfaces;
    std::vector<HBSParameterRow> m_parameters;
    std::vector<HBSInstanceRow> m_instances;
    std::vector<HBSConnectionRow> m_connections;
};

std::unique_ptr<HABMBlock> built(const HUTFile& directory, const std::string& name, bool write,
                                 std::vector<HBSTableReport>* report) {
    if (!directory.isDir() || name.empty())
        return nullptr;
    const std::string own = directory.getFullPath() + HUTFile::getDirSeparator() + name;
    DefinitionBuilder builder(report);
    builder.readTables(own);
    std::unique_ptr<HABMBlock> block = builder.build(name);
    if (write)
        HABMBlock::writeTopBlock(HUTFile(own + "/" + name + ".bmj"), *block, true);
    return block;
}

} // namespace

std::unique_ptr<HABMBlock> HBSAddrParseUtil::buildHardblockDefinition(const HUTFile& directory,
                                                                      const std::string& name,
                                                                      const bool& write) {
    return built(directory, name, write, nullptr);
}

std::unique_ptr<HABMBlock>
HBSAddrParseUtil::buildHardblockDefinition(const HUTFile& directory, const std::string& name,
                                           const bool& write, std::vector<HBSTableReport>& report) {
    report.clear();
    return built(directory, name, write, &report);
}
