// The block model: the tree that describes a design.

#include <memory>
#include <set>

#include "HUTFile.h"
#include "bindings/core/Describe.h"
#include "bindings/interface/Parts.h"
#include "blockmodel/HABM.h"

namespace tq::bindings {

// --- texts of the model's enumerations ---

template <>
struct TextsOf<HABMPort::PortType> {
    static constexpr std::array table = {std::pair{HABMPort::PortType::Wire, "wire"},
                                         std::pair{HABMPort::PortType::Vector, "vector"}};
};
template <>
struct TextsOf<HABMPort::PortDirection> {
    static constexpr std::array table = {std::pair{HABMPort::PortDirection::In, "in"},
                                         std::pair{HABMPort::PortDirection::Out, "out"},
                                         std::pair{HABMPort::PortDirection::InOut, "inout"}};
};
template <>
struct TextsOf<HABMInterface::InterfaceMode> {
    using Mode = HABMInterface::InterfaceMode;
    static constexpr std::array table = {std::pair{Mode::Unknown, "unknown"},
                                         std::pair{Mode::Master, "master"},
                                         std::pair{Mode::Slave, "slave"},
                                         std::pair{Mode::MirroredMaster, "mirrored_master"},
                                         std::pair{Mode::MirroredSlave, "mirrored_slave"},
                                         std::pair{Mode::System, "system"},
                                         std::pair{Mode::Monitor, "monitor"}};
};
template <>
struct TextsOf<HABMAddrBlock::MemoryType> {
    using Memory = HABMAddrBlock::MemoryType;
    static constexpr std::array table = {std::pair{Memory::Register, "register"},
                                         std::pair{Memory::Memory, "memory"},
                                         std::pair{Memory::Reserved, "reserved"}};
};
template <>
struct TextsOf<HABMAddrSegment::MemoryType> {
    using Memory = HABMAddrSegment::MemoryType;
    static constexpr std::array table = {std::pair{Memory::Data, "data"},
                                         std::pair{Memory::Instruction, "instruction"},
                                         std::pair{Memory::Both, "both"}};
};
template <>
struct TextsOf<HABMRegister::RegisterAccess> {
    using Access = HABMRegister::RegisterAccess;
    static constexpr std::array table = {std::pair{Access::ReadWrite, "read_write"},
                                         std::pair{Access::ReadOnly, "read_only"},
                                         std::pair{Access::WriteOnly, "write_only"}};
};
template <>
struct TextsOf<HABMAddrAssign::AssignType> {
    static constexpr std::array table = {std::pair{HABMAddrAssign::Normal, "normal"},
                                         std::pair{HABMAddrAssign::Excluded, "excluded"},
                                         std::pair{HABMAddrAssign::Internal, "internal"}};
};

struct PortMapLine {
    std::string logicalPort;
    std::string physicalPort;
};
template <>
struct RecordOf<PortMapLine> {
    static constexpr const char* name = "PortMapLine";
    static constexpr auto fields = std::tuple{field("logicalPort", &PortMapLine::logicalPort),
                                              field("physicalPort", &PortMapLine::physicalPort)};
};

struct Aperture {
    HABMAddrValue start;
    HABMAddrValue size;
};
template <>
struct RecordOf<Aperture> {
    static constexpr const char* name = "Aperture";
    static constexpr auto fields =
        std::tuple{field("start", &Aperture::start), field("size", &Aperture::size)};
};

namespace {

// --- what an object lies in ---

const HABMBlock* blockOf(const HABMBlock& object) {
    return &object;
}
const HABMBlock* blockOf(const HABMAddrBlock& object) {
    return object.getParent()->getParent();
}
const HABMBlock* blockOf(const HABMRegister& object) {
    return blockOf(*object.getParent());
}
const HABMBlock* blockOf(const HABMAddrSegment& object) {
    return object.getParent()->getParent();
}
template <class T>
const HABMBlock* blockOf(const T& object) {
    return object.getParent();
}

/// The block of a handle of one of these classes.
template <class... T>
const HABMBlock* blockOfHandle(const Object& object) {
    const HABMBlock* block = nullptr;
    ((object.type == &infoOf<T>() ? void(block = blockOf(*static_cast<const T*>(object.native)))
                                  : void()),
     ...);
    return block;
}

bool isInside(const Object& object, const HABMBlock* around) {
    const HABMBlock* block =
        blockOfHandle<HABMBlock, HABMPort, HABMInterface, HABMPortConnection,
                      HABMInterfaceConnection, HABMMemoryMap, HABMAddrSpace, HABMAddrBlock,
                      HABMAddrSegment, HABMRegister, HABMAddrAssign>(object);
    while (block != nullptr && block != around)
        block = block->getParent();
    return block != nullptr;
}

// --- words for messages ---

std::string textOf(const HABMBlock& block) {
    return block.getParent() == nullptr ? block.getModuleName() : block.getInstancePath();
}
std::string pathIn(const HABMBlock* block, const std::string& name) {
    return block->getInstancePath() + "/" + name;
}
std::string textOfPort(const HABMPort& port) {
    return pathIn(port.getParent(), port.getPortName());
}
std::string textOfInterface(const HABMInterface& interface) {
    return pathIn(interface.getParent(), interface.getInterfaceName());
}
template <class T>
std::string pathOf(const T& object) {
    return object.getPath();
}
template <class T>
std::string nameBelow(const T& object) {
    return pathIn(object.getParent(), object.getName());
}

// --- objects that are made ---

template <class T>
T& expectMade(T* made, const std::string& name) {
    if (made == nullptr)
        throw ScriptError(Failure::Kind::Command,
                          "the block model refuses the name \"" + name +
                              "\": it is taken, empty or holds a \"/\", or the tree is too deep");
    return *made;
}

template <class T>
T& expectFound(T* found, const HABMBlock& block, const char* noun, const std::string& name) {
    if (found == nullptr)
        throw ScriptError(Failure::Kind::NotFound,
                          "block " + textOf(block) + " has no " + noun + " \"" + name + "\"");
    return *found;
}

HABMBlock& createSubBlock(HABMBlock& block, const std::string& instance,
                          const std::string& module) {
    return expectMade(block.createSubBlock(instance, module, false), instance);
}
HABMPort& createPort(HABMBlock& block, const std::string& name) {
    return expectMade(block.createPort(name, false), name);
}
HABMInterface& createInterface(HABMBlock& block, const std::string& name) {
    return expectMade(block.createInterface(name, false), name);
}
HABMPortConnection& createPortConnection(HABMBlock& block, const std::string& source,
                                         const std::set<std::string>& targets) {
    HABMPortConnection& made = expectMade(block.createPortConnection("", false), "");
    made.setSourcePath(source);
    made.setTargetPaths(targets);
    return made;
}
HABMInterfaceConnection& createInterfaceConnection(HABMBlock& block, const std::string& source,
                                                   const std::string& target) {
    HABMInterfaceConnection& made = expectMade(block.createInterfaceConnection("", false), "");
    made.setSourcePath(source);
    made.setTargetPath(target);
    return made;
}
HABMMemoryMap& createMemoryMap(HABMBlock& block, const std::string& name) {
    return expectMade(block.createMemoryMap(name), name);
}
HABMAddrSpace& createAddrSpace(HABMBlock& block, const std::string& name) {
    return expectMade(block.createAddrSpace(name), name);
}
HABMAddrAssign& createAddrAssign(HABMBlock& block, const std::string& name,
                                 const HABMAddrBlock& source, const HABMAddrSegment& target) {
    HABMAddrAssign& made = expectMade(block.createAddrAssign(name), name);
    made.setSourceAddrBlock(&source);
    made.setTargetAddrSegment(&target);
    made.setOffset(target.getOffset());
    made.setRange(source.getRange());
    return made;
}
HABMAddrBlock& createAddrBlock(HABMMemoryMap& map, const std::string& name,
                               const HABMAddrValue& offset, const HABMAddrValue& range) {
    HABMAddrBlock& made = expectMade(map.createAddrBlock(name), name);
    made.setAperture({offset, range});
    return made;
}
HABMAddrSegment& createAddrSegment(HABMAddrSpace& space, const std::string& name,
                                   const HABMAddrValue& offset, const HABMAddrValue& range) {
    HABMAddrSegment& made = expectMade(space.createAddrSegment(name), name);
    made.setAperture({offset, range});
    return made;
}
HABMRegister& createRegister(HABMAddrBlock& block, const std::string& name,
                             const HABMAddrValue& offset) {
    HABMRegister& made = expectMade(block.createRegister(name), name);
    made.setOffset(offset);
    return made;
}

// --- objects that are looked up ---

HABMBlock& getSubBlock(const HABMBlock& block, const std::string& name) {
    return expectFound(block.getSubBlock(name), block, "sub-block", name);
}
HABMPort& getPort(const HABMBlock& block, const std::string& name) {
    return expectFound(block.getPort(name), block, "port", name);
}
HABMInterface& getInterface(const HABMBlock& block, const std::string& name) {
    return expectFound(block.getInterface(name), block, "interface", name);
}
HABMMemoryMap& getMemoryMap(const HABMBlock& block, const std::string& name) {
    return expectFound(block.getMemoryMap(name), block, "memory map", name);
}
HABMAddrSpace& getAddrSpace(const HABMBlock& block, const std::string& name) {
    return expectFound(block.getAddrSpace(name), block, "address space", name);
}
HABMRegister& findRegister(const HABMBlock& block, const std::string& path) {
    return expectFound(block.findRegister(path, true), block, "register", path);
}
std::vector<HABMRegister*> findRegisters(const HABMBlock& block, const std::string& pattern) {
    return block.findRegisters(pattern, true);
}
std::vector<HABMMemoryMap*> findMemoryMaps(const HABMBlock& block, const std::string& pattern) {
    return block.findMemoryMaps(pattern, true);
}
std::vector<HABMAddrSpace*> findAddrSpaces(const HABMBlock& block, const std::string& pattern) {
    return block.findAddrSpaces(pattern, true);
}
std::vector<HABMAddrAssign*> findAddrAssigns(const HABMBlock& block, const std::string& pattern) {
    return block.findAddrAssigns(pattern, true);
}

std::map<std::string, std::string> parameters(const HABMBlock& block) {
    std::map<std::string, std::string> all;
    for (const HABMGeneric* generic : block.getGenerics())
        all.emplace(generic->getName(), generic->getValue());
    return all;
}
std::map<std::string, std::string> attributes(const HABMBlock& block) {
    std::map<std::string, std::string> all;
    for (const HABMAttribute* attribute : block.getAttributes())
        all.emplace(attribute->getName(), attribute->getValue());
    return all;
}
void setParameter(HABMBlock& block, const std::string& name, const std::string& value) {
    if (block.setParameter(name, value, true) == nullptr)
        raiseArgument("the name of a parameter mayn't be empty");
}
void setAttribute(HABMBlock& block, const std::string& name, const std::string& value) {
    if (block.setAttribute(name, value, true) == nullptr)
        raiseArgument("the name of an attribute mayn't be empty");
}

std::vector<PortMapLine> portMaps(const HABMInterface& interface) {
    const std::vector<HABMPortMap*> map = interface.getPortMaps();
    std::vector<PortMapLine> lines;
    lines.reserve(map.size());
    for (const HABMPortMap* line : map)
        lines.push_back({line->getLogicalPort(), line->getPhysicalPort()});
    return lines;
}
std::vector<Aperture> apertures(const HABMInterface& interface) {
    std::vector<Aperture> all;
    all.reserve(interface.getApertures().size());
    for (const HABMAddrAperture& aperture : interface.getApertures())
        all.push_back({aperture.getStart(), aperture.getSize()});
    return all;
}

// --- whole trees ---

std::unique_ptr<HABMBlock> createTopBlock(const std::string& name) {
    return HABMBlock::createTopBlock(name);
}

std::unique_ptr<HABMBlock> readTopBlock(const std::string& path) {
    auto block = HABMBlock::readTopBlock(HUTFile(path));
    if (block == nullptr)
        throw ScriptError(Failure::Kind::Input, "can't read the block file " + path);
    return block;
}

void writeTopBlock(const HABMBlock& block, const std::string& path) {
    if (!HABMBlock::writeTopBlock(HUTFile(path), block, true))
        throw ScriptError(Failure::Kind::Input, "can't write the block file " + path);
}

std::unique_ptr<HABMBlock> cloneTopBlock(const HABMBlock& block) {
    return HABMBlock::cloneTopBlock(block);
}

/// Handles of what is removed end, also where a new tree takes it over.
std::unique_ptr<HABMBlock> removeSubBlock(HABMBlock& block, Call& call, const std::string& name) {
    const HABMBlock* const going = &getSubBlock(block, name);
    Registry::get().endMembers(*call.root(),
                               [going](const Object& member) { return isInside(member, going); });
    return block.removeSubBlock(name);
}

void removeInterface(HABMBlock& block, Call& call, const std::string& name) {
    const HABMInterface* const going = &getInterface(block, name);
    Registry::get().endMembers(*call.root(),
                               [going](const Object& member) { return member.native == going; });
    block.removeInterface(name);
}

void describeBlock(Interface& interface) {
    using T = HABMBlock;
    Describe<T>("HABMBlock", "model block", "block",
                "A block of the block model. A top block belongs to the script that made it, "
                "everything below to its tree. A definition of the library never changes.")
        .called<&textOf>()
        .deletable()
        .constructor<&createTopBlock>({required("moduleName")}, "A new top block.")
        .property<&T::getModuleName>("moduleName", "The module's name.")
        .property<&T::getInstanceName>("instanceName", "Empty for a top block.")
        .property<&T::getInstancePath>("instancePath", "/outer/inner; empty for a top block.")
        .property<&T::getModuleVlnv, &T::setModuleVlnv>("moduleVlnv",
                                                        "vendor:library:name:version.")
        .property<&T::getEnablement, &T::setEnablement>(
            "enablement", "Expression that says whether a design has this block.")
        .property<&T::getBaseAddress, &T::setBaseAddress>("baseAddress", "Its base address.")
        .property<&T::isBlockStub, &T::setBlockStub>("isBlockStub",
                                                     "Whether it stands for a definition.")
        .property<&T::getParent>("parent", "The block that owns this one, or none.")
        .property<&T::getSubBlocks>("subBlocks", "Its sub-blocks.")
        .property<&T::getPorts>("ports", "Its ports.")
        .property<&T::getInterfaces>("interfaces", "Its interfaces.")
        .property<&T::getPortConnections>("portConnections", "Its port connections.")
        .property<&T::getInterfaceConnections>("interfaceConnections", "Its interface connections.")
        .property<&T::getMemoryMaps>("memoryMaps", "Its memory maps.")
        .property<&T::getAddrSpaces>("addrSpaces", "Its address spaces.")
        .property<&T::getAddrAssigns>("addrAssigns", "Its address assigns.")
        .property<&parameters>("parameters", "Its parameters by name.")
        .property<&attributes>("attributes", "Its attributes by name.")
        .method<&getSubBlock>("getSubBlock", {required("instance")}, "The sub-block of that name.")
        .method<&getPort>("getPort", {required("name")}, "The port of that name.")
        .method<&getInterface>("getInterface", {required("name")}, "The interface of that name.")
        .method<&getMemoryMap>("getMemoryMap", {required("name")}, "The memory map of that name.")
        .method<&getAddrSpace>("getAddrSpace", {required("name")},
                               "The address space of that name.")
        .method<&findRegister>("findRegister", {required("path")},
                               "A register by its path from this block, or by its bare name.")
        .method<&findRegisters>("findRegisters", {optional("pattern", {std::string()})},
                                "The registers here and below whose paths match: \"*\" is any "
                                "text, the empty pattern all.")
        .method<&findMemoryMaps>("findMemoryMaps", {optional("pattern", {std::string()})},
                                 "The memory maps here and below.")
        .method<&findAddrSpaces>("findAddrSpaces", {optional("pattern", {std::string()})},
                                 "The address spaces here and below.")
        .method<&findAddrAssigns>("findAddrAssigns", {optional("pattern", {std::string()})},
                                  "The address assigns here and below.")
        .method<&createSubBlock>("createSubBlock", {required("instance"), required("module")},
                                 "A new sub-block.")
        .method<&createPort>("createPort", {required("name")}, "A new port.")
        .method<&createInterface>("createInterface", {required("name")}, "A new interface.")
        .method<&createPortConnection>("createPortConnection",
                                       {required("sourcePath"), required("targetPaths")},
                                       "A new connection of ports.")
        .method<&createInterfaceConnection>("createInterfaceConnection",
                                            {required("sourcePath"), required("targetPath")},
                                            "A new connection of interfaces.")
        .method<&createMemoryMap>("createMemoryMap", {required("name")}, "A new memory map.")
        .method<&createAddrSpace>("createAddrSpace", {required("name")}, "A new address space.")
        .method<&createAddrAssign>(
            "createAddrAssign", {required("name"), required("addrBlock"), required("addrSegment")},
            "A new assign: the address block appears at the start of the segment.")
        .method<&setParameter>("setParameter", {required("name"), required("value")},
                               "Sets a parameter.")
        .method<&setAttribute>("setAttribute", {required("name"), required("value")},
                               "Sets an attribute.")
        .method<&removeSubBlock>("removeSubBlock", {required("instance")},
                                 "Takes a sub-block out, as a top block. Handles of it and of what "
                                 "is in it end.")
        .method<&removeInterface>("removeInterface", {required("name")}, "Removes an interface.")
        .method<&T::hasSameContent>("hasSameContent", {required("other")},
                                    "Whether both hold the same, in the same order.")
        .method<&cloneTopBlock>("cloneTopBlock", {}, "A deep copy, as a top block.", Mode::Slow)
        .method<&writeTopBlock>("writeTopBlock", {required("path")}, "Writes a .bmj file.",
                                Mode::Slow)
        .staticMethod<&readTopBlock>("readTopBlock", {required("path")}, "Reads a .bmj file.",
                                     Mode::Slow);
    interface.add(infoOf<T>());
}

void describePorts(Interface& interface) {
    using P = HABMPort;
    Describe<P>("HABMPort", "model port", "port", "A port of a block.")
        .called<&textOfPort>()
        .property<&P::getPortName>("portName", "The port's name.")
        .property<&P::getPortType, &P::setPortType>("portType", "wire or vector.")
        .property<&P::getPortDirection, &P::setPortDirection>("portDirection", "in, out or inout.")
        .property<&P::getPortLeft, &P::setPortLeft>("portLeft", "Left bound of a vector.")
        .property<&P::getPortRight, &P::setPortRight>("portRight", "Right bound of a vector.")
        .method<&P::hasConnections>("hasConnections", {}, "Whether any connection names it.");
    interface.add(infoOf<P>());

    using I = HABMInterface;
    Describe<I>("HABMInterface", "model interface", "interface", "An interface of a block.")
        .called<&textOfInterface>()
        .property<&I::getInterfaceName>("interfaceName", "The interface's name.")
        .property<&I::getInterfaceVlnv, &I::setInterfaceVlnv>("interfaceVlnv",
                                                              "VLNV of its definition.")
        .property<&I::getInterfaceMode, &I::setInterfaceMode>("interfaceMode",
                                                              "master, slave, and so on.")
        .property<&I::getEnablement, &I::setEnablement>(
            "enablement", "Expression that says whether a design has it.")
        .property<&I::getMemoryMapRef, &I::setMemoryMapRef>("memoryMapRef",
                                                            "Name of a memory map of its block.")
        .property<&I::getAddrSpaceRef, &I::setAddrSpaceRef>(
            "addrSpaceRef", "Name of an address space of its block.")
        .property<&apertures>("apertures", "Its apertures by start.")
        .property<&portMaps>("portMaps", "The lines of its port map.")
        .method<&I::isSourceInterface>("isSourceInterface", {}, "Whether it is an initiator.")
        .method<&I::hasConnections>("hasConnections", {}, "Whether any connection names it.");
    interface.add(infoOf<I>());

    using C = HABMPortConnection;
    Describe<C>("HABMPortConnection", "model portconnection", "port connection",
                "A connection of ports.")
        .called<&nameBelow<C>>()
        .property<&C::getName>("name", "The connection's name.")
        .property<&C::getSourcePath, &C::setSourcePath>("sourcePath", "Path of the source port.")
        .property<&C::getTargetPaths, &C::setTargetPaths>("targetPaths", "Paths of the targets.");
    interface.add(infoOf<C>());

    using D = HABMInterfaceConnection;
    Describe<D>("HABMInterfaceConnection", "model interfaceconnection", "interface connection",
                "A connection of two interfaces.")
        .called<&nameBelow<D>>()
        .property<&D::getName>("name", "The connection's name.")
        .property<&D::getSourcePath, &D::setSourcePath>("sourcePath", "Path of the source.")
        .property<&D::getTargetPath, &D::setTargetPath>("targetPath", "Path of the target.")
        .method<&D::isValid>("isValid", {}, "Whether both ends exist.");
    interface.add(infoOf<D>());
}

void describeMaps(Interface& interface) {
    using M = HABMMemoryMap;
    Describe<M>("HABMMemoryMap", "model memorymap", "memory map", "A memory map of a block.")
        .called<&pathOf<M>>()
        .property<&M::getName>("name", "The map's name.")
        .property<&M::getPath>("path", "/instance/map.")
        .property<&M::getRange, &M::setRange>("range", "Extent in bytes.")
        .property<&M::getAddrBlocks>("addrBlocks", "Its address blocks.")
        .method<&createAddrBlock>("createAddrBlock",
                                  {required("name"), required("offset"), required("range")},
                                  "A new address block.");
    interface.add(infoOf<M>());

    using B = HABMAddrBlock;
    Describe<B>("HABMAddrBlock", "model addrblock", "address block",
                "A range of a memory map that holds registers or memory.")
        .called<&pathOf<B>>()
        .property<&B::getName>("name", "The address block's name.")
        .property<&B::getPath>("path", "/instance/map/block.")
        .property<&B::getOffset>("offset", "Start in the memory map.")
        .property<&B::getRange>("range", "Size in bytes.")
        .property<&B::getMemoryType, &B::setMemoryType>("memoryType",
                                                        "register, memory or reserved.")
        .property<&B::getRegisters>("registers", "Its registers.")
        .method<&createRegister>("createRegister", {required("name"), required("offset")},
                                 "A new register.");
    interface.add(infoOf<B>());

    using R = HABMRegister;
    Describe<R>("HABMRegister", "model register", "register", "A register of an address block.")
        .called<&pathOf<R>>()
        .property<&R::getName>("name", "The register's name.")
        .property<&R::getPath>("path", "/instance/map/block/register.")
        .property<&R::getOffset, &R::setOffset>("offset", "Offset in the address block.")
        .property<&R::getReset, &R::setReset>("reset", "Reset value, or none.")
        .property<&R::getWidth, &R::setWidth>("width", "Width in bits.")
        .property<&R::getAccess, &R::setAccess>("access", "read_write, read_only or write_only.")
        .property<&R::getValue, &R::setValue>("value", "The given value, else the reset value.");
    interface.add(infoOf<R>());

    using S = HABMAddrSpace;
    Describe<S>("HABMAddrSpace", "model addrspace", "address space", "What an initiator sees.")
        .called<&pathOf<S>>()
        .property<&S::getName>("name", "The space's name.")
        .property<&S::getPath>("path", "/instance/space.")
        .property<&S::getRange, &S::setRange>("range", "Extent in bytes.")
        .property<&S::getAddrSegments>("addrSegments", "Its segments.")
        .method<&createAddrSegment>("createAddrSegment",
                                    {required("name"), required("offset"), required("range")},
                                    "A new segment.");
    interface.add(infoOf<S>());

    using G = HABMAddrSegment;
    Describe<G>("HABMAddrSegment", "model addrsegment", "segment", "A window of an address space.")
        .called<&pathOf<G>>()
        .property<&G::getName>("name", "The segment's name.")
        .property<&G::getPath>("path", "/instance/space/segment.")
        .property<&G::getOffset>("offset", "Start in the address space.")
        .property<&G::getRange>("range", "Size in bytes.")
        .property<&G::getMemoryType, &G::setMemoryType>("memoryType", "data, instruction or both.");
    interface.add(infoOf<G>());

    using A = HABMAddrAssign;
    Describe<A>("HABMAddrAssign", "model addrassign", "address assign",
                "Says that an address block appears in an address space.")
        .called<&nameBelow<A>>()
        .property<&A::getName>("name", "The assign's name.")
        .property<&A::getAssignType, &A::setAssignType>("assignType",
                                                        "normal, excluded or internal.")
        .property<&A::getOffset, &A::setOffset>("offset", "Where the block starts in the space.")
        .property<&A::getRange, &A::setRange>("range", "Its size in bytes.")
        .property<&A::getSourceAddrBlock>("sourceAddrBlock", "The address block, or none.")
        .property<&A::getTargetAddrSegment>("targetAddrSegment", "The segment, or none.");
    interface.add(infoOf<A>());
}

} // namespace

void describeBlocks(Interface& interface) {
    describeBlock(interface);
    describePorts(interface);
    describeMaps(interface);
}

} // namespace tq::bindings
