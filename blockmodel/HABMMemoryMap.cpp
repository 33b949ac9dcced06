#include "blockmodel/HABMMemoryMap.h"

#include <cstdint>
#include <memory>

#include "blockmodel/HABMBlock.h"
#include "blockmodel/HABMPathText.h"

HABMMemoryMap::HABMMemoryMap(HABMBlock* parent, const std::string& name)
    : m_parent(parent), m_name(name), m_range(std::uint64_t{0}) {}

std::string HABMMemoryMap::getPath() const {
    return m_parent->getInstancePath() + "/" + m_name;
}

HABMAddrBlock* HABMMemoryMap::createAddrBlock(const std::string& name) {
    if (!habm::isName(name))
        return nullptr;
    std::unique_ptr<HABMAddrBlock> created(new HABMAddrBlock(this, name));
    const std::string_view key = created->getName();
    return m_blocks.add(key, std::move(created));
}

HABMAddrBlock* HABMMemoryMap::getAddrBlock(const std::string& name) const {
    return m_blocks.find(name);
}
