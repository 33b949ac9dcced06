// A block of a design: the root of the block model, and every node of its tree.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "blockmodel/HABMAddrValue.h"
#include "diagnostics/Diagnostic.h"
#include "tq_export.h"

class HABMAddrAssign;
class HABMAddrBlock;
class HABMAddrSpace;
class HABMAttribute;
class HABMConnectionIndex;
class HABMGeneric;
class HABMInterface;
class HABMInterfaceConnection;
class HABMMemoryMap;
class HABMParameter;
class HABMPort;
class HABMPortConnection;
class HABMRegister;
class HUTFile;

/// A top block is held by its creator; every other object is owned by its parent, down the tree:
///
/// - a block owns sub-blocks, ports, interfaces, port and interface connections, parameters,
///   attributes, memory maps, address spaces and address assigns;
/// - a memory map owns address blocks, an address block registers, an address space segments, an
///   interface its port map.
///
/// A pointer that an operation returns stays valid until the object is removed or its top block is
/// destroyed. The vectors of `get…s` and `find…` are snapshots in a stable order, creation order
/// within an owner, and stay usable for the objects that aren't removed meanwhile. Names are case
/// sensitive; each kind of object has its own names within its owner. Looking up a name takes a
/// constant time on average.
///
///     std::unique_ptr<HABMBlock> top = HABMBlock::createTopBlock("soc");
///     HABMBlock* cpu = top->createSubBlock("cpu0", "cpu", false);
///     HABMInterface* axi = cpu->createInterface("M_AXI", false);
///     axi->setInterfaceMode(HABMInterface::InterfaceMode::Master);
///     top->createInterface("M_AXI", false);
///     HABMInterfaceConnection* c = top->createInterfaceConnection("", false);
///     c->setSourcePath("/cpu0/M_AXI");
///     c->setTargetPath("/M_AXI");
///     HABMBlock::writeTopBlock(file, *top, true);
///
/// A `create…` that refuses and a query that finds nothing return null, a `remove…` that finds
/// nothing false; no operation throws for its input. When memory runs out, every operation either
/// handles it as it says or throws `std::bad_alloc` and leaves the block unchanged. The flag of a
/// `create…` says what to do about a name that is taken: false refuses, true returns the object
/// that has it. A tree is used by one thread at a time, also for reading: a query for connections
/// or for a register by its bare name builds an index.
class TQ_EXPORT HABMBlock {
public:
    /// Bound of the levels of a tree; the top block is on the first.
    static constexpr int kMostLevels = 512;

    ~HABMBlock();
    HABMBlock(const HABMBlock&) = delete;
    HABMBlock& operator=(const HABMBlock&) = delete;

    // --- Whole trees ---

    /// New empty top block; `name` is its module name.
    [[nodiscard]] static std::unique_ptr<HABMBlock> createTopBlock(const std::string& name);
    /// Reads a ".bmj" file. Empty if it can't: without a message if there is no such file, else
    /// with the message "@92-1@%s%s" (file, reason). A file that is damaged, truncated, of another
    /// version or larger than the parameter "general.maxInputMiB" allows, or whose tree this model
    /// refuses, isn't read in part. Where memory runs out the message is sent, and `std::bad_alloc`
    /// raised.
    [[nodiscard]] static std::unique_ptr<HABMBlock> readTopBlock(const HUTFile& file);
    /// The same, but the sink is told, with the place in the file, and no message is sent. Holds
    /// the file's text twice while it is read.
    [[nodiscard]] static std::unique_ptr<HABMBlock> readTopBlock(const HUTFile& file,
                                                                 const tq::DiagnosticSink& sink);
    /// Writes a ".bmj" file. Equal blocks give equal bytes. With the flag the file is replaced in
    /// one step, once the new content is on the disk, so that a crash or a full disk leaves the old
    /// one whole; without it a file that is already there is left alone. False, with the old
    /// file unchanged, if it can't be written, if the path is that of something else, if it
    /// would be larger than `readTopBlock` can ever take (4 GiB), a single text a sixth of that, or
    /// if the memory doesn't suffice. "general.maxInputMiB" doesn't bound what is written.
    static bool writeTopBlock(const HUTFile& file, const HABMBlock& block, const bool& flag);
    /// Deep copy. Of a sub-block it makes a top block, with the paths as `removeSubBlock` has them.
    [[nodiscard]] static std::unique_ptr<HABMBlock> cloneTopBlock(const HABMBlock& block);
    /// Puts the content of `child` in place of that of the sub-block at `path`, which keeps its
    /// address in memory, its instance name and its place, takes all else from `child` and is no
    /// stub any more. The paths of the child's connections and assigns begin at the sub-block then;
    /// if `child` is a sub-block of its tree, those that lead out of it stay as they are. Without
    /// the flag only a stub is replaced. False, with nothing changed, if the path isn't that of a
    /// sub-block, if `child` is of the same tree or if the tree would get too many levels.
    static bool mergeTopBlock(HABMBlock& top, const std::string& path, const HABMBlock& child,
                              const bool& flag);
    /// True if both have the same content: all that a file holds but the instance name, and in the
    /// same order.
    [[nodiscard]] bool hasSameContent(const HABMBlock& other) const;

