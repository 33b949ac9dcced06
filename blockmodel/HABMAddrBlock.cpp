#include "blockmodel/HABMAddrBlock.h"

#include "blockmodel/HABMBlock.h"
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

HABMAddrBlock::HABMAddrBlock(HABMMemoryMap* parent, const std::string& name)
    : m_parent(parent), m_name(name), m_aperture("") {}

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
    HABMRegister* const fresh = habm::isName(name) ? m_registers.create(name, this, name) : nullptr;
    if (fresh != nullptr)
        m_parent->getParent()->noteRegister(*fresh);
    return fresh;
}

HABMRegister* HABMAddrBlock::getRegister(const std::string& name) const {
    return m_registers.find(name);
}
