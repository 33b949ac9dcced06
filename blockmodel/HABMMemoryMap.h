// A memory map of a block: what a target interface offers, as address blocks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "blockmodel/HABMAddrValue.h"
#include "tq_export.h"

class HABMAddrBlock;
class HABMBlock;

/// Made by `HABMBlock::createMemoryMap`, owned by its block. A fresh map has the range 0.
class TQ_EXPORT HABMMemoryMap {
public:
    HABMMemoryMap(const HABMMemoryMap&) = delete;
    HABMMemoryMap& operator=(const HABMMemoryMap&) = delete;

    /// Unique within the owner, never empty.
    [[nodiscard]] const std::string& getName() const { return m_name; }
    /// "/instance/map".
    [[nodiscard]] std::string getPath() const;
    [[nodiscard]] HABMBlock* getParent() { return m_parent; }
    [[nodiscard]] const HABMBlock* getParent() const { return m_parent; }

    /// Extent in bytes.
    [[nodiscard]] const HABMAddrValue& getRange() const { return m_fields.range; }
    void setRange(const HABMAddrValue& range) { m_fields.range = range; }

    /// A new address block. Null if the name is empty, holds a "/" or is taken in this map.
    HABMAddrBlock* createAddrBlock(const std::string& name);
    /// The address block of that name, or null.
    [[nodiscard]] HABMAddrBlock* getAddrBlock(const std::string& name) const;
    /// The address blocks in creation order.
    [[nodiscard]] std::vector<HABMAddrBlock*> getAddrBlocks() const;

private:
    friend class HABMBlock;
    friend class HABMObjectAccess;
    struct Fields {
        HABMAddrValue range{std::uint64_t{0}};
    };
    struct Children;

    HABMMemoryMap(HABMBlock* parent, const std::string& name) : m_parent(parent), m_name(name) {}
    [[nodiscard]] std::size_t positionOf(const HABMAddrBlock& block) const;

    HABMBlock* const m_parent;
    const std::string m_name;
    Fields m_fields;
};
