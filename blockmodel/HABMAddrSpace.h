// An address space of a block: what an initiator interface sees, as segments.
#pragma once

#include <string>
#include <vector>

#include "blockmodel/HABMAddrSegment.h"
#include "blockmodel/HABMAddrValue.h"
#include "blockmodel/HABMNamedStore.h"
#include "tq_export.h"

class HABMBlock;

/// Made by `HABMBlock::createAddrSpace`, owned by its block. A fresh space has the range 0.
class TQ_EXPORT HABMAddrSpace {
public:
    HABMAddrSpace(const HABMAddrSpace&) = delete;
    HABMAddrSpace& operator=(const HABMAddrSpace&) = delete;

    [[nodiscard]] const std::string& getName() const { return m_name; }
    /// "/instance/space".
    [[nodiscard]] std::string getPath() const;
    [[nodiscard]] HABMBlock* getParent() { return m_parent; }
    [[nodiscard]] const HABMBlock* getParent() const { return m_parent; }

    /// Extent in bytes.
    [[nodiscard]] const HABMAddrValue& getRange() const { return m_range; }
    void setRange(const HABMAddrValue& range) { m_range = range; }

    /// A new segment. Null if the name is empty, holds a "/" or is taken in this space.
    HABMAddrSegment* createAddrSegment(const std::string& name);
    /// The segment of that name, or null.
    [[nodiscard]] HABMAddrSegment* getAddrSegment(const std::string& name) const;
    /// The segments in creation order.
    [[nodiscard]] std::vector<HABMAddrSegment*> getAddrSegments() const { return m_segments.all(); }

private:
    friend class HABMObjectMaker;
    HABMAddrSpace(HABMBlock* parent, const std::string& name);

    HABMBlock* const m_parent;
    const std::string m_name;
    HABMAddrValue m_range;
    HABMNamedStore<HABMAddrSegment> m_segments;
};
