#include "blockmodel/HABMAddrSpace.h"

#include "blockmodel/HABMBlock.h"
#include "blockmodel/HABMChildren.h"
#include "blockmodel/HABMPathText.h"

std::string HABMAddrSpace::getPath() const {
    return m_parent->getInstancePath() + "/" + m_name;
}

HABMAddrSegment* HABMAddrSpace::createAddrSegment(const std::string& name) {
    return habm::isName(name)
               ? HABMObjectAccess::childrenOf(*this).segments.create(name, this, name)
               : nullptr;
}

HABMAddrSegment* HABMAddrSpace::getAddrSegment(const std::string& name) const {
    return HABMObjectAccess::childrenOf(*this).segments.find(name);
}

std::vector<HABMAddrSegment*> HABMAddrSpace::getAddrSegments() const {
    return HABMObjectAccess::childrenOf(*this).segments.all();
}
