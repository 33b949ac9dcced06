#include "blockmodel/HABMAddrSpace.h"

#include <cstdint>

#include "blockmodel/HABMBlock.h"
#include "blockmodel/HABMPathText.h"

HABMAddrSpace::HABMAddrSpace(HABMBlock* parent, const std::string& name)
    : m_parent(parent), m_name(name), m_range(std::uint64_t{0}) {}

std::string HABMAddrSpace::getPath() const {
    return m_parent->getInstancePath() + "/" + m_name;
}

HABMAddrSegment* HABMAddrSpace::createAddrSegment(const std::string& name) {
    return habm::isName(name) ? m_segments.create(name, this, name) : nullptr;
}

HABMAddrSegment* HABMAddrSpace::getAddrSegment(const std::string& name) const {
    return m_segments.find(name);
}
