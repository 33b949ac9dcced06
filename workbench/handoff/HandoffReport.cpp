#include "workbench/handoff/HandoffReport.h"

#include <pugixml.hpp>

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>
#include <utility>

#include "workbench/files/InputError.h"
#include "workbench/text/JsonWriter.h"
#include "workbench/text/Table.h"
#include "workbench/text/Text.h"
#include "workbench/text/TextStream.h"

namespace tq {

namespace {

/// Module and port; external ports are listed under the top's name.
using PortId = std::pair<std::string, std::string>;
using SignalsByPort = std::map<PortId, std::string>;

std::string text(const PortId& port) {
    return port.first + "." + port.second;
}

/// Calls `visit(port id, PORT element)` for the external ports, then those of all modules.
template <class Visitor>
void forEachPort(const pugi::xml_node& root, const std::string& topName, Visitor&& visit) {
    for (const auto& port : root.child("EXTERNALPORTS").children("PORT"))
        visit(PortId(topName, port.attribute("NAME").value()), port);
    for (const auto& module : root.child("MODULES").children("MODULE"))
        for (const auto& port : module.child("PORTS").children("PORT"))
            visit(PortId(module.attribute("INSTANCE").value(), port.attribute("NAME").value()),
                  port);
}

bool looksLikeName(std::string_view value) {
    const auto isLetter = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
    };
    const auto isInside = [&](char c) { return isLetter(c) || (c >= '0' && c <= '9'); };
    return !value.empty() && isLetter(value.front()) &&
           std::all_of(value.begin(), value.end(), isInside) && value != "true" &&
           value != "false" && value != "TRUE" && value != "FALSE";
}

class Reporter {
public:
    Reporter(const pugi::xml_node& root, const HWHParameterTable& parameters,
             const std::map<std::string, std::string>& design)
        : m_root(root), m_parameters(parameters), m_design(design) {}

    HandoffReport report() {
        m_report.topName = m_root.child("STSTEMINFO").attribute("NAME").value();
        count();
        compareEnds();
        lookAtParameters();
        return std::move(m_report);
    }

private:
    void count() {
        std::set<std::string> signals;
        forEachPort(m_root, m_report.topName, [&](const PortId& id, const pugi::xml_node& port) {
            const std::string signal = port.attribute("SIGNAME").value();
            signals.insert(signal);
            m_signals[id] = signal;
            ++(id.first == m_report.topName ? m_report.externalPorts : m_report.ports);
        });
        m_report.signals = signals.size();
        for (const auto& module : m_root.child("MODULES").children("MODULE")) {
            ++m_report.modules;
            const auto ranges = module.child("MEMORYMAP");
            if (ranges)
                m_report.masters.push_back(
                    {module.attribute("INSTANCE").value(), rangesIn(ranges)});
        }
    }

    static std::size_t rangesIn(const pugi::xml_node& memoryMap) {
        const auto ranges = memoryMap.children("MEMRANGE");
        return static_cast<std::size_t>(std::distance(ranges.begin(), ranges.end()));
    }

    void compareEnds() {
        std::vector<HandoffReport::Warning> twoNames;
        std::set<std::pair<PortId, PortId>> compared;
        forEachPort(m_root, m_report.topName, [&](const PortId& id, const pugi::xml_node& port) {
            for (const auto& connection : port.child("CONNECTIONS").children("CONNECTION")) {
                const PortId far(connection.attribute("INSTANCE").value(),
                                 connection.attribute("PORT").value());
                const auto signal = m_signals.find(far);
                if (signal == m_signals.end())
                    warn(HandoffReport::kMissingFarPort,
                         text(id) + " connects to " + text(far) + ", which doesn't exist");
                else if (signal->second != m_signals[id] &&
                         compared.insert(std::minmax(id, far)).second)
                    twoNames.push_back({HandoffReport::kTwoNames,
                                        "one net is " + named(id) + " and " + named(far)});
            }
        });
        m_report.warnings.insert(m_report.warnings.end(), twoNames.begin(), twoNames.end());
    }

    std::string named(const PortId& port) { return m_signals[port] + " at " + text(port); }

    void lookAtParameters() {
        for (const auto& module : m_root.child("MODULES").children("MODULE")) {
            const std::string moduleName = module.attribute("INSTANCE").value();
            const auto metadata = m_parameters.find(moduleName);
            if (metadata == m_parameters.end())
                continue;
            for (const auto& parameter : module.child("PARAMETERS").children("PARAMETER")) {
                const std::string value = parameter.attribute("VALUE").value();
                const auto asked = metadata->second.find(parameter.attribute("NAME").value());
                if (asked != metadata->second.end() && asked->second == value &&
                    looksLikeName(value) && !m_design.contains(value))
                    warn(HandoffReport::kUnresolved,
                         std::string(moduleName)
                             .append(": ")
                             .append(asked->first)
                             .append(" stays ")
                             .append(value)
                             .append(", which the design doesn't know"));
            }
        }
    }

    void warn(const char* kind, std::string sentence) {
        m_report.warnings.push_back({kind, std::move(sentence)});
    }

    const pugi::xml_node m_root;
    const HWHParameterTable& m_parameters;
    const std::map<std::string, std::string>& m_design;
    SignalsByPort m_signals;
    HandoffReport m_report;
};

} // namespace

HandoffReport reportHandoff(const std::string& document, const HWHParameterTable& parameters,
                            const std::map<std::string, std::string>& design) {
    pugi::xml_document xml;
    const auto result = xml.load_file(document.c_str());
    if (!result)
        throw fileError(document, result.description());
    HandoffReport report = Reporter(xml.child("LOMSYSTEM"), parameters, design).report();
    report.document = document;
    return report;
}

std::string handoffTables(const HandoffReport& report) {
    TextStream out;
    out << "Handoff of " << printable(report.topName) << " in " << printable(report.document)
        << "\n\n";
    Table counts({{"", Table::Align::Left}, {"count", Table::Align::Right}});
    counts.addRow({"modules", std::to_string(report.modules)});
    counts.addRow({"ports", std::to_string(report.ports)});
    counts.addRow({"signals", std::to_string(report.signals)});
    counts.addRow({"external ports", std::to_string(report.externalPorts)});
    for (const auto& master : report.masters)
        counts.addRow({"memory ranges of " + master.name, std::to_string(master.ranges)});
    counts.print(out);
    if (!report.warnings.empty()) {
        Table warnings({{"warning"}, {"where"}});
        for (const auto& warning : report.warnings)
            warnings.addRow({warning.kind, warning.text});
        out << '\n';
        warnings.print(out);
    }
    return out.str();
}

std::string handoffJson(const HandoffReport& report) {
    JsonWriter json;
    json.beginObject();
    json.member("document", report.document);
    json.member("top", report.topName);
    json.member("modules", report.modules);
    json.member("ports", report.ports);
    json.member("signals", report.signals);
    json.member("external_ports", report.externalPorts);
    json.beginArray("masters");
    for (const auto& master : report.masters) {
        json.beginObject();
        json.member("name", master.name);
        json.member("ranges", master.ranges);
        json.endObject();
    }
    json.endArray();
    json.beginArray("warnings");
    for (const auto& warning : report.warnings) {
        json.beginObject();
        json.member("kind", warning.kind);
        json.member("text", warning.text);
        json.endObject();
    }
    json.endArray();
    json.endObject();
    return json.text();
}

} // namespace tq
