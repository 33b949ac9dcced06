#include "blockmodel/HABMAddrAssign.h"

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

HABMAddrAssign::AssignType HABMAddrAssign::encodeAssignType(std::string text) {
    return encodeEnum(kAssignTexts, text, Normal);
}

std::string HABMAddrAssign::decodeAssignType(AssignType type) {
    return decodeEnum(kAssignTexts, type);
}

HABMAddrBlock* HABMAddrAssign::getSourceAddrBlock() const {
    return habm::addrBlockAt(m_parent->getTopBlock(), m_fields.sourcePath);
}

HABMAddrSegment* HABMAddrAssign::getTargetAddrSegment() const {
    return habm::addrSegmentAt(m_parent->getTopBlock(), m_fields.targetPath);
}

void HABMAddrAssign::setSourceAddrBlock(const HABMAddrBlock* block) {
    const bool isHere = block != nullptr &&
                        block->getParent()->getParent()->getTopBlock() == m_parent->getTopBlock();
    m_fields.sourcePath = isHere ? block->getPath() : "";
}

void HABMAddrAssign::setTargetAddrSegment(const HABMAddrSegment* segment) {
    const bool isHere = segment != nullptr &&
                        segment->getParent()->getParent()->getTopBlock() == m_parent->getTopBlock();
    m_fields.targetPath = isHere ? segment->getPath() : "";
}

void HABMAddrAssign::moveEnds(const std::string& before, const std::string& after) {
    habm::move(m_fields.sourcePath, before, after);
    habm::move(m_fields.targetPath, before, after);
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
        if (!assign->m_fields.targetPath.starts_with(below))
            continue;
        const HABMAddrSegment* const segment = assign->getTargetAddrSegment();
        if (segment != nullptr && segment->getParent() == space)
            kept.push_back(assign);
    }
    return kept;
}
