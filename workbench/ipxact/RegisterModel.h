// The model that the readers of register descriptions fill: components with memory maps, registers
// and fields, as written, arrays not yet unrolled. All of it is plain data; `std::nullopt` is a
// value that is missing or can't be computed, which the reader has reported then.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "workbench/ipxact/Expression.h"

namespace tq::ipxact {

using Number = std::optional<Int128>;

/// Vendor, library, name and version.
struct Vlnv {
    std::string vendor, library, name, version;

    [[nodiscard]] bool operator==(const Vlnv&) const = default;
    [[nodiscard]] auto operator<=>(const Vlnv&) const = default;
    /// "vendor:library:name:version".
    [[nodiscard]] std::string text() const {
        return vendor + ":" + library + ":" + name + ":" + version;
    }
};

/// Where an object was read: a line and a column of the file, 0 where unknown.
struct Mark {
    std::uint32_t line = 0;
    std::uint32_t column = 0;
};

/// How software may use a register or a field.
enum class Access : std::uint8_t {
    Unset, ///< that of what lies around it
    ReadWrite,
    ReadOnly,
    WriteOnly,
    WriteOnce,
    ReadWriteOnce,
    NoAccess,
};

/// The standard's word; empty for `Unset`.
[[nodiscard]] TQ_WORKBENCH_EXPORT const char* accessName(Access access);

/// One dimension of an array. The indices count from 0 unless there are labels.
struct Dimension {
    Number count;
    std::vector<std::string> labels{};
};

/// How often an object is repeated; not at all without dimensions. The last dimension counts
/// fastest.
struct Array {
    std::vector<Dimension> dimensions;
    Number stride; ///< in address units, of fields in bits; absent for elements side by side
};

/// What one kind of reset sets a register or a field to.
struct Reset {
    std::string type; ///< empty for the default, a hard reset
    Number value;
    Number mask; ///< bits that the reset sets; absent for all
};

/// A named value of a field.
struct EnumeratedValue {
    std::string name;
    std::string description;
    Number value;
    std::string usage; ///< "read", "write" or "read-write"; empty for the last
};

/// A field of a register; offset and width are in bits.
struct Field {
    std::string name;
    std::string description;
    Array array;
    Number bitOffset;
    Number bitWidth;
    Access access = Access::Unset;
    std::string modifiedWriteValue; ///< the standard's word, as "oneToClear"; empty for none
    std::string readAction;         ///< likewise
    bool isVolatile = false;
    bool isReserved = false;
    std::vector<Reset> resets;
    std::vector<EnumeratedValue> values;
    Mark mark;
};

/// A register, or a file of registers. `resets` and `fields` are of a register alone, `range` and
/// `items` of a file.
struct Register {
    bool isFile = false;
    std::string name;
    std::string displayName;
    std::string description;
    Array array;
    Number offset; ///< in address units, from the start of what holds it
    Number size;   ///< of a register, in bits
    Number range;  ///< of a file, in address units
    Access access = Access::Unset;
    bool isVolatile = false;
    std::vector<Reset> resets;
    std::vector<Field> fields;
    std::vector<Register> alternates; ///< the same place under another name, by mode
    std::string modes;                ///< of an alternate: in which it holds
    std::vector<Register> items;
    Mark mark;
};

/// A block, a bank of blocks, or the view of another address space.
struct MemoryItem {
    enum class Kind : std::uint8_t { Block, Bank, Subspace };

