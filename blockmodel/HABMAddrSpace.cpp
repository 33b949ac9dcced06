#include "blockmodel/HABMAddrSpace.h"

#include <cstdint>
#include <memory>

#include "blockmodel/HABMBlock.h"
#include "blockmodel/HABMPathText.h"

HABMAddrSpace::HABMAddrSpace(HABMBlock* parent, const std::string& name)
    : m_parent(parent), m_name(name), m_range(std::uint64_t{0}) {}

std::string HABMAddrSpace::getPath() const {
    return m_parent->getInstancePath() + "/" + m_name;
}

HABMAddrSegment* HABMAddrSpace::createAddrSegment(const std::string& name) {
    if (!habm::isName(name))
        return nullptr;
    std::unique_ptr<HABMAddrSegment> created(new HABMAddrSegment(this, name));
    const std::string_view key = created->getName();
    return m_segments.add(key, std::move(created));
}

HABMAddrSegment* HABMAddrSpace::getAddrSegment(const std::string& name) const {
    return m_segments.find(name);
}
