// Makes a block of the text of a ".bmj" file.

#include "JsonDocument.h"
#include "rapidjson_headers.h"

#include <charconv>
#include <cstdint>
#include <set>
#include <string_view>
#include <system_error>

#include "blockmodel/HABM.h"
#include "blockmodel/HABMBmj.h"

namespace habm::bmj {

namespace {

using Document = rapidjson::GenericDocument<rapidjson::UTF8<>, JsonPool, JsonAllocator>;

// In place, as texts needn't be copied then; without recursion, as the nesting is anyone's; with
// the numbers as texts, as their arithmetic overflows for extreme exponents.
constexpr unsigned kParseFlags = rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag |
                                 rapidjson::kParseNumbersAsStringsFlag;

constexpr HABMAddrValue kZero(std::uint64_t{0});

std::string_view textOf(const JsonValue& value) {
    if (!value.IsString())
        throw Fault("a text was expected");
    return {value.GetString(), value.GetStringLength()};
}

std::string quoted(std::string_view text) {
    constexpr std::size_t kMostShown = 60;
    return "'" + std::string(text.substr(0, kMostShown)) + (text.size() > kMostShown ? "…'" : "'");
}

HABMAddrValue addressOf(const JsonValue& value) {
    const std::string text(textOf(value));
    const HABMAddrValue address(text);
    if (!address.isValid() && !text.empty())
        throw Fault(quoted(text) + " is no address");
    return address;
}

/// An array of two texts.
std::pair<const JsonValue*, const JsonValue*> pairOf(const JsonValue& value) {
    if (!value.IsArray() || value.Size() != 2)
        throw Fault("a pair was expected");
    return {&value[0], &value[1]};
}

HABMAddrAperture apertureOf(const JsonValue& value) {
    const auto [start, size] = pairOf(value);
    return {addressOf(*start), addressOf(*size)};
}

/// The members of an object, taken one after the other. The keys stand in their order, or are
/// missing; any other is a fault.
class Members {
public:
    explicit Members(const JsonValue& object) : m_object(object) {
        if (!object.IsObject())
            throw Fault("an object was expected");
    }

