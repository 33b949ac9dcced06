#include "hardblock/Interface.h"

#include "hardblock/splitPortName.h"

namespace hardblock {

namespace {

struct PortText {
    explicit PortText(const std::string& text) { splitPortName(text, name, right, left); }

    std::string name;
    int right = -1;
    int left = -1;
};

} // namespace

Interface::Interface(const std::string& name) : m_name(name) {}
Interface::~Interface() = default;

std::string Interface::getName() const {
    return m_name;
}

std::string Interface::getApModuleName() const {
    return m_apModuleName;
}

void Interface::setName(const std::string& name) {
    m_name = name;
}

void Interface::setApModuleName(const std::string& name) {
    m_apModuleName = name;
}

void Interface::addParameter(const std::string& name, const std::string& value) {
    m_parameters.emplace(name, value);
}

std::string Interface::getParameterByName(const std::string& name) const {
    const auto parameter = m_parameters.find(name);
    return parameter == m_parameters.end() ? std::string() : parameter->second;
}

Interface::Parameters::iterator Interface::getParameterStartIterator() {
    return m_parameters.begin();
}

Interface::Parameters::iterator Interface::getParameterEndIterator() {
    return m_parameters.end();
}

void Interface::addPortMap(const std::string& port, const std::string& mapped) {
    PortText portSide(port);
    PortText mappedSide(mapped);
    auto stored = m_portMaps.find(portSide.name);
    if (stored == m_portMaps.end())
        stored = m_portMaps.emplace(portSide.name, std::make_unique<PortMap>()).first;
    PortMap& portMap = *stored->second;
    portMap.setName(portSide.name);
    portMap.insert(portSide.name, portSide.right, portSide.left, mappedSide.name, mappedSide.right,
                   mappedSide.left);
}

std::string Interface::getPortMapByName(const std::string& port) const {
    PortText asked(port);
    const auto portMap = m_portMaps.find(asked.name);
    if (portMap == m_portMaps.end())
        return {};
    return portMap->second->getMappedPortName(asked.name, asked.right);
}

Interface::PortMaps::iterator Interface::getPortMapStartIterator() {
    return m_portMaps.begin();
}

Interface::PortMaps::iterator Interface::getPortMapEndIterator() {
    return m_portMaps.end();
}

} // namespace hardblock
