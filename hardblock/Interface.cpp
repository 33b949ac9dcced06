#include "hardblock/Interface.h"

#include <cstdint>
#include <utility>

#include "hardblock/JsonGetters.h"
#include "hardblock/MetadataSource.h"
#include "hardblock/SplitPortName.h"

namespace hardblock {

using base::JsonNode;

namespace {

struct PortText {
    explicit PortText(const std::string& text) { splitPortName(text, name, right, left); }

    std::string name;
    int right = -1;
    int left = -1;
};

void addMapping(Interface::PortMaps& portMaps, const std::string& port, const std::string& mapped) {
    PortText portSide(port);
    PortText mappedSide(mapped);
    auto stored = portMaps.find(portSide.name);
    if (stored == portMaps.end())
        stored = portMaps.emplace(portSide.name, std::make_unique<PortMap>()).first;
    PortMap& portMap = *stored->second;
    portMap.setName(portSide.name);
    portMap.insert(portSide.name, portSide.right, portSide.left, mappedSide.name, mappedSide.right,
                   mappedSide.left);
}

/// Calls `visit(name, value)` for each member of an object that a source has.
template <class Visitor>
void forEachMember(const MetadataSource& source, std::uint32_t object, Visitor&& visit) {
    if (object != MetadataSource::kNone)
        source.tape->node(object).forEachMember([&](const JsonNode& name, const JsonNode& value) {
            visit(std::string(name.text()), value);
        });
}

void addParameters(Interface::Parameters& parameters, const MetadataSource& source) {
    forEachMember(source, source.parameters, [&](const std::string& name, const JsonNode& value) {
        if (const auto number = low32Bits(value))
            parameters.emplace(name, std::to_string(*number));
    });
}

/// The member's name is the mapped side, its value the port side.
void addMappings(Interface::PortMaps& portMaps, const MetadataSource& source) {
    forEachMember(source, source.portMaps, [&](const std::string& mapped, const JsonNode& port) {
        if (port.isString())
            addMapping(portMaps, std::string(port.text()), mapped);
    });
}

} // namespace

Interface::Interface(const std::string& name) : m_name(name) {}
Interface::~Interface() {
    delete m_contents.load();
}

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
    contents().parameters.emplace(name, value);
}

std::string Interface::getParameterByName(const std::string& name) const {
    const Parameters& parameters = contents().parameters;
    const auto parameter = parameters.find(name);
    return parameter == parameters.end() ? std::string() : parameter->second;
}

Interface::Parameters::iterator Interface::getParameterStartIterator() {
    return contents().parameters.begin();
}

Interface::Parameters::iterator Interface::getParameterEndIterator() {
    return contents().parameters.end();
}

void Interface::addPortMap(const std::string& port, const std::string& mapped) {
    addMapping(contents().portMaps, port, mapped);
}

std::string Interface::getPortMapByName(const std::string& port) const {
    PortText asked(port);
    const PortMaps& portMaps = contents().portMaps;
    const auto portMap = portMaps.find(asked.name);
    if (portMap == portMaps.end())
        return {};
    return portMap->second->getMappedPortName(asked.name, asked.right);
}

Interface::PortMaps::iterator Interface::getPortMapStartIterator() {
    return contents().portMaps.begin();
}

Interface::PortMaps::iterator Interface::getPortMapEndIterator() {
    return contents().portMaps.end();
}

void Interface::addSource(MetadataSource source) {
    if (Contents* made = m_contents.load()) {
        addParameters(made->parameters, source);
        addMappings(made->portMaps, source);
    } else {
        m_sources.push_back(std::move(source));
    }
}

/// Threads that come at once each make the contents; the first to finish keeps them for all. The
/// sources stay, as another thread may be reading them.
Interface::Contents& Interface::contents() const {
    Contents* made = m_contents.load(std::memory_order_acquire);
    if (made != nullptr)
        return *made;
    auto own = std::make_unique<Contents>();
    for (const MetadataSource& source : m_sources) {
        addParameters(own->parameters, source);
        addMappings(own->portMaps, source);
    }
    if (m_contents.compare_exchange_strong(made, own.get(), std::memory_order_acq_rel))
        made = own.release();
    return *made;
}

} // namespace hardblock
