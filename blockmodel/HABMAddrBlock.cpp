#include "blockmodel/HABMAddrBlock.h"

#include "blockmodel/HABMBlock.h"
#include "blockmodel/HABMChildren.h"
#include "blockmodel/HABMEnumText.h"
#include "blockmodel/HABMMemoryMap.h"
#include "blockmodel/HABMPathText.h"

namespace {

constexpr HABMEnumTexts<HABMAddrBlock::MemoryType, 3> kMemoryTexts{{
    {"register", HABMAddrBlock::MemoryType::Register},
    {"memory", HABMAddrBlock::MemoryType::Memory},
    {"reserved", HABMAddrBlock::MemoryType::Reserved},
}};

} // namespace

std::string HABMAddrBlock::getPath() const {
    return m_parent->getPath() + "/" + m_name;
}

HABMAddrBlock::MemoryType HABMAddrBlock::encodeMemoryType(std::string text) {
    return encodeEnum(kMemoryTexts, text, MemoryType::Register);
}

std::string HABMAddrBlock::decodeMemoryType(MemoryType type) {
    return decodeEnum(kMemoryTexts, type);
}

HABMRegister* HABMAddrBlock::createRegister(const std::string& name) {
    HABMRegister* const fresh =
        habm::isName(name) ? HABMObjectAccess::childrenOf(*this).registers.create(name, this, name)
                           : nullptr;
    if (fresh != nullptr)
        m_parent->getParent()->noteRegister(*fresh);
    return fresh;
}

HABMRegister* HABMAddrBlock::getRegister(const std::string& name) const {
    return HABMObjectAccess::childrenOf(*this).registers.find(name);
}

std::vector<HABMRegister*> HABMAddrBlock::getRegisters() const {
    return HABMObjectAccess::childrenOf(*this).registers.all();
}
