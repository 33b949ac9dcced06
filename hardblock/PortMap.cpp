#include "hardblock/PortMap.h"

#include <algorithm>

namespace hardblock {

namespace {

constexpr int kNoRange = -1;

/// Sums and differences of bits wrap, as the metadata may hold any number.
int wrappedSum(int a, int b) {
    return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
}

int wrappedDifference(int a, int b) {
    return static_cast<int>(static_cast<unsigned>(a) - static_cast<unsigned>(b));
}

std::string bitOf(const std::string& name, int bit) {
    return name + '[' + std::to_string(bit) + ']';
}

/// The normal form of one side of a mapping.
std::string rangeText(const std::string& name, int right, int left) {
    if (right == kNoRange && left == kNoRange)
        return name;
    return name + '[' + std::to_string(left) + ':' + std::to_string(right) + ']';
}

} // namespace

MappedPort::MappedPort() = default;
MappedPort::MappedPort(const MappedPort& other) = default;
MappedPort::MappedPort(MappedPort&& other) noexcept
    : m_name(std::exchange(other.m_name, {})), m_rightBit(other.m_rightBit),
      m_leftBit(other.m_leftBit) {}
MappedPort& MappedPort::operator=(const MappedPort& other) = default;
MappedPort& MappedPort::operator=(MappedPort&& other) noexcept {
    m_name = std::exchange(other.m_name, {});
    m_rightBit = other.m_rightBit;
    m_leftBit = other.m_leftBit;
    return *this;
}
MappedPort::~MappedPort() = default;

PortMap::PortMap() = default;

std::string PortMap::getName() const {
    return m_name;
}

void PortMap::setName(const std::string& name) {
    m_name = name;
}

PortMap::MappedPorts& PortMap::getMappedPorts() {
    return m_mappedPorts;
}

PortMap::MappedRawPorts& PortMap::getMappedRawPorts() {
    return m_mappedRawPorts;
}

void PortMap::insert(std::string& portName, int portRight, int portLeft, std::string& mappedName,
                     int mappedRight, int mappedLeft) {
    MappedPort mapped;
    mapped.m_name = mappedName;
    mapped.m_rightBit = mappedRight;
    mapped.m_leftBit = mappedLeft;
    m_mappedPorts.emplace_back(std::pair(portRight, portLeft), std::move(mapped));
    m_mappedRawPorts.emplace_back(rangeText(mappedName, mappedRight, mappedLeft),
                                  rangeText(portName, portRight, portLeft));
}

std::string PortMap::getPortName(int bit, const MappedPort& mapped, int right, int left) const {
    const int mappedRight = mapped.m_rightBit;
    if (right == kNoRange) {
        if (bit == kNoRange)
            return mappedRight == kNoRange ? mapped.m_name : bitOf(mapped.m_name, mappedRight);
        return bitOf(mapped.m_name, mappedRight == kNoRange ? bit : wrappedSum(bit, mappedRight));
    }
    if (bit == kNoRange)
        return {};
    const int offset = wrappedDifference(bit, right);
    if (mappedRight == kNoRange)
        return left == right ? mapped.m_name : bitOf(mapped.m_name, offset);
    return bitOf(mapped.m_name, wrappedSum(mappedRight, offset));
}

std::string PortMap::getMappedPortName(std::string& /*ignored*/, int bit) const {
    const auto entry = std::find_if(m_mappedPorts.begin(), m_mappedPorts.end(), [&](const auto& e) {
        const auto [right, left] = e.first;
        return (right <= bit && left >= bit) || right == kNoRange;
    });
    if (entry == m_mappedPorts.end())
        return {};
    const auto& [range, mapped] = *entry;
    return getPortName(bit, mapped, range.first, range.second);
}

} // namespace hardblock
