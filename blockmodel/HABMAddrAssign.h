// An address assign: says that an address block appears as a segment of an address space.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "blockmodel/HABMAddrValue.h"
#include "tq_export.h"

class HABMAddrBlock;
class HABMAddrSegment;
class HABMAddrSpace;
class HABMBlock;

/// Made by `HABMBlock::createAddrAssign`, owned by its block. It keeps the paths of its two ends
/// and looks them up when asked, so that an end that is removed reads as null.
class TQ_EXPORT HABMAddrAssign {
public:
    /// The numbers are part of the contract: 2 is internal.
    enum AssignType : int { Normal = 0, Excluded = 1, Internal = 2 };

    HABMAddrAssign(const HABMAddrAssign&) = delete;
    HABMAddrAssign& operator=(const HABMAddrAssign&) = delete;

    /// Unique within the owner, never empty.
    [[nodiscard]] const std::string& getName() const { return m_name; }
    /// The block that owns it, never null.
    [[nodiscard]] HABMBlock* getParent() { return m_parent; }
    [[nodiscard]] const HABMBlock* getParent() const { return m_parent; }

    /// Texts: "normal", "excluded", "internal"; any other is read as the first.
    [[nodiscard]] static AssignType encodeAssignType(std::string text);
    [[nodiscard]] static std::string decodeAssignType(AssignType type);
    [[nodiscard]] AssignType getAssignType() const { return m_fields.type; }
    void setAssignType(const AssignType& type) { m_fields.type = type; }

    /// Where the address block starts in the address space, and its size there, in bytes.
    [[nodiscard]] HABMAddrValue getOffset() const { return m_fields.offset; }
    void setOffset(const HABMAddrValue& offset) { m_fields.offset = offset; }
    [[nodiscard]] HABMAddrValue getRange() const { return m_fields.range; }
    void setRange(const HABMAddrValue& range) { m_fields.range = range; }

    /// The two ends; null if never set or gone.
    [[nodiscard]] HABMAddrBlock* getSourceAddrBlock() const;
    [[nodiscard]] HABMAddrSegment* getTargetAddrSegment() const;
    /// Null, or an object of another tree, leaves the end without an object.
    void setSourceAddrBlock(const HABMAddrBlock* block);
    void setTargetAddrSegment(const HABMAddrSegment* segment);

    /// The paths of the ends from the top block, resolved or not.
    [[nodiscard]] const std::string& getSourcePath() const { return m_fields.sourcePath; }
    [[nodiscard]] const std::string& getTargetPath() const { return m_fields.targetPath; }
    void setSourcePath(const std::string& path) { m_fields.sourcePath = path; }
    void setTargetPath(const std::string& path) { m_fields.targetPath = path; }

    /// The assigns whose target is a segment of this address space, in their order.
    [[nodiscard]] static std::vector<HABMAddrAssign*>
    filterByAddrSpace(const std::vector<HABMAddrAssign*>& assigns, const HABMAddrSpace* space);

private:
    friend class HABMBlock;
    friend class HABMObjectAccess;
    struct Fields {
        AssignType type = Normal;
        HABMAddrValue offset{std::uint64_t{0}};
        HABMAddrValue range{std::uint64_t{0}};
        std::string sourcePath;
        std::string targetPath;
    };

    HABMAddrAssign(HABMBlock* parent, const std::string& name) : m_parent(parent), m_name(name) {}
    void moveEnds(const std::string& before, const std::string& after);

    HABMBlock* const m_parent;
    const std::string m_name;
    Fields m_fields;
};
