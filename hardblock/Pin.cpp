#include "hardblock/Pin.h"

namespace hardblock {

Pin::Pin(const std::string& name) : m_name(name) {}

std::string Pin::getName() const {
    return m_name;
}

std::string Pin::getDefaultValue() const {
    return m_defaultValue;
}

Direction Pin::getDirection() const {
    return m_direction;
}

std::string Pin::getDirectionAsStr() const {
    switch (m_direction) {
    case Direction::In:
        return "IN";
    case Direction::Out:
        return "OUT";
    case Direction::InOut:
        break;
    }
    return "INOUT";
}

Type Pin::getType() const {
    return m_type;
}

int Pin::getLeftSize() const {
    return m_leftSize;
}

int Pin::getRightSize() const {
    return m_rightSize;
}

void Pin::setName(const std::string& name) {
    m_name = name;
}

void Pin::setDefaultValue(const std::string& value) {
    m_defaultValue = value;
}

void Pin::setDirection(Direction direction) {
    m_direction = direction;
}

void Pin::setType(Type type) {
    m_type = type;
}

void Pin::setLeftSize(int size) {
    m_leftSize = size;
}

void Pin::setRightSize(int size) {
    m_rightSize = size;
}

} // namespace hardblock
