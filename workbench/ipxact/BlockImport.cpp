#include "workbench/ipxact/BlockImport.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

#include "HUTFile.h"
#include "workbench/files/OutputFile.h"
#include "workbench/ipxact/Arithmetic.h"
#include "workbench/ipxact/ComponentReader.h"
#include "workbench/ipxact/DesignMap.h"
#include "workbench/ipxact/ElementTree.h"
#include "workbench/ipxact/RegisterDescription.h"
#include "workbench/ipxact/RegisterListing.h"
#include "workbench/ipxact/RegisterMapModel.h"

namespace tq::ipxact {

namespace {

namespace fs = std::filesystem;

HABMAddrValue valueOf(const Number& number) {
    return number && *number >= 0 ? HABMAddrValue(decimalText(*number)) : HABMAddrValue();
}

Number inBytes(const Number& units, const Number& unitBits) {
    const Number bits = times(units, unitBits);
    return bits ? Number(*bits / 8) : std::nullopt;
}

std::optional<unsigned> plain(const Number& number) {
    if (!number || *number < 0 || *number > std::numeric_limits<unsigned>::max())
        return std::nullopt;
    return static_cast<unsigned>(*number);
}

/// A name that the block model takes.
std::string nameOf(std::string name) {
    std::replace(name.begin(), name.end(), '/', '_');
    return name;
}

HABMInterface::InterfaceMode modeOf(InterfaceMode mode) {
    using Mode = HABMInterface::InterfaceMode;
    switch (mode) {
    case InterfaceMode::Initiator:
        return Mode::Master;
    case InterfaceMode::Target:
        return Mode::Slave;
    case InterfaceMode::MirroredInitiator:
        return Mode::MirroredMaster;
    case InterfaceMode::MirroredTarget:
        return Mode::MirroredSlave;
    case InterfaceMode::System:
        return Mode::System;
    case InterfaceMode::Monitor:
        return Mode::Monitor;
    default:
        return Mode::Unknown;
    }
}

HABMRegister::RegisterAccess accessOf(Access access) {
    using Result = HABMRegister::RegisterAccess;
    if (access == Access::ReadOnly)
        return Result::ReadOnly;
    return access == Access::WriteOnly || access == Access::WriteOnce ? Result::WriteOnly
                                                                      : Result::ReadWrite;
}

class ComponentImport {
public:
    ComponentImport(const Component& component, HABMBlock& top, ImportSummary& summary,
                    const DiagnosticSink& sink)
        : m_component(component), m_top(top), m_summary(summary), m_sink(sink) {}

    void import() {
        m_top.setModuleVlnv(m_component.vlnv.text());
        for (const MemoryMap& map : m_component.memoryMaps)
            m_summary.memoryMaps += m_top.createMemoryMap(nameOf(map.name)) != nullptr ? 1U : 0U;
        for (const ListedBlock& block : listBlocks(m_component))
            importBlock(block);
        for (const AddressSpace& space : m_component.addressSpaces)
            importSpace(space);
        for (const Port& port : m_component.ports)
            importPort(port);
        for (const BusInterface& interface : m_component.interfaces)
            importInterface(interface);
        for (const ParameterValue& parameter : m_component.parameters)
            if (parameter.value && !parameter.name.empty())
                m_top.setParameter(parameter.name, *parameter.value, false);
        connectInside();
    }

private:
    void leaveOut(const std::string& name, const Mark& mark, const std::string& why) {
        ++m_summary.left;
        if (!m_sink)
            return;
        Place place = placeOfFile(m_component.file);
        place.line = mark.line;
        place.column = mark.column;
        m_sink(makeDiagnostic(Severity::Remark, "not-imported", std::move(place),
                              "\"" + name + "\" isn't imported: " + why));
    }

