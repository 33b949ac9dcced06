// The address map of a hard block subsystem as a person wants to read it.
#pragma once

#include <string>
#include <vector>

#include "blockmodel/HABM.h"

namespace host {

/// One address block. The base addresses of the blocks around it move its registers; memory lies
/// where its map puts it.
struct MappedBlock {
    HABMAddrValue base;
    HABMAddrValue end; ///< last address
    HABMAddrValue size;
    std::string name;
    std::string path;
    std::string interfaces; ///< those of its own block that offer it, a comma list
    std::string ports;      ///< those of the subsystem's surface that lead to them, likewise
    bool isOff = false;     ///< the config took it away
};

/// Something that lies in an address space.
struct SpaceEntry {
    HABMAddrValue start;
    HABMAddrValue size;
    std::string name;
    std::string kind;
};

/// An address space with the windows through which its block looks out and the address blocks that
/// were assigned to it, both sorted by address.
struct SpaceMap {
    std::string path;
    HABMAddrValue range;
    std::vector<SpaceEntry> windows;
    std::vector<SpaceEntry> assigned;
};

/// A block or an interface that the definition has and the instance hasn't.
struct SwitchedOff {
    std::string path;
    std::string kind;
    std::string condition; ///< its enablement expression
};

struct AddressMap {
    std::vector<MappedBlock> blocks; ///< sorted by base, size and path
    std::vector<SpaceMap> spaces;
    std::vector<SwitchedOff> off; ///< without what went with a block that is listed
};

/// `full` is the whole definition, `instance` what a config left of it.
[[nodiscard]] AddressMap surveyAddressing(const HABMBlock& full, const HABMBlock& instance);

/// The map as aligned tables.
void printAddressMap(std::ostream& out, const AddressMap& map);

/// Last address of a range; its start, if it is empty.
[[nodiscard]] HABMAddrValue endOf(const HABMAddrValue& start, const HABMAddrValue& size);

} // namespace host
