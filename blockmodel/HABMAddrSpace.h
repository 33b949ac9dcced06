// An address space of a block: what an initiator interface sees, as segments.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "blockmodel/HABMAddrValue.h"
#include "tq_export.h"

class HABMAddrSegment;
class HABMBlock;

/// Made by `HABMBlock::createAddrSpace`, owned by its block. A fresh space has the range 0.
class TQ_EXPORT HABMAddrSpace {
public:
    HABMAddrSpace(const HABMAddrSpace&) = delete;
    HABMAddrSpace& operator=(const HABMAddrSpace&) = delete;

    /// Unique within the owner, never empty.
    [[nodiscard]] const std::string& getName() const { return m_name; }
    /// "/instance/space".
    [[nodiscard]] std::string getPath() const;
    [[nodiscard]] HABMBlock* getParent() { return m_parent; }
    [[nodiscard]] const HABMBlock* getParent() const { return m_parent; }

    /// Extent in bytes.
    [[nodiscard]] const HABMAddrValue& getRange() const { return m_fields.range; }
    void setRange(const HABMAddrValue& range) { m_fields.range = range; }

    /// A new segment. Null if the name is empty, holds a "/" or is taken in this space.
    HABMAddrSegment* createAddrSegment(const std::string& name);
    /// The segment of that name, or null.
    [[nodiscard]] HABMAddrSegment* getAddrSegment(const std::string& name) const;
    /// The segments in creation order.
    [[nodiscard]] std::vector<HABMAddrSegment*> getAddrSegments() const;

private:
    friend class HABMObjectAccess;
    struct Fields {
        HABMAddrValue range{std::uint64_t{0}};
    };
    struct Children;

    HABMAddrSpace(HABMBlock* parent, const std::string& name) : m_parent(parent), m_name(name) {}

    HABMBlock* const m_parent;
    const std::string m_name;
    Fields m_fields;
};