    void importBlock(const ListedBlock& block) {
        const std::size_t slash = block.path.find('/');
        HABMMemoryMap* const map = m_top.getMemoryMap(nameOf(block.path.substr(0, slash)));
        const HABMAddrValue start = valueOf(inBytes(block.address, block.addressUnitBits));
        const HABMAddrValue size = valueOf(inBytes(block.size, block.addressUnitBits));
        if (!block.modes.empty() || map == nullptr || !start.isValid()) {
            leaveOut(block.path, block.source->mark,
                     map == nullptr         ? "it is local to an address space"
                     : !block.modes.empty() ? "it is there in some modes only"
                                            : "its address is unknown");
            return;
        }
        HABMAddrBlock* const target = map->createAddrBlock(nameOf(block.path.substr(slash + 1)));
        if (target == nullptr) {
            leaveOut(block.path, block.source->mark, "its name is taken");
            return;
        }
        target->setAperture(HABMAddrAperture(start, size.isValid() ? size : HABMAddrValue("0")));
        target->setMemoryType(HABMAddrBlock::encodeMemoryType(block.source->usage));
        ++m_summary.blocks;
        std::size_t fields = 0;
        for (const ListedRegister& entry : block.registers) {
            importRegister(*target, block, entry);
            fields += entry.fields.size();
        }
        if (fields != 0)
            leaveOut(block.path, block.source->mark,
                     std::to_string(fields) + " fields of its registers have no place in the "
                                              "block model");
    }
    void importRegister(HABMAddrBlock& block, const ListedBlock& listed,
                        const ListedRegister& entry) {
        const HABMAddrValue offset =
            valueOf(inBytes(minus(entry.address, listed.address), listed.addressUnitBits));
        const auto width = plain(entry.width);
        if (!offset.isValid() || !width || !entry.modes.empty()) {
            leaveOut(entry.path, entry.source->mark,
                     entry.modes.empty() ? "its address or width is unknown"
                                         : "it is there in some modes only");
            return;
        }
        HABMRegister* const target = block.createRegister(flatName(entry.path, listed.path));
        if (target == nullptr) {
            leaveOut(entry.path, entry.source->mark, "its name is taken");
            return;
        }
        target->setOffset(offset);
        target->setWidth(*width);
        target->setAccess(accessOf(entry.access));
        if (entry.reset)
            target->setReset(valueOf(entry.reset));
        ++m_summary.registers;
    }

    /// A space without segments is one window.
    void importSpace(const AddressSpace& space) {
        HABMAddrSpace* const target = m_top.createAddrSpace(nameOf(space.name));
        if (target == nullptr) {
            leaveOut(space.name, space.mark, "its name is taken");
            return;
        }
        const HABMAddrValue range = valueOf(inBytes(space.range, space.addressUnitBits));
        if (range.isValid())
            target->setRange(range);
        if (space.segments.empty())
            importSegment(*target, space.name, HABMAddrValue("0"), range, space.mark);
        for (const Segment& segment : space.segments)
            importSegment(*target, segment.name,
                          valueOf(inBytes(segment.offset, space.addressUnitBits)),
                          valueOf(inBytes(segment.range, space.addressUnitBits)), segment.mark);
    }
    void importSegment(HABMAddrSpace& space, const std::string& name, const HABMAddrValue& start,
                       const HABMAddrValue& size, const Mark& mark) {
        HABMAddrSegment* const target =
            start.isValid() && size.isValid() ? space.createAddrSegment(nameOf(name)) : nullptr;
        if (target == nullptr)
            leaveOut(name, mark, "its address is unknown or its name is taken");
        else
            target->setAperture(HABMAddrAperture(start, size));
    }
    void importPort(const Port& port) {
        HABMPort* const target = m_top.createPort(nameOf(port.name), false);
        if (target == nullptr) {
            leaveOut(port.name, port.mark, "its name is taken");
            return;
        }
        target->setPortDirection(HABMPort::encodePortDirection(port.direction));
        const auto left = plain(port.left), right = plain(port.right);
        if (!left || !right)
            return;
        target->setPortType(HABMPort::PortType::Vector);
        target->setPortLeft(*left);
        target->setPortRight(*right);
    }
    void importInterface(const BusInterface& interface) {
        HABMInterface* const target = m_top.createInterface(nameOf(interface.name), false);
        if (target == nullptr) {
            leaveOut(interface.name, interface.mark, "its name is taken");
            return;
        }
        ++m_summary.interfaces;
        target->setInterfaceMode(modeOf(interface.mode));
        target->setInterfaceVlnv(interface.busType.text());
        target->setMemoryMapRef(nameOf(interface.memoryMap));
        target->setAddrSpaceRef(nameOf(interface.addressSpace));
        for (const PortMap& map : interface.ports)
            target->createPortMap(map.logical, map.physical);
    }