    /// The value of the next member if it has this key, else null.
    const JsonValue* take(std::string_view key) {
        if (m_next == m_object.MemberCount())
            return nullptr;
        const auto& member = m_object.MemberBegin()[static_cast<std::ptrdiff_t>(m_next)];
        if (textOf(member.name) != key)
            return nullptr;
        ++m_next;
        return &member.value;
    }
    std::string text(std::string_view key) {
        const JsonValue* const value = take(key);
        return value == nullptr ? std::string() : std::string(textOf(*value));
    }
    HABMAddrValue address(std::string_view key, const HABMAddrValue& fresh) {
        const JsonValue* const value = take(key);
        return value == nullptr ? fresh : addressOf(*value);
    }
    HABMAddrAperture aperture(std::string_view key) {
        const JsonValue* const value = take(key);
        return value == nullptr ? HABMAddrAperture("") : apertureOf(*value);
    }
    unsigned number(std::string_view key, unsigned fresh) {
        const JsonValue* const value = take(key);
        if (value == nullptr)
            return fresh;
        const std::string_view text = textOf(*value);
        unsigned number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc() || end != text.data() + text.size())
            throw Fault(quoted(text) + " is no number for " + quoted(key));
        return number;
    }
    /// The value whose text stands there. Texts that only an unknown value would explain are
    /// faults.
    template <class Value>
    Value choice(std::string_view key, Value (*encode)(std::string), std::string (*decode)(Value)) {
        const std::string name = text(key);
        const Value value = encode(name);
        if (!name.empty() && decode(value) != name)
            throw Fault(quoted(name) + " is unknown as " + quoted(key));
        return value;
    }
    template <class Visit>
    void array(std::string_view key, Visit visit) {
        const JsonValue* const value = take(key);
        if (value == nullptr)
            return;
        if (!value->IsArray())
            throw Fault("an array was expected as " + quoted(key));
        for (const JsonValue& item : value->GetArray())
            visit(item);
    }
    void end() const {
        if (m_next != m_object.MemberCount())
            throw Fault(
                "the key " +
                quoted(textOf(m_object.MemberBegin()[static_cast<std::ptrdiff_t>(m_next)].name)) +
                " is unknown, repeated or out of place");
    }

private:
    const JsonValue& m_object;
    rapidjson::SizeType m_next = 0;
};

/// The object that was created, or the fault that the model refused it.
template <class Object>
Object& accepted(Object* created, const std::string& name) {
    if (created == nullptr)
        throw Fault("the name " + quoted(name) + " is empty, holds a '/' or stands there twice");
    return *created;
}

void readPort(Members& in, HABMBlock& block) {
    const std::string name = in.text("name");
    HABMPort& port = accepted(block.createPort(name, false), name);
    port.setPortType(in.choice("type", HABMPort::encodePortType, HABMPort::decodePortType));
    port.setPortDirection(
        in.choice("direction", HABMPort::encodePortDirection, HABMPort::decodePortDirection));
    port.setPortLeft(in.number("left", 0));
    port.setPortRight(in.number("right", 0));
}

void readRegister(Members& in, HABMAddrBlock& block) {
    const std::string name = in.text("name");
    HABMRegister& member = accepted(block.createRegister(name), name);
    member.setOffset(in.address("offset", kZero));
    member.setWidth(in.number("width", 32));
    member.setReset(in.address("reset", {}));
    member.setAccess(in.choice("access", HABMRegister::encodeRegisterAccess,
                               HABMRegister::decodeRegisterAccess));
    member.setValue(in.address("value", {}));
}

/// Reads an array of objects, each by `read` into `owner`.
template <class Owner>
void readEach(Members& in, std::string_view key, Owner& owner, void (*read)(Members&, Owner&)) {
    in.array(key, [&](const JsonValue& item) {
        Members members(item);
        read(members, owner);
        members.end();
    });
}

void readAddrBlock(Members& in, HABMMemoryMap& map) {
    const std::string name = in.text("name");
    HABMAddrBlock& block = accepted(map.createAddrBlock(name), name);
    block.setMemoryType(
        in.choice("type", HABMAddrBlock::encodeMemoryType, HABMAddrBlock::decodeMemoryType));
    block.setAperture(in.aperture("aperture"));
    readEach(in, "registers", block, readRegister);
}

void readMemoryMap(Members& in, HABMBlock& block) {
    const std::string name = in.text("name");
    HABMMemoryMap& map = accepted(block.createMemoryMap(name), name);
    map.setRange(in.address("range", kZero));
    readEach(in, "blocks", map, readAddrBlock);
}

void readAddrSegment(Members& in, HABMAddrSpace& space) {
    const std::string name = in.text("name");
    HABMAddrSegment& segment = accepted(space.createAddrSegment(name), name);
    segment.setMemoryType(
        in.choice("type", HABMAddrSegment::encodeMemoryType, HABMAddrSegment::decodeMemoryType));
    segment.setAperture(in.aperture("aperture"));
}

void readAddrSpace(Members& in, HABMBlock& block) {
    const std::string name = in.text("name");
    HABMAddrSpace& space = accepted(block.createAddrSpace(name), name);
    space.setRange(in.address("range", kZero));
    readEach(in, "segments", space, readAddrSegment);
}

void readInterface(Members& in, HABMBlock& block) {
    const std::string name = in.text("name");
    HABMInterface& interface = accepted(block.createInterface(name, false), name);
    interface.setInterfaceVlnv(in.text("vlnv"));
    interface.setInterfaceMode(
        in.choice("mode", HABMInterface::encodeInterfaceMode, HABMInterface::decodeInterfaceMode));
    interface.setEnablement(in.text("enable"));
    interface.setMemoryMapRef(in.text("memory_map"));
    interface.setAddrSpaceRef(in.text("address_space"));
    std::set<HABMAddrAperture> apertures;
    in.array("apertures", [&](const JsonValue& item) { apertures.insert(apertureOf(item)); });
    interface.setApertures(apertures, false);
    in.array("port_maps", [&](const JsonValue& item) {
        const auto [logical, physical] = pairOf(item);
        const std::string key(textOf(*logical));
        accepted(interface.createPortMap(key, std::string(textOf(*physical))), key);
    });
}

void readPortConnection(Members& in, HABMBlock& block) {
    const std::string name = in.text("name");
    HABMPortConnection& connection =
        accepted(name.empty() ? nullptr : block.createPortConnection(name, false), name);
    connection.setConnectionType(in.choice("type", HABMPortConnection::encodeConnectionType,
                                           HABMPortConnection::decodeConnectionType));
    connection.setSourcePath(in.text("source"));
    std::set<std::string> targets;
    in.array("targets", [&](const JsonValue& item) { targets.emplace(textOf(item)); });
    connection.setTargetPaths(targets);
}

void readInterfaceConnection(Members& in, HABMBlock& block) {
    const std::string name = in.text("name");
    HABMInterfaceConnection& connection =
        accepted(name.empty() ? nullptr : block.createInterfaceConnection(name, false), name);
    connection.setConnectionType(in.choice("type", HABMInterfaceConnection::encodeConnectionType,
                                           HABMInterfaceConnection::decodeConnectionType));
    connection.setSourcePath(in.text("source"));
    connection.setTargetPath(in.text("target"));
}

void readAddrAssign(Members& in, HABMBlock& block) {
    const std::string name = in.text("name");
    HABMAddrAssign& assign = accepted(block.createAddrAssign(name), name);
    assign.setAssignType(
        in.choice("type", HABMAddrAssign::encodeAssignType, HABMAddrAssign::decodeAssignType));
    assign.setOffset(in.address("offset", kZero));
    assign.setRange(in.address("range", kZero));
    assign.setSourcePath(in.text("source"));
    assign.setTargetPath(in.text("target"));
}

void readContent(Members& in, HABMBlock& block);

void readSubBlock(Members& in, HABMBlock& owner) {
    const std::string name = in.text("instance");
    const std::string module = in.text("module");
    HABMBlock* const block = owner.createSubBlock(name, module, false);
    if (block == nullptr)
        throw Fault("the sub-block " + quoted(name) +
                    " has an unusable or repeated name, or stands too deep");
    readContent(in, *block);
}

/// All but the names.
void readContent(Members& in, HABMBlock& block) {
    block.setModuleVlnv(in.text("vlnv"));
    block.setEnablement(in.text("enable"));
    block.setBaseAddress(in.address("base", kZero));
    const JsonValue* const stub = in.take("stub");
    if (stub != nullptr && !stub->IsBool())
        throw Fault("true or false was expected as 'stub'");
    block.setBlockStub(stub != nullptr && stub->GetBool());
    const auto setter = [&](auto set) {
        return [&block, set](const JsonValue& item) {
            const auto [name, value] = pairOf(item);
            const std::string key(textOf(*name));
            accepted((block.*set)(key, std::string(textOf(*value)), false), key);
        };
    };
    in.array("parameters", setter(&HABMBlock::setParameter));
    in.array("attributes", setter(&HABMBlock::setAttribute));
    readEach(in, "ports", block, readPort);
    readEach(in, "memory_maps", block, readMemoryMap);
    readEach(in, "address_spaces", block, readAddrSpace);
    readEach(in, "interfaces", block, readInterface);
    readEach(in, "port_connections", block, readPortConnection);
    readEach(in, "interface_connections", block, readInterfaceConnection);
    readEach(in, "assigns", block, readAddrAssign);
    readEach(in, "blocks", block, readSubBlock);
}

void parse(std::string& text, Document& document) {
    // The parser takes a NUL byte for the end of the text.
    if (text.find('\0') != std::string::npos)
        throw Fault("it holds a NUL byte");
    document.ParseInsitu<kParseFlags>(text.data());
    if (document.HasParseError())
        throw Fault(std::string(rapidjson::GetParseError_En(document.GetParseError())) + " (byte " +
                    std::to_string(document.GetErrorOffset()) + ")");
}

} // namespace

std::unique_ptr<HABMBlock> fromText(std::string& text) {
    Document document;
    parse(text, document);
    Members file(document);
    if (file.text("format") != kFormat)
        throw Fault("it isn't a block model file");
    const unsigned version = file.number("version", 0);
    if (version != kVersion)
        throw Fault("it is of version " + std::to_string(version) + ", and only version " +
                    std::to_string(kVersion) + " can be read");
    const JsonValue* const block = file.take("block");
    if (block == nullptr)
        throw Fault("it holds no block");
    Members members(*block);
    std::unique_ptr<HABMBlock> top = HABMBlock::createTopBlock(members.text("module"));
    readContent(members, *top);
    members.end();
    file.end();
    return top;
}

} // namespace habm::bmj
