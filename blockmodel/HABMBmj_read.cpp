// Makes a block of the text of a ".bmj" file.

#include <cstdint>
#include <set>
#include <string_view>

#include "blockmodel/HABM.h"
#include "blockmodel/HABMBmj.h"
#include "blockmodel/HABMBmjSource.h"

namespace habm::bmj {

namespace {

constexpr HABMAddrValue kZero(std::uint64_t{0});

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
    in.array(key, [&](Source& source) {
        Members members(source);
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
    in.array("apertures", [&](Source& source) { apertures.insert(source.aperture()); });
    interface.setApertures(apertures, false);
    in.array("port_maps", [&](Source& source) {
        const auto [logical, physical] = source.pair(&Source::text);
        const std::string key(logical);
        accepted(interface.createPortMap(key, std::string(physical)), key);
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
    in.array("targets", [&](Source& source) { targets.emplace(source.text()); });
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
    block.setBlockStub(in.flag("stub"));
    const auto setter = [&](auto set) {
        return [&block, set](Source& source) {
            const auto [name, value] = source.pair(&Source::text);
            const std::string key(name);
            accepted((block.*set)(key, std::string(value), false), key);
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

std::unique_ptr<HABMBlock> readFile(Source& source) {
    Members file(source);
    if (file.text("format") != kFormat)
        throw Fault("it isn't a block model file");
    const unsigned version = file.number("version", 0);
    if (version != kVersion)
        throw Fault("it is of version " + std::to_string(version) + ", and only version " +
                    std::to_string(kVersion) + " can be read");
    std::unique_ptr<HABMBlock> top;
    file.take("block", [&] {
        Members members(source);
        top = HABMBlock::createTopBlock(members.text("module"));
        readContent(members, *top);
        members.end();
    });
    if (top == nullptr)
        throw Fault("it holds no block");
    file.end();
    source.expectEnd();
    return top;
}

} // namespace

std::unique_ptr<HABMBlock> fromText(std::string& text) {
    // The parser takes a NUL byte for the end of the text.
    if (text.find('\0') != std::string::npos)
        throw Fault("it holds a NUL byte");
    Source source(text);
    try {
        return readFile(source);
    } catch (const Fault& fault) {
        throw Fault(std::string(fault.what()) + " (at " + source.place() + ")");
    }
}

} // namespace habm::bmj
