// A segment of an address space: a range of addresses that an initiator sees.
#pragma once

#include <string>

#include "blockmodel/HABMAddrAperture.h"
#include "blockmodel/HABMAddrValue.h"
#include "tq_export.h"

class HABMAddrSpace;

/// Made by `HABMAddrSpace::createAddrSegment`, owned by its address space. A fresh one serves both
/// data and instructions and has an empty aperture at 0.
class TQ_EXPORT HABMAddrSegment {
public:
    /// What the initiator fetches through the segment; through a fresh one both.
    enum class MemoryType { Data, Instruction, Both };

    HABMAddrSegment(const HABMAddrSegment&) = delete;
    HABMAddrSegment& operator=(const HABMAddrSegment&) = delete;

    /// Unique within the owner, never empty.
    [[nodiscard]] const std::string& getName() const { return m_name; }
    /// "/instance/space/segment".
    [[nodiscard]] std::string getPath() const;
    [[nodiscard]] HABMAddrSpace* getParent() { return m_parent; }
    [[nodiscard]] const HABMAddrSpace* getParent() const { return m_parent; }

    /// Start in the address space, and size in bytes.
    [[nodiscard]] const HABMAddrAperture& getAperture() const { return m_fields.aperture; }
    void setAperture(const HABMAddrAperture& aperture) { m_fields.aperture = aperture; }
    [[nodiscard]] HABMAddrValue getOffset() const { return m_fields.aperture.getStart(); }
    [[nodiscard]] HABMAddrValue getRange() const { return m_fields.aperture.getSize(); }

    /// Texts: "data", "instruction", "both"; any other is read as the last.
    [[nodiscard]] static MemoryType encodeMemoryType(std::string text);
    [[nodiscard]] static std::string decodeMemoryType(MemoryType type);
    [[nodiscard]] MemoryType getMemoryType() const { return m_fields.memoryType; }
    void setMemoryType(const MemoryType& type) { m_fields.memoryType = type; }

private:
    friend class HABMObjectAccess;
    struct Fields {
        MemoryType memoryType = MemoryType::Both;
        HABMAddrAperture aperture{""};
    };

    HABMAddrSegment(HABMAddrSpace* parent, const std::string& name)
        : m_parent(parent), m_name(name) {}

    HABMAddrSpace* const m_parent;
    const std::string m_name;
    Fields m_fields;
};
