// Writes a block as the text of a ".bmj" file.

#include "JsonDocument.h"
#include "rapidjson_headers.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "blockmodel/HABM.h"
#include "blockmodel/HABMBmj.h"

namespace habm::bmj {

namespace {

constexpr HABMAddrValue kZero(std::uint64_t{0});
const HABMAddrAperture kEmptyAperture{""};

/// Pieces that stay in the cache between making and writing them.
constexpr std::size_t kPieceBytes = std::size_t{1} << 16;

/// RapidJSON makes room for a text as if all its bytes needed an escape of six, and reckons the
/// room, with the quotes, in 32 bits. A longer text would overrun it.
constexpr std::size_t kMostTextBytes = (0xFFFFFFFF - 2) / 6;

class BlockWriter {
public:
    explicit BlockWriter(const Sink& sink) : m_sink(sink) {}

    /// True if all was taken.
    bool file(const HABMBlock& top) {
        m_writer.StartObject();
        text("format", kFormat);
        number("version", kVersion, 0);
        key("block");
        block(top);
        m_writer.EndObject();
        m_buffer.Put('\n');
        giveOut();
        return m_isTaken;
    }

private:
    void giveOut() {
        m_bytes += m_buffer.GetSize();
        m_isTaken = m_isTaken && m_bytes <= kMostBytes &&
                    m_sink({m_buffer.GetString(), m_buffer.GetSize()});
        m_buffer.Clear();
    }

    void key(std::string_view name) { string(name); }
    void string(std::string_view text) {
        m_isTaken = m_isTaken && text.size() <= kMostTextBytes;
        m_writer.String(text.data(), m_isTaken ? static_cast<rapidjson::SizeType>(text.size()) : 0);
    }
    static std::string textOf(const HABMAddrValue& value) {
        return value.isValid() ? value.getHexStringValue(0) : std::string();
    }
    void pair(std::string_view first, std::string_view second) {
        m_writer.StartArray();
        string(first);
        string(second);
        m_writer.EndArray();
    }

    // A member, unless it has the value of a fresh object.

    void text(std::string_view name, std::string_view value, std::string_view fresh = "") {
        if (value == fresh)
            return;
        key(name);
        string(value);
    }
    void number(std::string_view name, unsigned value, unsigned fresh) {
        if (value == fresh)
            return;
        key(name);
        m_writer.Uint(value);
    }
    void address(std::string_view name, const HABMAddrValue& value, const HABMAddrValue& fresh) {
        if (value == fresh)
            return;
        key(name);
        string(textOf(value));
    }
    void pair(const HABMAddrAperture& value) {
        pair(textOf(value.getStart()), textOf(value.getSize()));
    }
    void aperture(std::string_view name, const HABMAddrAperture& value) {
        if (value == kEmptyAperture)
            return;
        key(name);
        pair(value);
    }
    /// An array with what `write` makes of each item.
    template <class Items, class Write>
    void array(std::string_view name, const Items& items, Write write) {
        if (items.empty())
            return;
        key(name);
        m_writer.StartArray();
        for (const auto& item : items) {
            if (!m_isTaken)
                break;
            write(item);
            if (m_buffer.GetSize() >= kPieceBytes)
                giveOut();
        }
        m_writer.EndArray();
    }
    /// An array of objects, with what `write` makes of each as its members.
    template <class Object>
    void objects(std::string_view name, const std::vector<Object*>& items,
                 void (BlockWriter::*write)(const Object&)) {
        array(name, items, [&](const Object* item) {
            m_writer.StartObject();
            (this->*write)(*item);
            m_writer.EndObject();
        });
    }

    void block(const HABMBlock& block) {
        m_writer.StartObject();
        text("instance", block.getInstanceName());
        text("module", block.getModuleName());
        text("vlnv", block.getModuleVlnv());
        text("enable", block.getEnablement());
        address("base", block.getBaseAddress(), kZero);
        if (block.isBlockStub()) {
            key("stub");
            m_writer.Bool(true);
        }
        array("parameters", block.getGenerics(),
              [&](const HABMGeneric* g) { pair(g->getName(), g->getValue()); });
        array("attributes", block.getAttributes(),
              [&](const HABMAttribute* a) { pair(a->getName(), a->getValue()); });
        objects("ports", block.getPorts(), &BlockWriter::port);
        objects("memory_maps", block.getMemoryMaps(), &BlockWriter::memoryMap);
        objects("address_spaces", block.getAddrSpaces(), &BlockWriter::addrSpace);
        objects("interfaces", block.getInterfaces(), &BlockWriter::interface);
        objects("port_connections", block.getPortConnections(), &BlockWriter::portConnection);
        objects("interface_connections", block.getInterfaceConnections(),
                &BlockWriter::interfaceConnection);
        objects("assigns", block.getAddrAssigns(), &BlockWriter::addrAssign);
        array("blocks", block.getSubBlocks(), [&](const HABMBlock* b) { this->block(*b); });
        m_writer.EndObject();
    }

