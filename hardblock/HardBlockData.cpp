#include "hardblock/HardBlockData.h"

#include <utility>

namespace hardblock {

std::atomic<std::uint64_t> HardBlockData::s_renames{0};

HardBlockData::HardBlockData(const std::string& name) : m_name(name) {}
HardBlockData::~HardBlockData() = default;

std::string HardBlockData::getName() const {
    return m_name;
}

void HardBlockData::setName(const std::string& name) {
    ++s_renames;
    m_name = name;
}

Interface* HardBlockData::createInterface(const std::string& name) {
    auto made = std::make_unique<Interface>(name);
    return m_interfaces.try_emplace(name, std::move(made)).first->second.get();
}

Interface* HardBlockData::getInterfaceByName(const std::string& name) {
    const auto interface = m_interfaces.find(name);
    return interface == m_interfaces.end() ? nullptr : interface->second.get();
}

HardBlockData::Interfaces::iterator HardBlockData::getInterfaceStartIterator() {
    return m_interfaces.begin();
}

HardBlockData::Interfaces::iterator HardBlockData::getInterfaceEndIterator() {
    return m_interfaces.end();
}

Pin* HardBlockData::createPin(const std::string& name) {
    return m_pins.emplace_back(std::make_unique<Pin>(name)).get();
}

HardBlockData::Pins::iterator HardBlockData::getPinsStartIterator() {
    return m_pins.begin();
}

HardBlockData::Pins::iterator HardBlockData::getPinsEndIterator() {
    return m_pins.end();
}

} // namespace hardblock
