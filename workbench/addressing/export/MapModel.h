// An address map as plain data: what every export writes, wherever the map comes from.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tq {

/// How software may use a register or a field.
enum class MapAccess : std::uint8_t { ReadWrite, ReadOnly, WriteOnly };
/// What a range of addresses holds.
enum class MapUsage : std::uint8_t { Register, Memory, Reserved };

/// Bits of a register.
struct MapField {
    std::string name;
    std::string description;
    unsigned lsb = 0;   ///< lowest bit
    unsigned width = 1; ///< in bits, at least 1; beyond the register it is cut
    MapAccess access = MapAccess::ReadWrite;
};

/// A register of a block.
struct MapRegister {
    std::string name;
    std::string description;
    std::uint64_t offset = 0; ///< in the block, in bytes
    unsigned width = 32;      ///< in bits
    MapAccess access = MapAccess::ReadWrite;
    std::optional<std::uint64_t>
        reset; ///< absent if there is none, or if it needs more than 64 bits
    std::optional<std::uint64_t> value; ///< what the config gave it
    std::vector<MapField> fields;
};

/// A range of addresses that holds registers or memory.
struct MapBlock {
    std::string path; ///< parts with "/" between them: "uart0/map/regs"; makes the names
    std::string description;
    std::uint64_t base = 0;
    std::uint64_t size = 0; ///< in bytes; 0 if unknown
    MapUsage usage = MapUsage::Register;
    bool isOn = true; ///< false if the configuration switched it off
    std::vector<MapRegister> registers;
};

/// The whole map. The blocks may come in any order and overlap.
struct MapModel {
    std::string name; ///< of the system
    std::string description;
    std::vector<MapBlock> blocks;
};

} // namespace tq
