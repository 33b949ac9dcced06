#include "workbench/registers/RegisterReport.h"

#include <fnmatch.h>

#include <stdexcept>
#include <utility>

#include "workbench/files/InputError.h"
#include "workbench/text/DiagnosticJson.h"
#include "workbench/text/JsonWriter.h"
#include "workbench/text/Table.h"
#include "workbench/text/TextStream.h"

namespace tq {

namespace {

using Stops = std::vector<hbs::HBSRegFileStop>;

/// Errors of the reader end the reading; its warnings go on to the sink.
std::unique_ptr<hbs::HBSRegistersMap> parse(const std::string& path, Stops& stops,
                                            const DiagnosticSink& sink) {
    Diagnostic error = makeDiagnostic(Severity::Error, "unreadable-file", placeOfFile(path),
                                      "the file has no root element");
    const DiagnosticSink keepError = [&](Diagnostic finding) {
        if (finding.severity == Severity::Error)
            error = std::move(finding);
        else if (sink)
            sink(std::move(finding));
    };
    std::unique_ptr<hbs::HBSRegistersMap> map;
    try {
        map = hbs::HBSRegFileParser::parseFile(path, stops, keepError);
    } catch (const std::logic_error&) { // a number, of which the sink was told
    }
    if (map == nullptr)
        throw InputError(std::move(error));
    return map;
}

std::vector<const hbs::HBSRegister*> find(const hbs::HBSRegistersMap& map,
                                          const std::string& glob) {
    std::vector<const hbs::HBSRegister*> found;
    for (const hbs::HBSRegister* entry : map.getRegisters())
        if (fnmatch(glob.c_str(), entry->getName().c_str(), 0) == 0)
            found.push_back(entry);
    return found;
}

} // namespace

RegisterList listRegisters(const std::string& path, const std::string& pattern,
                           const DiagnosticSink& sink) {
    RegisterList list;
    list.map = parse(path, list.stops, sink);
    list.registers = find(*list.map, pattern);
    if (sink && list.map->getRegisters().empty())
        sink(makeDiagnostic(Severity::Warning, "no-register", placeOfFile(path),
                            "no register found"));
    return list;
}

std::string registerTable(const RegisterList& list) {
    if (list.registers.empty())
        return {};
    Table table({{"name"}, {"offset"}, {"description"}});
    for (const hbs::HBSRegister* entry : list.registers)
        table.addRow({entry->getName(), entry->getOffset(), entry->getDesc()});
    TextStream out;
    table.print(out);
    return out.str();
}

std::string registerJson(const RegisterList& list, const std::vector<Diagnostic>& findings) {
    JsonWriter json;
    json.beginObject();
    json.beginArray("registers");
    for (const hbs::HBSRegister* entry : list.registers) {
        json.beginObject();
        json.member("name", entry->getName());
        json.member("offset", entry->getOffset());
        json.member("description", entry->getDesc());
        json.endObject();
    }
    json.endArray();
    json.beginArray("stops");
    for (const hbs::HBSRegFileStop& stop : list.stops) {
        json.beginObject();
        json.member("line", stop.line);
        json.member("column", stop.column);
        json.member("element", stop.element);
        json.member("level", stop.level);
        json.member("expected", stop.expected);
        json.endObject();
    }
    json.endArray();
    json.writeKey("diagnostics");
    writeDiagnostics(json, findings);
    json.endObject();
    return json.text();
}

} // namespace tq
