#include "blockmodel/HABMAddrBlock.h"

#include <memory>

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
    if (!habm::isName(name))
        return nullptr;
    std::unique_ptr<HABMRegister> created(new HABMRegister(this, name));
    const std::string_view key = created->getName();
    HABMRegister* const added = m_registers.add(key, std::move(created));
    if (added != nullptr)
        m_parent->getParent()->forgetRegisterNames();
    return added;
}

HABMRegister* HABMAddrBlock::getRegister(const std::string& name) const {
    return m_registers.find(name);
}
