#include "blockmodel/HABMAddrAssign.h"

#include <cstdint>

#include "blockmodel/HABMAddrBlock.h"
#include "blockmodel/HABMAddrSegment.h"
#include "blockmodel/HABMAddrSpace.h"
#include "blockmodel/HABMBlock.h"
#include "blockmodel/HABMEnumText.h"
#include "blockmodel/HABMMemoryMap.h"
#include "blockmodel/HABMPathText.h"

namespace {

constexpr HABMEnumTexts<HABMAddrAssign::AssignType, 3> kAssignTexts{{
    {"normal", HABMAddrAssign::Normal},
    {"excluded", HABMAddrAssign::Excluded},
    {"internal", HABMAddrAssign::Internal},
}};

} // namespace

HABMAddrAssign::HABMAddrAssign(HABMBlock* parent, const std::string& name)
    : m_parent(parent), m_name(name), m_offset(std::uint64_t{0}), m_range(std::uint64_t{0}) {}

HABMAddrAssign::AssignType HABMAddrAssign::encodeAssignType(std::string text) {
    return encodeEnum(kAssignTexts, text, Normal);
}

std::string HABMAddrAssign::decodeAssignType(AssignType type) {
    return decodeEnum(kAssignTexts, type);
}

HABMAddrBlock* HABMAddrAssign::getSourceAddrBlock() const {
    const habm::SplitPath split = habm::splitOff(m_sourcePath, 2);
    const HABMBlock* const block = habm::blockAt(m_parent->getTopBlock(), split.block);
    const HABMMemoryMap* const map =
        block == nullptr ? nullptr : block->getMemoryMap(std::string(split.names[0]));
    return map == nullptr ? nullptr : map->getAddrBlock(std::string(split.names[1]));
}

HABMAddrSegment* HABMAddrAssign::getTargetAddrSegment() const {
    const habm::SplitPath split = habm::splitOff(m_targetPath, 2);
    const HABMBlock* const block = habm::blockAt(m_parent->getTopBlock(), split.block);
    const HABMAddrSpace* const space =
        block == nullptr ? nullptr : block->getAddrSpace(std::string(split.names[0]));
    return space == nullptr ? nullptr : space->getAddrSegment(std::string(split.names[1]));
}

void HABMAddrAssign::setSourceAddrBlock(const HABMAddrBlock* block) {
    const bool isHere = block != nullptr &&
                        block->getParent()->getParent()->getTopBlock() == m_parent->getTopBlock();
    m_sourcePath = isHere ? block->getPath() : "";
}

void HABMAddrAssign::setTargetAddrSegment(const HABMAddrSegment* segment) {
    const bool isHere = segment != nullptr &&
                        segment->getParent()->getParent()->getTopBlock() == m_parent->getTopBlock();
    m_targetPath = isHere ? segment->getPath() : "";
}

void HABMAddrAssign::moveEnds(const std::string& before, const std::string& after) {
    habm::move(m_sourcePath, before, after);
    habm::move(m_targetPath, before, after);
}

std::vector<HABMAddrAssign*>
HABMAddrAssign::filterByAddrSpace(const std::vector<HABMAddrAssign*>& assigns,
                                  const HABMAddrSpace* space) {
    std::vector<HABMAddrAssign*> kept;
    if (space == nullptr)
        return kept;
    // Comparing texts first spares the look-up for all that belong elsewhere.
    const std::string below = space->getPath() + "/";
    for (HABMAddrAssign* const assign : assigns) {
        if (!assign->m_targetPath.starts_with(below))
            continue;
        const HABMAddrSegment* const segment = assign->getTargetAddrSegment();
        if (segment != nullptr && segment->getParent() == space)
            kept.push_back(assign);
    }
    return kept;
}