    /// Channels lead from mirrored initiators to mirrored targets, bridges from targets to
    /// initiators.
    void connectInside() {
        for (const Channel& channel : m_component.channels)
            for (const BusInterface& from : m_component.interfaces)
                for (const BusInterface& to : m_component.interfaces)
                    if (from.mode == InterfaceMode::MirroredInitiator &&
                        to.mode == InterfaceMode::MirroredTarget && isIn(channel, from) &&
                        isIn(channel, to))
                        connect(from.name, to.name);
        for (const BusInterface& from : m_component.interfaces) {
            for (const Bridge& bridge : from.bridges)
                connect(from.name, bridge.initiator);
            for (const MemoryMap& map : m_component.memoryMaps)
                if (map.name == from.memoryMap)
                    for (const MemoryItem& item : map.items)
                        if (item.kind == MemoryItem::Kind::Subspace)
                            connect(from.name, item.initiator);
        }
    }
    static bool isIn(const Channel& channel, const BusInterface& interface) {
        const auto& names = channel.interfaces;
        return std::find(names.begin(), names.end(), interface.name) != names.end();
    }
    void connect(const std::string& from, const std::string& to) {
        if (!m_connected.emplace(from, to).second)
            return;
        HABMInterfaceConnection* const connection = m_top.createInterfaceConnection("", false);
        connection->setSourcePath("/" + nameOf(from));
        connection->setTargetPath("/" + nameOf(to));
        connection->setConnectionType(HABMInterfaceConnection::ConnectionType::Hard);
    }

    const Component& m_component;
    HABMBlock& m_top;
    ImportSummary& m_summary;
    const DiagnosticSink& m_sink;
    std::set<std::pair<std::string, std::string>> m_connected;
};

class DesignImport {
public:
    DesignImport(const Design& design, ImportSummary& summary, const DiagnosticSink& sink)
        : m_design(design), m_summary(summary), m_sink(sink) {}

    std::unique_ptr<HABMBlock> import() {
        auto top = HABMBlock::createTopBlock(nameOf(m_design.vlnv.name));
        top->setModuleVlnv(m_design.vlnv.text());
        std::vector<HABMBlock*> blocks;
        for (const Instance& instance : m_design.instances)
            blocks.push_back(addInstance(*top, instance, blocks));
        for (const Connection& connection : m_design.connections)
            connect(blocks, connection);
        placeInstances(blocks);
        return top;
    }

private:
    HABMBlock* addInstance(HABMBlock& top, const Instance& instance,
                           const std::vector<HABMBlock*>& blocks) {
        HABMBlock* const parent =
            instance.parent == Instance::kTop ? &top : blocks[instance.parent];
        if (parent == nullptr)
            return nullptr;
        const std::string module = nameOf(instance.component.vlnv.name);
        HABMBlock* const block = parent->createSubBlock(nameOf(instance.name), module, false);
        if (block == nullptr)
            return nullptr;
        ++m_summary.instances;
        const auto content = importComponent(instance.component, m_summary, m_sink);
        HABMBlock::mergeTopBlock(top, block->getInstancePath(), *content, true);
        return block;
    }
    [[nodiscard]] const BusInterface* interfaceOf(const Endpoint& endpoint) const {
        for (const BusInterface& one : m_design.instances[endpoint.instance].component.interfaces)
            if (one.name == endpoint.interface)
                return &one;
        return nullptr;
    }
    /// The source is where transactions come from.
    void connect(const std::vector<HABMBlock*>& blocks, const Connection& connection) {
        HABMBlock* const first = blocks[connection.first.instance];
        HABMBlock* const second = blocks[connection.second.instance];
        const BusInterface* const from = interfaceOf(connection.first);
        if (first == nullptr || second == nullptr)
            return;
        const bool isReversed = from != nullptr && (from->mode == InterfaceMode::Target ||
                                                    from->mode == InterfaceMode::MirroredInitiator);
        HABMBlock* const owner = connection.isInner ? second : first->getParent();
        HABMInterfaceConnection* const target = owner->createInterfaceConnection("", false);
        const std::string a = first->getInstancePath() + "/" + nameOf(connection.first.interface);
        const std::string b = second->getInstancePath() + "/" + nameOf(connection.second.interface);
        target->setSourcePath(isReversed ? b : a);
        target->setTargetPath(isReversed ? a : b);
        target->setConnectionType(HABMInterfaceConnection::ConnectionType::Hard);
        ++m_summary.connections;
    }

