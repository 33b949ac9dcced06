#include "addressing/HBSAddrParseUtil.h"

#include <functional>
#include <map>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "HUTFile.h"
#include "addressing/DefinitionChecks.h"
#include "addressing/DefinitionTables.h"
#include "blockmodel/HABM.h"

namespace {

using namespace hbs_tables;

/// Rows of a table by one of their texts, in the order of the table.
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

/// The first row of each name.
using FirstRows = std::unordered_map<std::string_view, const HBSTableRow*>;

/// The tables of one hard block, and the way from them to its block.
class DefinitionBuilder {
public:
    explicit DefinitionBuilder(HBSTableFindings& findings) : m_findings(findings) {}

    /// `directory` is the hard block's own.
    void readTables(const std::string& directory) {
        parseAddrBlocks(directory, m_addrBlocks, m_findings);
        parseRegisters(directory, m_registers, m_findings);
        parseAddrSegments(directory, m_addrSegments, m_findings);
        parsePorts(directory, m_ports, m_findings);
        parseInterfaces(directory, m_interfaces, m_findings);
        parseParameters(directory, m_parameters, m_findings);
        parseInstances(directory, m_instances, m_findings);
        parseConnections(directory, m_connections, m_findings);
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
        if (m_findings.isOn())
            check(*block);
        return block;
    }

private:
    void check(const HABMBlock& block) const {
        checkPorts(m_ports, m_findings);
        checkAddresses(block.getModuleName(), m_addrBlocks, m_registers, m_findings);
        checkInterfaceLists(block, m_addrBlocks, m_addrSegments, m_findings);
    }

    /// A row that makes nothing.
    void drop(const HBSTableRow& row, const char* key, const char* id, const std::string& text,
              std::string expected = {}) {
        m_findings.countDropped(row);
        m_findings.tell(row, key, tq::Severity::Warning, id, text, std::move(expected));
    }
    /// A row whose object the block refused, as the name is taken (by the row that `names` has
    /// for it) or can't be one.
    void refuse(const HBSTableRow& row, const char* key, const std::string& name,
                const FirstRows& names) {
        m_findings.countDropped(row);
        const auto first = names.find(name);
        if (first == names.end())
            m_findings.tell(row, key, tq::Severity::Warning, "unusable-name",
                            "the row isn't used: " + quoted(name) + " can't be a name");
        else
            m_findings.tell(row, key, tq::Severity::Warning, "repeated-name",
                            "the row isn't used: a second " + std::string(key) + " " + quoted(name),
                            {}, first->second);
    }
    /// Names serve the notes of findings alone.
    void remember(FirstRows& names, const std::string& name, const HBSTableRow& row) const {
        if (m_findings.isOn())
            names.emplace(name, &row);
    }

    void addInstances(HABMBlock& block) {
        FirstRows names;
        for (const HBSInstanceRow& row : m_instances) {
            std::string vendor;
            std::string library;
            std::string name;
            std::string version;
            if (!HABMUtils::splitVLNV(row.vlnv, vendor, library, name, version)) {
                drop(row, "vlnv", "bad-vlnv", "the row isn't used: vlnv " + quoted(row.vlnv),
                     "VENDOR:LIBRARY:NAME:VERSION");
                continue;
            }
            HABMBlock* const stub = block.createSubBlock(row.instance, name, false);
            if (stub == nullptr) {
                refuse(row, "instance", row.instance, names);
                continue;
            }
            remember(names, row.instance, row);
            stub->setBlockStub(true);
            stub->setModuleVlnv(row.vlnv);
            stub->setEnablement(row.enable);
            stub->setBaseAddress(HABMAddrValue(row.baseAddress));
        }
    }

    /// A row's memory map or address space; the block's module name if it is empty.
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
        std::map<std::string, FirstRows, std::less<>> namesOfMaps;
        std::unordered_set<std::string_view> claimed;
        for (const HBSAddrBlockRow& row : m_addrBlocks) {
            const std::string& name = nameOrModule(row.memorymap, block);
            HABMMemoryMap* map = block.getMemoryMap(name);
            if (map == nullptr)
                map = block.createMemoryMap(name);
            if (map == nullptr) {
                drop(row, "memorymap", "unusable-name",
                     "the row isn't used: " + quoted(name) + " can't be a memory map's name");
                continue;
            }
            widen(*map, row.aperture);
            FirstRows& names = namesOfMaps[name];
            HABMAddrBlock* const addrBlock = map->createAddrBlock(row.addrblock);
            if (addrBlock == nullptr) {
                refuse(row, "addrblock", row.addrblock, names);
                continue;
            }
            remember(names, row.addrblock, row);
            addrBlock->setMemoryType(HABMAddrBlock::encodeMemoryType(row.type));
            addrBlock->setAperture(row.aperture);
            const bool isFirst = claimed.insert(row.addrblock).second;
            addRegisters(*addrBlock, registers[row.addrblock], isFirst);
        }
        for (const HBSRegisterRow& row : m_registers)
            if (!claimed.contains(row.addrblock))
                drop(row, "addrblock", "unknown-addrblock",
                     "the row isn't used: there is no address block " + quoted(row.addrblock));
    }