    void port(const HABMPort& port) {
        text("name", port.getPortName());
        text("type", HABMPort::decodePortType(port.getPortType()), "wire");
        text("direction", HABMPort::decodePortDirection(port.getPortDirection()), "in");
        number("left", port.getPortLeft(), 0);
        number("right", port.getPortRight(), 0);
    }

    void memoryMap(const HABMMemoryMap& map) {
        text("name", map.getName());
        address("range", map.getRange(), kZero);
        objects("blocks", map.getAddrBlocks(), &BlockWriter::addrBlock);
    }

    void addrBlock(const HABMAddrBlock& block) {
        text("name", block.getName());
        text("type", HABMAddrBlock::decodeMemoryType(block.getMemoryType()), "register");
        aperture("aperture", block.getAperture());
        objects("registers", block.getRegisters(), &BlockWriter::registerOf);
    }

    void registerOf(const HABMRegister& member) {
        text("name", member.getName());
        address("offset", member.getOffset(), kZero);
        number("width", member.getWidth(), 32);
        address("reset", member.getReset(), {});
        text("access", HABMRegister::decodeRegisterAccess(member.getAccess()), "read_write");
        address("value", member.getGivenValue(), {});
    }

    void addrSpace(const HABMAddrSpace& space) {
        text("name", space.getName());
        address("range", space.getRange(), kZero);
        objects("segments", space.getAddrSegments(), &BlockWriter::addrSegment);
    }

    void addrSegment(const HABMAddrSegment& segment) {
        text("name", segment.getName());
        text("type", HABMAddrSegment::decodeMemoryType(segment.getMemoryType()), "both");
        aperture("aperture", segment.getAperture());
    }

    void interface(const HABMInterface& interface) {
        text("name", interface.getInterfaceName());
        text("vlnv", interface.getInterfaceVlnv());
        text("mode", HABMInterface::decodeInterfaceMode(interface.getInterfaceMode()), "unknown");
        text("enable", interface.getEnablement());
        text("memory_map", interface.getMemoryMapRef());
        text("address_space", interface.getAddrSpaceRef());
        array("apertures", interface.getApertures(), [&](const HABMAddrAperture& a) { pair(a); });
        array("port_maps", interface.getPortMaps(), [&](const HABMPortMap* line) {
            pair(line->getLogicalPort(), line->getPhysicalPort());
        });
    }

    void portConnection(const HABMPortConnection& connection) {
        text("name", connection.getName());
        text("type", HABMPortConnection::decodeConnectionType(connection.getConnectionType()),
             "soft");
        text("source", connection.getSourcePath());
        array("targets", connection.getTargetPaths(),
              [&](const std::string& path) { string(path); });
    }

    void interfaceConnection(const HABMInterfaceConnection& connection) {
        text("name", connection.getName());
        text("type", HABMInterfaceConnection::decodeConnectionType(connection.getConnectionType()),
             "soft");
        text("source", connection.getSourcePath());
        text("target", connection.getTargetPath());
    }

    void addrAssign(const HABMAddrAssign& assign) {
        text("name", assign.getName());
        text("type", HABMAddrAssign::decodeAssignType(assign.getAssignType()), "normal");
        address("offset", assign.getOffset(), kZero);
        address("range", assign.getRange(), kZero);
        text("source", assign.getSourcePath());
        text("target", assign.getTargetPath());
    }

    using Buffer = rapidjson::GenericStringBuffer<rapidjson::UTF8<>, JsonAllocator>;

    const Sink& m_sink;
    bool m_isTaken = true;     ///< all so far; nothing more is worth writing if not
    std::uint64_t m_bytes = 0; ///< given out
    Buffer m_buffer;
    rapidjson::Writer<Buffer, rapidjson::UTF8<>, rapidjson::UTF8<>, JsonAllocator> m_writer{
        m_buffer};
};

} // namespace

bool write(const HABMBlock& top, const Sink& sink) {
    return BlockWriter(sink).file(top);
}

} // namespace habm::bmj