    /// The base address of an instance is how far the first initiator sees its first block moved.
    void placeInstances(const std::vector<HABMBlock*>& blocks) {
        const auto own = ownAddresses();
        std::vector<bool> isPlaced(blocks.size(), false);
        for (const SeenSpace& space : mapDesign(m_design, m_sink))
            for (const SeenBlock& seen : space.blocks) {
                const auto found = own.find(seen.path);
                if (found == own.end())
                    continue;
                const auto& [index, address] = found->second;
                if (!isPlaced[index] && blocks[index] != nullptr)
                    isPlaced[index] = place(*blocks[index], minus(seen.start, address));
            }
    }
    /// The instance of each block, by the block's path, and its address in its memory map.
    [[nodiscard]] std::map<std::string, std::pair<std::size_t, Number>> ownAddresses() const {
        std::map<std::string, std::pair<std::size_t, Number>> addresses;
        for (std::size_t i = 0; i < m_design.instances.size(); ++i)
            for (const ListedBlock& block : listBlocks(m_design.instances[i].component))
                addresses.try_emplace(m_design.instances[i].path + "/" + block.path, i,
                                      inBytes(block.address, block.addressUnitBits));
        return addresses;
    }
    static bool place(HABMBlock& block, const Number& base) {
        if (!base || *base < 0)
            return false;
        HABMAddrValue around("0");
        for (HABMBlock* outer = block.getParent(); outer != nullptr; outer = outer->getParent())
            if (outer->getBaseAddress().isValid())
                around = around.plus(outer->getBaseAddress());
        const HABMAddrValue own = valueOf(base).minus(around);
        if (own.isValid())
            block.setBaseAddress(own);
        return own.isValid();
    }

