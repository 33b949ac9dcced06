// The registers of a component one by one: arrays unrolled, addresses absolute, inherited values
// filled in.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "tq_workbench_export.h"
#include "workbench/ipxact/RegisterModel.h"

namespace tq::ipxact {

/// A field of a listed register. Numbers are in bits.
struct ListedField {
    std::string name;
    Number bitOffset;
    Number bitWidth;
    Access access = Access::ReadWrite;
    Number reset;
    const Field* source = nullptr;
};

/// A register, or one element of an array of them.
struct ListedRegister {
    std::string path; ///< map, block, register files and register, with "/" between
    std::string name; ///< the last part of it: "DATA[3]"
    Number address;   ///< in address units of the map, counted from its start
    Number width;     ///< in bits
    Access access = Access::ReadWrite;
    Number reset; ///< the hard reset, put together from the fields' where it has none of its own
    std::string modes; ///< in which it is there; empty for always
    std::vector<ListedField> fields;
    const Register* source = nullptr;
};

/// Bound of the elements after the first ones of arrays, as a few bytes can describe billions.
inline constexpr std::size_t kMostUnrolled = 250'000;

/// Calls `visit` for each register, alternates after theirs, in the order of the file: memory maps
/// with their remaps, then local maps of address spaces. The component must outlive what the
/// entries point to. An array of unknown length counts as one element. Returns false where arrays
/// have more than `kMostUnrolled` further registers and fields, and were cut short.
TQ_WORKBENCH_EXPORT bool forEachRegister(const Component& component,
                                         const std::function<void(const ListedRegister&)>& visit);

/// An address block with its registers.
struct ListedBlock {
    std::string path; ///< map, banks and block, with "/" between
    Number address;   ///< of its start, in address units of the map
    Number size;      ///< in address units
    Number addressUnitBits;
    std::string modes;
    const MemoryItem* source = nullptr;
    std::vector<ListedRegister> registers; ///< as `listRegisters` gives them
};

/// All blocks, arrays unrolled, in the order of the file.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::vector<ListedBlock> listBlocks(const Component& component);

/// What `forEachRegister` visits.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::vector<ListedRegister>
listRegisters(const Component& component);

} // namespace tq::ipxact
