#include "blockmodel/HABMAddrSegment.h"

#include "blockmodel/HABMAddrSpace.h"
#include "blockmodel/HABMEnumText.h"

namespace {

constexpr HABMEnumTexts<HABMAddrSegment::MemoryType, 3> kMemoryTexts{{
    {"both", HABMAddrSegment::MemoryType::Both},
    {"data", HABMAddrSegment::MemoryType::Data},
    {"instruction", HABMAddrSegment::MemoryType::Instruction},
}};

} // namespace

std::string HABMAddrSegment::getPath() const {
    return m_parent->getPath() + "/" + m_name;
}

HABMAddrSegment::MemoryType HABMAddrSegment::encodeMemoryType(std::string text) {
    return encodeEnum(kMemoryTexts, text, MemoryType::Both);
}

std::string HABMAddrSegment::decodeMemoryType(MemoryType type) {
    return decodeEnum(kMemoryTexts, type);
}