    // --- The block itself ---

    [[nodiscard]] const std::string& getModuleName() const;
    /// Empty for a top block.
    [[nodiscard]] const std::string& getInstanceName() const { return m_instanceName; }
    /// "/outer/inner" from the top block; empty for a top block.
    [[nodiscard]] std::string getInstancePath() const;
    /// The block that owns this one; null for a top block.
    [[nodiscard]] HABMBlock* getParent() const { return m_parent; }
    [[nodiscard]] HABMBlock* getTopBlock();
    [[nodiscard]] const HABMBlock* getTopBlock() const;

    [[nodiscard]] const std::string& getModuleVlnv() const;
    void setModuleVlnv(const std::string& vlnv);
    /// Expression that says whether a design has this block; empty if it always has.
    [[nodiscard]] const std::string& getEnablement() const;
    void setEnablement(const std::string& expression);
    /// 0 unless set.
    [[nodiscard]] const HABMAddrValue& getBaseAddress() const;
    void setBaseAddress(const HABMAddrValue& address);
    /// True for a placeholder, into which a definition is to be merged.
    [[nodiscard]] bool isBlockStub() const;
    void setBlockStub(const bool& isStub);
    /// The stubs among this block and all below it, in the order of the `find…` operations.
    [[nodiscard]] std::vector<const HABMBlock*> findStubs() const;
    /// True if a block around this one has the same module VLNV, so that the definition contains
    /// itself; false for an empty VLNV.
    [[nodiscard]] bool isRecursive() const;

    // --- Sub-blocks, ports, interfaces. No name may be empty or hold a "/". ---

    /// Null also if the tree would get too many levels.
    HABMBlock* createSubBlock(const std::string& instance, const std::string& module,
                              const bool& flag);
    [[nodiscard]] HABMBlock* getSubBlock(const std::string& instance) const;
    [[nodiscard]] std::vector<HABMBlock*> getSubBlocks() const;
    /// Takes the sub-block out as a top block; empty if there is none. Paths of its connections
    /// and assigns that lead below it begin there. Those that lead out of it, and paths elsewhere
    /// in the design that lead into it, are kept unchanged and are unresolved, unless their tree
    /// has an object at that path.
    std::unique_ptr<HABMBlock> removeSubBlock(const std::string& instance);

    HABMPort* createPort(const std::string& name, const bool& flag);
    [[nodiscard]] HABMPort* getPort(const std::string& name) const;
    [[nodiscard]] std::vector<HABMPort*> getPorts() const;

    HABMInterface* createInterface(const std::string& name, const bool& flag);
    [[nodiscard]] HABMInterface* getInterface(const std::string& name) const;
    [[nodiscard]] std::vector<HABMInterface*> getInterfaces() const;
    bool removeInterface(const std::string& name);

    // --- Connections. For an empty name the model chooses one. ---

    HABMPortConnection* createPortConnection(const std::string& name, const bool& flag);
    [[nodiscard]] std::vector<HABMPortConnection*> getPortConnections() const;
    bool removePortConnection(const std::string& name);

    HABMInterfaceConnection* createInterfaceConnection(const std::string& name, const bool& flag);
    [[nodiscard]] std::vector<HABMInterfaceConnection*> getInterfaceConnections() const;
    bool removeInterfaceConnection(const std::string& name);

