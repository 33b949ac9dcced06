#include "workbench/handoff/HandoffReport.h"

#include <algorithm>
#include <unordered_set>

#include "workbench/text/JsonWriter.h"
#include "workbench/text/Table.h"
#include "workbench/text/Text.h"
#include "workbench/text/TextStream.h"

namespace tq {

namespace {

std::string kindOf(const Diagnostic& finding) {
    std::string kind = finding.id;
    std::replace(kind.begin(), kind.end(), '-', ' ');
    return kind;
}

std::size_t countSignals(const HBSHandoff& handoff) {
    std::unordered_set<std::string> signals;
    for (std::size_t i = 0; i < handoff.portCount(); ++i)
        signals.insert(handoff.port(i).signal);
    for (std::size_t i = 0; i < handoff.externalPortCount(); ++i)
        signals.insert(handoff.externalPort(i).signal);
    return signals.size();
}

} // namespace

HandoffReport reportHandoff(const HBSHandoff& handoff, const std::string& document,
                            const std::vector<Diagnostic>& findings) {
    HandoffReport report;
    report.document = document;
    report.topName = handoff.topName();
    report.isComplete = handoff.isComplete();
    report.modules = handoff.moduleCount();
    report.ports = handoff.portCount();
    report.signals = countSignals(handoff);
    report.externalPorts = handoff.externalPortCount();
    for (std::size_t i = 0; i < handoff.moduleCount(); ++i)
        if (const HBSHandoff::Module module = handoff.module(i); module.isMaster)
            report.masters.push_back({std::string(module.name), handoff.ranges(i).size()});
    for (const Diagnostic& finding : findings)
        if (finding.severity != Severity::Error)
            report.warnings.push_back({kindOf(finding), finding.text});
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
