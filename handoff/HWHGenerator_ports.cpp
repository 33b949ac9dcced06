// Ports, and the signal that each one carries. There is no netlist: the first port of a net that is
// visited names the signal, and the name spreads through the table as far ends come up.

#include <algorithm>
#include <string_view>
#include <utility>

#include "HSTStringUtils.h"
#include "handoff/HWHGenerator.h"
#include "handoff/HWHVocabulary.h"

namespace {

namespace element = hwh::element;
namespace key = hwh::key;
namespace signal_kind = hwh::signal;

std::string joined(const std::string& instance, const std::string& port) {
    return instance + "_" + port;
}

HXMLWElement& connectionsOf(HXMLWElement& port) {
    if (!port.hasChild(element::kConnections))
        return *port.addChild(element::kConnections);
    std::vector<std::shared_ptr<HXMLWElement>> children;
    port.getChildren(children);
    const auto last = std::find_if(children.rbegin(), children.rend(), [](const auto& child) {
        const char* name = child->getName();
        return std::string_view(name == nullptr ? "" : name) == element::kConnections;
    });
    return **last;
}

} // namespace

void HWHGenerator::writePorts(HXMLWElement& module, const std::string& moduleName) {
    const auto entry = m_portTable.find(moduleName);
    if (entry == m_portTable.end())
        return;
    HXMLWElement* ports = module.addChild(element::kPorts);
    std::map<std::string, HXMLWElement*> elements;
    for (const auto& [name, record] : entry->second)
        elements.emplace_hint(elements.end(), record.NAME, writePort(ports, record));
    m_portElementsByModule[moduleName] = std::move(elements);
}

HXMLWElement* HWHGenerator::writePort(HXMLWElement* ports, const HWHPortRecord& record) {
    const std::string& kind = record.SIG_IS;
    // The metadata has no bounds, frequencies, sensitivities or polarities to hand on.
    if (kind == signal_kind::kClock || kind == signal_kind::kIntr)
        return addSignalPort(ports, record.NAME, record.DIR, kind, "", "", "", "", "");
    if (kind == signal_kind::kInterrupt)
        return addSignalPort(ports, record.NAME, record.DIR, kind, "", "", "", "", record.IRQID);
    return addPlainPort(ports, record.NAME, record.DIR, kind, "", "", "");
}

void HWHGenerator::nameSignals(const std::string& moduleName) {
    const auto entry = m_portTable.find(moduleName);
    if (entry == m_portTable.end())
        return;
    const auto& elements = m_portElementsByModule[moduleName];
    for (const auto& [name, record] : entry->second)
        nameSignal(*elements.at(name), moduleName, record);
}

/// Writes the connections of a port and finds its signal: the first far end that has one gives it,
/// else what an earlier port said of this one, else the port's own name. No signal's name is empty,
/// so an empty entry of the table is one that was made just now.
void HWHGenerator::nameSignal(HXMLWElement& port, const std::string& moduleName,
                              const HWHPortRecord& record) {
    std::string signal;
    std::vector<std::string*> ends;
    const auto visitEnd = [&](const std::string& end) {
        ends.push_back(&m_signalTable[end]);
        if (signal.empty())
            signal = *ends.back();
    };
    for (const auto& [instance, farPort] : record.CONNECTIONS) {
        addConnection(connectionsOf(port), instance, farPort);
        if (instance == m_topInstanceName)
            m_externalPortTable[farPort].try_emplace(moduleName, &record);
        visitEnd(joined(instance, farPort));
    }
    const std::string own = joined(moduleName, record.NAME);
    visitEnd(own);
    if (signal.empty())
        signal = own;
    for (std::string* end : ends)
        if (end->empty())
            *end = signal;
    addSpaced(port, key::kSigname, signal);
}

void HWHGenerator::writeExternalPorts(HXMLWElement* externalPorts) {
    if (externalPorts == nullptr)
        return;
    for (const auto& [name, innerPorts] : m_externalPortTable)
        writeExternalPort(*externalPorts, name, innerPorts);
}

void HWHGenerator::writeExternalPort(
    HXMLWElement& externalPorts, const std::string& name,
    const std::map<std::string, const HWHPortRecord*>& innerPorts) {
    const HWHPortRecord& first = *innerPorts.begin()->second;
    // An interrupt number stays inside: at this level an "INTERRUPT" is a plain port.
    const bool signalForm =
        first.SIG_IS == signal_kind::kClock || first.SIG_IS == signal_kind::kIntr;
    HXMLWElement* port =
        signalForm
            ? addSignalPort(&externalPorts, name, first.DIR, first.SIG_IS, "", "", "", "", "")
            : addPlainPort(&externalPorts, name, first.DIR, first.SIG_IS, "", "", "");

    std::string signal;
    for (const auto& [moduleName, record] : innerPorts) {
        addConnection(connectionsOf(*port), moduleName, record->NAME);
        const auto known = m_signalTable.find(joined(moduleName, record->NAME));
        if (signal.empty() && known != m_signalTable.end())
            signal = known->second;
    }
    if (signal.empty())
        signal = "External_Ports_" + name;
    m_signalTable.try_emplace(joined(m_topInstanceName, name), signal);
    addSpaced(*port, key::kSigname, signal);
}

// Both forms own their texts, as their interface takes them by value.
HXMLWElement* HWHGenerator::addSignalPort(HXMLWElement* parent, std::string name, std::string dir,
                                          std::string sigIs, std::string left, std::string right,
                                          std::string extra, std::string polarity,
                                          std::string irqId) {
    if (parent == nullptr)
        return nullptr;
    HXMLWElement* port = addPortCommon(*parent, name, dir, sigIs, left, right);
    const std::string kind = HSTStringUtils::to_upper(sigIs);
    if (kind == signal_kind::kClock && !extra.empty())
        add(*port, key::kClkfrequency, extra);
    if (kind == signal_kind::kInterrupt) {
        if (!extra.empty())
            add(*port, key::kSensitivity, extra);
        add(*port, key::kIrqid, irqId);
    }
    if (!polarity.empty())
        add(*port, key::kPolarity, polarity);
    return port;
}

HXMLWElement* HWHGenerator::addPlainPort(HXMLWElement* parent, std::string name, std::string dir,
                                         std::string sigIs, std::string left, std::string right,
                                         std::string polarity) {
    HXMLWElement* port = addPortCommon(*parent, name, dir, sigIs, left, right);
    if (!polarity.empty())
        add(*port, key::kPolarity, polarity);
    return port;
}

HXMLWElement* HWHGenerator::addPortCommon(HXMLWElement& parent, const std::string& name,
                                          const std::string& dir, const std::string& sigIs,
                                          const std::string& left, const std::string& right) {
    HXMLWElement* port = parent.addChild(element::kPort);
    add(*port, key::kName, name);
    add(*port, key::kDir, dir);
    add(*port, key::kSigis, sigIs.empty() ? hwh::word::kUndefinedSignal : sigIs);
    add(*port, key::kLeft, left);
    add(*port, key::kRight, right);
    return port;
}

void HWHGenerator::addConnection(HXMLWElement& connections, const std::string& instance,
                                 const std::string& port) {
    HXMLWElement* connection = connections.addChild(element::kConnection);
    add(*connection, key::kInstance, instance);
    add(*connection, key::kPort, port);
}