    const Design& m_design;
    ImportSummary& m_summary;
    const DiagnosticSink& m_sink;
};

std::string counted(std::size_t number, const char* thing) {
    return std::to_string(number) + " " + thing + (number == 1 ? "" : "s");
}

/// Values of a table can't hold its separators.
std::string cell(std::string text) {
    std::replace_if(
        text.begin(), text.end(),
        [](char c) { return c == ';' || c == '\n' || c == '\r' || c == '\t'; }, ' ');
    return text;
}

std::string interfacesOf(const HABMBlock& block, const std::string& name, bool isSpace) {
    std::string names;
    for (const HABMInterface* interface : block.getInterfaces())
        if ((isSpace ? interface->getAddrSpaceRef() : interface->getMemoryMapRef()) == name)
            names += (names.empty() ? "" : ", ") + interface->getInterfaceName();
    return names.empty() ? "" : "; interfaces=" + cell(names);
}

std::string hex(const HABMAddrValue& value) {
    return value.getHexStringValue(0);
}

bool isDesign(const ElementTree& tree) {
    return editionOf(tree.rootNamespace()) &&
           (tree.root().name() == "design" || tree.root().name() == "designConfiguration");
}

void writeTables(const HABMBlock& block, const fs::path& folder) {
    std::error_code error;
    fs::create_directories(folder / "data", error);
    for (const auto& [name, text] : definitionTexts(block))
        writeOutput((folder / "data" / name).string(), text);
}

} // namespace

std::unique_ptr<HABMBlock> importComponent(const Component& component, ImportSummary& summary,
                                           const DiagnosticSink& sink) {
    auto top = HABMBlock::createTopBlock(nameOf(component.vlnv.name));
    ComponentImport(component, *top, summary, sink).import();
    return top;
}

std::unique_ptr<HABMBlock> importDesign(const Design& design, ImportSummary& summary,
                                        const DiagnosticSink& sink) {
    return DesignImport(design, summary, sink).import();
}

std::map<std::string, std::string> definitionTexts(const HABMBlock& block) {
    std::map<std::string, std::string> texts;
    for (const HABMMemoryMap* map : block.getMemoryMaps())
        for (const HABMAddrBlock* one : map->getAddrBlocks()) {
            texts["addrblocks.txt"] +=
                "addrblock=" + cell(one->getName()) + "; memorymap=" + cell(map->getName()) +
                interfacesOf(block, map->getName(), false) +
                "; type=" + HABMAddrBlock::decodeMemoryType(one->getMemoryType()) +
                "; offset=" + hex(one->getOffset()) + "; size=" + hex(one->getRange()) + "\n";
            for (const HABMRegister* entry : one->getRegisters())
                texts["registers.txt"] +=
                    "register=" + cell(entry->getName()) + "; addrblock=" + cell(one->getName()) +
                    "; offset=" + hex(entry->getOffset()) +
                    "; width=" + std::to_string(entry->getWidth()) +
                    (entry->getReset().isValid() ? "; reset=" + hex(entry->getReset()) : "") +
                    "; access=" + HABMRegister::decodeRegisterAccess(entry->getAccess()) + "\n";
        }
    for (const HABMAddrSpace* space : block.getAddrSpaces())
        for (const HABMAddrSegment* one : space->getAddrSegments())
            texts["addrsegments.txt"] +=
                "addrsegment=" + cell(one->getName()) + "; addrspace=" + cell(space->getName()) +
                interfacesOf(block, space->getName(), true) + "; offset=" + hex(one->getOffset()) +
                "; size=" + hex(one->getRange()) + "\n";
    for (const HABMPort* port : block.getPorts())
        texts["ports.txt"] +=
            "port=" + cell(port->getPortName()) +
            "; type=" + HABMPort::decodePortType(port->getPortType()) +
            "; direction=" + HABMPort::decodePortDirection(port->getPortDirection()) +
            (port->isWirePort() ? ""
                                : "; left=" + std::to_string(port->getPortLeft()) +
                                      "; right=" + std::to_string(port->getPortRight())) +
            "\n";
    for (const HABMInterface* interface : block.getInterfaces()) {
        std::string maps;
        for (const HABMPortMap* map : interface->getPortMaps())
            maps +=
                (maps.empty() ? "" : ", ") + map->getLogicalPort() + " " + map->getPhysicalPort();
        texts["interfaces.txt"] +=
            "interface=" + cell(interface->getInterfaceName()) +
            "; mode=" + HABMInterface::decodeInterfaceMode(interface->getInterfaceMode()) +
            "; vlnv=" + cell(interface->getInterfaceVlnv()) +
            (maps.empty() ? "" : "; portmaps=" + cell(maps)) + "\n";
    }
    for (const HABMGeneric* parameter : block.getGenerics())
        texts["parameters.txt"] += "name=" + cell(parameter->getName()) +
                                   "; type=string; value=" + cell(parameter->getValue()) + "\n";
    return texts;
}

std::string importFile(const std::string& path, const ImportOptions& options,
                       ImportSummary& summary, const DiagnosticSink& sink) {
    const bool ofDesign = isDesign(*ElementTree::readHead(path));
    if (ofDesign && options.asTables)
        throw fileError(path, "a design can't be written as tables, only as a .bmj file");
    const auto block =
        ofDesign ? importDesign(readDesign(path, options.libraries, sink), summary, sink)
                 : importComponent(readDescription(path, options.libraries, sink), summary, sink);
    const std::string& name = block->getModuleName();
    if (name.empty() || name == "." || name == "..")
        throw fileError(path, "it has no name that a folder could have");
    const fs::path folder = fs::path(options.area) / "mirrel" / "hardblocks" / name;
    if (options.asTables) {
        writeTables(*block, folder);
        return (folder / "data").string();
    }
    std::error_code error;
    fs::create_directories(folder, error);
    std::string file = (folder / (name + ".bmj")).string();
    refuseInput(file, {path});
    if (!HABMBlock::writeTopBlock(HUTFile(file), *block, true))
        throw outputError(file, "it can't be written");
    return file;
}

std::string importText(const ImportSummary& summary) {
    return counted(summary.memoryMaps, "memory map") + ", " +
           counted(summary.blocks, "address block") + ", " +
           counted(summary.registers, "register") + ", " +
           counted(summary.interfaces, "interface") + ", " +
           counted(summary.instances, "instance") + ", " +
           counted(summary.connections, "connection") +
           (summary.left == 0 ? "" : "; left out: " + std::to_string(summary.left));
}

} // namespace tq::ipxact
