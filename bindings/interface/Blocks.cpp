// The block model: the tree that describes a design.

#include <memory>
#include <set>

#include "HUTFile.h"
#include "bindings/core/Describe.h"
#include "bindings/interface/BlockParts.h"
#include "bindings/interface/Parts.h"

namespace tq::bindings {

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

// --- objects that are made ---

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

/// Handles of what the place held end, that of the place itself stays.
void mergeTopBlock(HABMBlock& block, Call& call, const std::string& path, const HABMBlock& child,
                   bool replace) {
    HABMBlock& place = expectFound(block.getSubBlock(path), block, "sub-block", path);
    if (!replace && !place.isBlockStub())
        throw ScriptError(Failure::Kind::Command, "block " + textOf(place) +
                                                      " is no stub; only with replace is it "
                                                      "replaced");
    if (child.getTopBlock() == block.getTopBlock())
        throw ScriptError(Failure::Kind::Command,
                          "block " + textOf(child) + " is of the same tree");
    Registry::get().endMembers(*call.root(), [&place](const Object& member) {
        return member.native != &place && isInside(member, &place);
    });
    if (!HABMBlock::mergeTopBlock(block, place.getInstancePath(), child, replace))
        throw ScriptError(Failure::Kind::Command, "the tree would get too many levels");
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
        .method<&mergeTopBlock>(
            "mergeTopBlock",
            {required("instance"), required("child"), optional("replace", {false})},
            "Puts a copy of what another tree holds into a sub-block that is a stub, or into any "
            "with replace. It keeps its instance name. Handles of what it held end.",
            Mode::Slow)
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

} // namespace

void describeBlocks(Interface& interface) {
    describeBlock(interface);
    describeBlockPorts(interface);
    describeBlockMaps(interface);
}

} // namespace tq::bindings
