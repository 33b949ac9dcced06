// An address block of a memory map: a range of addresses that holds registers or memory.
#pragma once

#include <string>
#include <vector>

#include "blockmodel/HABMAddrAperture.h"
#include "blockmodel/HABMAddrValue.h"
#include "tq_export.h"

class HABMMemoryMap;
class HABMRegister;

/// Made by `HABMMemoryMap::createAddrBlock`, owned by its map. A fresh one holds registers and has
/// an empty aperture at 0.
class TQ_EXPORT HABMAddrBlock {
public:
    /// What the block holds; a fresh one registers.
    enum class MemoryType { Register, Memory, Reserved };

    HABMAddrBlock(const HABMAddrBlock&) = delete;
    HABMAddrBlock& operator=(const HABMAddrBlock&) = delete;

    /// Unique within the owner, never empty.
    [[nodiscard]] const std::string& getName() const { return m_name; }
    /// "/instance/map/block".
    [[nodiscard]] std::string getPath() const;
    [[nodiscard]] HABMMemoryMap* getParent() { return m_parent; }
    [[nodiscard]] const HABMMemoryMap* getParent() const { return m_parent; }

    /// Start in the memory map, and size in bytes.
    [[nodiscard]] const HABMAddrAperture& getAperture() const { return m_fields.aperture; }
    void setAperture(const HABMAddrAperture& aperture) { m_fields.aperture = aperture; }
    [[nodiscard]] HABMAddrValue getOffset() const { return m_fields.aperture.getStart(); }
    [[nodiscard]] HABMAddrValue getRange() const { return m_fields.aperture.getSize(); }

    /// Texts: "register", "memory", "reserved"; any other is read as the first.
    [[nodiscard]] static MemoryType encodeMemoryType(std::string text);
    [[nodiscard]] static std::string decodeMemoryType(MemoryType type);
    [[nodiscard]] MemoryType getMemoryType() const { return m_fields.memoryType; }
    void setMemoryType(const MemoryType& type) { m_fields.memoryType = type; }

    /// A new register. Null if the name is empty, holds a "/" or is taken in this address block.
    HABMRegister* createRegister(const std::string& name);
    /// The register of that name, or null.
    [[nodiscard]] HABMRegister* getRegister(const std::string& name) const;
    /// The registers in creation order.
    [[nodiscard]] std::vector<HABMRegister*> getRegisters() const;

private:
    friend class HABMObjectAccess;
    struct Fields {
        MemoryType memoryType = MemoryType::Register;
        HABMAddrAperture aperture{""};
    };
    struct Children;

    HABMAddrBlock(HABMMemoryMap* parent, const std::string& name)
        : m_parent(parent), m_name(name) {}

    HABMMemoryMap* const m_parent;
    const std::string m_name;
    Fields m_fields;
};
