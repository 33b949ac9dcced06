// The memory maps, address spaces and address assigns of a block.

#include "blockmodel/HABMBlock.h"

#include "blockmodel/HABMBlockParts.h"
#include "blockmodel/HABMPathText.h"

HABMMemoryMap* HABMBlock::createMemoryMap(const std::string& name) {
    return habm::isName(name) ? m_parts->memoryMaps.create(name, this, name) : nullptr;
}

HABMMemoryMap* HABMBlock::getMemoryMap(const std::string& name) const {
    return m_parts->memoryMaps.find(name);
}

std::vector<HABMMemoryMap*> HABMBlock::getMemoryMaps() const {
    return m_parts->memoryMaps.all();
}

HABMAddrSpace* HABMBlock::createAddrSpace(const std::string& name) {
    return habm::isName(name) ? m_parts->addrSpaces.create(name, this, name) : nullptr;
}

HABMAddrSpace* HABMBlock::getAddrSpace(const std::string& name) const {
    return m_parts->addrSpaces.find(name);
}

std::vector<HABMAddrSpace*> HABMBlock::getAddrSpaces() const {
    return m_parts->addrSpaces.all();
}

HABMAddrAssign* HABMBlock::createAddrAssign(const std::string& name) {
    return habm::isName(name) ? m_parts->addrAssigns.create(name, this, name) : nullptr;
}

HABMAddrAssign* HABMBlock::getAddrAssign(const std::string& name) const {
    return m_parts->addrAssigns.find(name);
}

std::vector<HABMAddrAssign*> HABMBlock::getAddrAssigns() const {
    return m_parts->addrAssigns.all();
}
