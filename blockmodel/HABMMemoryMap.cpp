#include "blockmodel/HABMMemoryMap.h"

#include <cstdint>

#include "blockmodel/HABMBlock.h"
#include "blockmodel/HABMPathText.h"

HABMMemoryMap::HABMMemoryMap(HABMBlock* parent, const std::string& name)
    : m_parent(parent), m_name(name), m_range(std::uint64_t{0}) {}

std::string HABMMemoryMap::getPath() const {
    return m_parent->getInstancePath() + "/" + m_name;
}

HABMAddrBlock* HABMMemoryMap::createAddrBlock(const std::string& name) {
    return habm::isName(name) ? m_blocks.create(name, this, name) : nullptr;
}

HABMAddrBlock* HABMMemoryMap::getAddrBlock(const std::string& name) const {
    return m_blocks.find(name);
}
