#include "blockmodel/HABMPort.h"

#include "blockmodel/HABMBlock.h"
#include "blockmodel/HABMConnectionIndex.h"
#include "blockmodel/HABMEnumText.h"

namespace {

constexpr HABMEnumTexts<HABMPort::PortType, 2> kTypeTexts{{
    {"wire", HABMPort::PortType::Wire},
    {"vector", HABMPort::PortType::Vector},
}};

constexpr HABMEnumTexts<HABMPort::PortDirection, 3> kDirectionTexts{{
    {"in", HABMPort::PortDirection::In},
    {"out", HABMPort::PortDirection::Out},
    {"inout", HABMPort::PortDirection::InOut},
}};

} // namespace

HABMPort::PortType HABMPort::encodePortType(std::string text) {
    return encodeEnum(kTypeTexts, text, PortType::Wire);
}

std::string HABMPort::decodePortType(PortType type) {
    return decodeEnum(kTypeTexts, type);
}

HABMPort::PortDirection HABMPort::encodePortDirection(std::string text) {
    return encodeEnum(kDirectionTexts, text, PortDirection::In);
}

std::string HABMPort::decodePortDirection(PortDirection direction) {
    return decodeEnum(kDirectionTexts, direction);
}

bool HABMPort::hasConnections() const {
    return m_parent->connectionIndex().usesPort(m_parent->getInstancePath() + "/" + m_name);
}