    /// The same rows go into every address block of their name; what is refused is reported
    /// for the first.
    void addRegisters(HABMAddrBlock& addrBlock, const std::vector<const HBSRegisterRow*>& rows,
                      bool isFirst) {
        FirstRows names;
        for (const HBSRegisterRow* const row : rows) {
            HABMRegister* const created = addrBlock.createRegister(row->registerName);
            if (created == nullptr) {
                if (isFirst)
                    refuse(*row, "register", row->registerName, names);
                continue;
            }
            if (isFirst)
                remember(names, row->registerName, *row);
            created->setOffset(row->offset);
            created->setWidth(decimal(row->width));
            created->setReset(row->reset);
            created->setAccess(HABMRegister::encodeRegisterAccess(row->access));
        }
    }

    void addAddrSegments(HABMBlock& block) {
        std::map<std::string, FirstRows, std::less<>> namesOfSpaces;
        for (const HBSAddrSegmentRow& row : m_addrSegments) {
            const std::string& name = nameOrModule(row.addrspace, block);
            HABMAddrSpace* space = block.getAddrSpace(name);
            if (space == nullptr)
                space = block.createAddrSpace(name);
            if (space == nullptr) {
                drop(row, "addrspace", "unusable-name",
                     "the row isn't used: " + quoted(name) + " can't be an address space's name");
                continue;
            }
            widen(*space, row.aperture);
            FirstRows& names = namesOfSpaces[name];
            HABMAddrSegment* const segment = space->createAddrSegment(row.addrsegment);
            if (segment == nullptr) {
                refuse(row, "addrsegment", row.addrsegment, names);
                continue;
            }
            remember(names, row.addrsegment, row);
            segment->setMemoryType(HABMAddrSegment::encodeMemoryType(row.type));
            segment->setAperture(row.aperture);
        }
    }

    void addPorts(HABMBlock& block) {
        FirstRows names;
        for (const HBSPortRow& row : m_ports) {
            HABMPort* const port = block.createPort(row.port, false);
            if (port == nullptr) {
                refuse(row, "port", row.port, names);
                continue;
            }
            remember(names, row.port, row);
            port->setPortType(HABMPort::encodePortType(row.type));
            port->setPortDirection(HABMPort::encodePortDirection(row.direction));
            if (!port->isWirePort()) {
                port->setPortLeft(decimal(row.left));
                port->setPortRight(decimal(row.right));
            }
        }
    }

    void addInterfaces(HABMBlock& block) {
        const RowsByText<HBSAddrBlockRow> addrBlocks = byInterface(m_addrBlocks);
        const RowsByText<HBSAddrSegmentRow> addrSegments = byInterface(m_addrSegments);
        FirstRows names;
        for (const HBSInterfaceRow& row : m_interfaces) {
            HABMInterface* const interface = block.createInterface(row.interface, false);
            if (interface == nullptr) {
                refuse(row, "interface", row.interface, names);
                continue;
            }
            remember(names, row.interface, row);
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
                dropConnection(row);
        }
    }

    void dropConnection(const HBSConnectionRow& row) {
        const char* const expected = "type=port or type=interface";
        if (row.type == kNoConnectionType)
            drop(row, "type", "missing-key", "the row isn't used: it has no type", expected);
        else
            drop(row, "type", "unknown-value",
                 "the row isn't used: unknown type " + quoted(row.type), expected);
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
        FirstRows names;
        for (const HBSParameterRow& row : m_parameters) {
            block.setParameter(row.name, row.value, true);
            const auto first = names.find(row.name);
            if (first == names.end())
                remember(names, row.name, row);
            else
                m_findings.tell(row, "name", tq::Severity::Warning, "repeated-name",
                                "replaces the value of an earlier " + quoted(row.name), {},
                                first->second);
        }
    }

    HBSTableFindings& m_findings;
    std::vector<HBSAddrBlockRow> m_addrBlocks;
    std::vector<HBSRegisterRow> m_registers;
    std::vector<HBSAddrSegmentRow> m_addrSegments;
    std::vector<HBSPortRow> m_ports;
    std::vector<HBSInterfaceRow> m_interfaces;
    std::vector<HBSParameterRow> m_parameters;
    std::vector<HBSInstanceRow> m_instances;
    std::vector<HBSConnectionRow> m_connections;
};

} // namespace

std::unique_ptr<HABMBlock> HBSAddrParseUtil::buildHardblockDefinition(const HUTFile& directory,
                                                                      const std::string& name,
                                                                      const bool& write) {
    return buildHardblockDefinition(directory, name, write, tq::DiagnosticSink());
}

std::unique_ptr<HABMBlock>
HBSAddrParseUtil::buildHardblockDefinition(const HUTFile& directory, const std::string& name,
                                           const bool& write, const tq::DiagnosticSink& sink,
                                           std::vector<HBSTableReport>* report) {
    if (report != nullptr)
        report->clear();
    if (!directory.isDir() || name.empty())
        return nullptr;
    const std::string own = directory.getFullPath() + HUTFile::getDirSeparator() + name;
    HBSTableFindings findings(sink, report);
    DefinitionBuilder builder(findings);
    builder.readTables(own);
    std::unique_ptr<HABMBlock> block = builder.build(name);
    if (write)
        HABMBlock::writeTopBlock(HUTFile(own + "/" + name + ".bmj"), *block, true);
    return block;
}