    // --- Parameters and attributes. A name mayn't be empty. ---

    /// Sets a value; a replaced one keeps its place in the order. Without the flag nothing is
    /// replaced, and the result is null if the name has a value.
    HABMParameter* setParameter(const std::string& name, const std::string& value,
                                const bool& flag);
    /// The parameters, in the order in which their names were first set.
    [[nodiscard]] std::vector<HABMGeneric*> getGenerics() const;

    HABMAttribute* setAttribute(const std::string& name, const std::string& value,
                                const bool& flag);
    [[nodiscard]] HABMAttribute* getAttribute(const std::string& name) const;
    [[nodiscard]] std::vector<HABMAttribute*> getAttributes() const;

    // --- Addressing. No name may be empty or hold a "/". ---

    HABMMemoryMap* createMemoryMap(const std::string& name);
    [[nodiscard]] HABMMemoryMap* getMemoryMap(const std::string& name) const;
    [[nodiscard]] std::vector<HABMMemoryMap*> getMemoryMaps() const;

    HABMAddrSpace* createAddrSpace(const std::string& name);
    [[nodiscard]] HABMAddrSpace* getAddrSpace(const std::string& name) const;
    [[nodiscard]] std::vector<HABMAddrSpace*> getAddrSpaces() const;

    HABMAddrAssign* createAddrAssign(const std::string& name);
    [[nodiscard]] HABMAddrAssign* getAddrAssign(const std::string& name) const;
    [[nodiscard]] std::vector<HABMAddrAssign*> getAddrAssigns() const;

    // --- Finding. With the flag in this block and all below it, else in this block alone: a
    // block's own objects first, then those of its sub-blocks in their order. The pattern is
    // matched with the objects' paths from the top block; "*" matches any characters, "/" too, and
    // "?" one. An empty pattern finds all. ---

    [[nodiscard]] std::vector<HABMMemoryMap*> findMemoryMaps(const std::string& pattern,
                                                             const bool& flag) const;
    [[nodiscard]] std::vector<HABMAddrSpace*> findAddrSpaces(const std::string& pattern,
                                                             const bool& flag) const;
    [[nodiscard]] std::vector<HABMAddrAssign*> findAddrAssigns(const std::string& pattern,
                                                               const bool& flag) const;
    [[nodiscard]] std::vector<HABMInterfaceConnection*>
    findInterfaceConnections(const std::string& pattern, const bool& flag) const;
    [[nodiscard]] std::vector<HABMPortConnection*> findPortConnections(const std::string& pattern,
                                                                       const bool& flag) const;
    [[nodiscard]] std::vector<HABMRegister*> findRegisters(const std::string& pattern,
                                                           const bool& flag) const;

    /// A register by its path from this block, "map/block/register" or "sub/…/map/block/register",
    /// as `HABMPath::get_relative_path` gives it, or by its path from the top block if it is
    /// in or below this block. With the flag also by its bare name: the first of this block's own
    /// registers of that name. Null if none.
    [[nodiscard]] HABMRegister* findRegister(const std::string& path, const bool& flag) const;

private:
    friend class HABMAddrBlock;
    friend class HABMConnectionIndex;
    friend class HABMInterface;
    friend class HABMObjectAccess;
    friend class HABMPort;
    struct Fields;
    struct Children;
    struct Parts;

    HABMBlock(HABMBlock* parent, const std::string& instance, const std::string& module);
    [[nodiscard]] int level() const;
    [[nodiscard]] int levelsBelow() const;
    void movePaths(const std::string& before, const std::string& after);
    /// Updates the index of the registers by bare name.
    void noteRegister(HABMRegister& fresh) noexcept;
    [[nodiscard]] std::pair<std::size_t, std::size_t> rankOf(const HABMAddrBlock& block) const;
    [[nodiscard]] HABMRegister* registerByName(const std::string& name) const;

    /// The index of the design's connections, built at the first call.
    [[nodiscard]] HABMConnectionIndex& connectionIndex();
    /// The same, or null if it isn't built.
    [[nodiscard]] HABMConnectionIndex* existingConnectionIndex() const;
    void discardConnectionIndex() const;

    HABMBlock* m_parent;
    std::string m_instanceName;
    std::unique_ptr<Parts> m_parts;
};