    Kind kind = Kind::Block;
    std::string name;
    std::string description;
    Array array;
    Number base;       ///< in address units of the map; absent inside a bank
    Number range;      ///< of a block, in address units
    Number width;      ///< of a block, in bits
    std::string usage; ///< "memory", "register" or "reserved"; empty where it isn't given
    Access access = Access::Unset;
    bool isVolatile = false;
    bool isParallel = false; ///< of a bank: items lie side by side, not one after another
    std::vector<MemoryItem> items;
    std::vector<Register> registers;
    std::string initiator; ///< of a subspace: the interface whose address space is seen
    std::string segment;   ///< likewise; empty for the whole space
    Mark mark;
};

/// What a map shows instead in some modes or states.
struct MemoryRemap {
    std::string name;
    std::string modes;
    std::vector<MemoryItem> items;
    Mark mark;
};

/// A memory map of a component.
struct MemoryMap {
    std::string name;
    std::string description;
    Number addressUnitBits = 8;
    std::vector<MemoryItem> items;
    std::vector<MemoryRemap> remaps;
    Mark mark;
};

/// A named part of an address space.
struct Segment {
    std::string name;
    Number offset; ///< in address units of the space
    Number range;
    Mark mark;
};

/// What an initiator of a component can address.
struct AddressSpace {
    std::string name;
    Number range; ///< in address units
    Number width; ///< in bits
    Number addressUnitBits = 8;
    std::vector<Segment> segments;
    std::optional<MemoryMap> localMap;
    Mark mark;
};

/// The role of an interface on its bus.
enum class InterfaceMode : std::uint8_t {
    Unknown,
    Initiator,
    Target,
    MirroredInitiator,
    MirroredTarget,
    System,
    MirroredSystem,
    Monitor,
};

/// "initiator", "mirrored target", …
[[nodiscard]] TQ_WORKBENCH_EXPORT const char* modeName(InterfaceMode mode);

/// From a target interface through the component to one of its initiators. An opaque bridge shows
/// only what the target's memory map shows.
struct Bridge {
    std::string initiator; ///< the interface on the bridge's other side
    bool isOpaque = false;
    Mark mark;
};

/// Where a mirrored target shows what is connected to it.
struct RemapAddress {
    Number address; ///< in units of the interface's `bitsInLau`
    Number range;
    std::string state;
};

/// One logical port that an interface maps to a physical one.
struct PortMap {
    std::string logical;
    std::string physical;
    Number logicalLeft, logicalRight;
    Number physicalLeft, physicalRight;
};

/// An interface of a component to a bus.
struct BusInterface {
    std::string name;
    InterfaceMode mode = InterfaceMode::Unknown;
    Vlnv busType;
    Vlnv abstraction;
    std::string memoryMap;    ///< of a target; empty for none
    std::string addressSpace; ///< of an initiator; empty for none
    Number base = 0; ///< of an initiator: where the bus begins in the space; may be negative
    std::vector<Bridge> bridges;
    std::vector<RemapAddress> remaps; ///< of a mirrored target
    Number bitsInLau = 8;
    bool steersBits = false;
    std::vector<PortMap> ports;
    Mark mark;
};

/// Mirrored interfaces of a component that it connects to one another.
struct Channel {
    std::string name;
    std::vector<std::string> interfaces;
    Mark mark;
};

/// A physical port of a component.
struct Port {
    std::string name;
    std::string direction; ///< "in", "out", "inout", "phantom"; empty for a transactional one
    Number left, right;    ///< absent for a single wire
    Mark mark;
};

/// A parameter with its computed value; absent where it can't be computed.
struct ParameterValue {
    std::string name;
    std::string id;
    std::optional<std::string> value;
};

/// How a component is built inside: a design or a design configuration.
struct Hierarchy {
    std::string view;
    Vlnv reference;
    bool isConfiguration = false;
    Mark mark;
};

/// A component, or a device read as one.
struct Component {
    std::string file;
    Vlnv vlnv;
    std::string description;
    std::string format; ///< "IP-XACT 2014", "CMSIS-SVD"
    std::vector<MemoryMap> memoryMaps;
    std::vector<AddressSpace> addressSpaces;
    std::vector<BusInterface> interfaces;
    std::vector<Channel> channels;
    std::vector<Port> ports;
    std::vector<ParameterValue> parameters;
    std::vector<Hierarchy> hierarchies;
    std::size_t leftOut = 0; ///< elements that weren't read: vendor extensions and unknown ones
};

} // namespace tq::ipxact
