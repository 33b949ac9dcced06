#include "blockmodel/HABMMemoryMap.h"

#include "blockmodel/HABMBlock.h"
#include "blockmodel/HABMChildren.h"
#include "blockmodel/HABMPathText.h"

std::string HABMMemoryMap::getPath() const {
    return m_parent->getInstancePath() + "/" + m_name;
}

HABMAddrBlock* HABMMemoryMap::createAddrBlock(const std::string& name) {
    return habm::isName(name) ? HABMObjectAccess::childrenOf(*this).blocks.create(name, this, name)
                              : nullptr;
}

HABMAddrBlock* HABMMemoryMap::getAddrBlock(const std::string& name) const {
    return HABMObjectAccess::childrenOf(*this).blocks.find(name);
}

std::vector<HABMAddrBlock*> HABMMemoryMap::getAddrBlocks() const {
    return HABMObjectAccess::childrenOf(*this).blocks.all();
}

std::size_t HABMMemoryMap::positionOf(const HABMAddrBlock& block) const {
    return HABMObjectAccess::childrenOf(*this).blocks.positionOf(block.getName());
}
