#include "workbench/registers/RegisterReport.h"

#include <fnmatch.h>

#include <stdexcept>
#include <utility>

#include "workbench/files/InputError.h"
#include "workbench/text/JsonWriter.h"
#include "workbench/text/Table.h"
#include "workbench/text/TextStream.h"

namespace tq {

namespace {

using Stops = std::vector<hbs::HBSRegFileStop>;

std::unique_ptr<hbs::HBSRegistersMap> parse(const std::string& path, Stops& stops) {
    std::unique_ptr<hbs::HBSRegistersMap> map;
    try {
        map = hbs::HBSRegFileParser::parseFile(path, stops);
    } catch (const std::logic_error& error) {
        throw fileError(path, std::string("a spirit:dim is no number: ") + error.what());
    }
    if (map == nullptr)
        throw fileError(path, "the file can't be parsed");
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

/// The places where the reader stopped, as warnings.
void reportStops(const std::string& path, const Stops& stops, const DiagnosticSink& sink) {
    for (const auto& stop : stops) {
        Place place = placeOfFile(path);
        place.line = stop.line;
        place.column = stop.column;
        sink(makeDiagnostic(Severity::Warning, "reader-stop", std::move(place),
                            "the reader stopped at <" + stop.element +
                                ">, which it doesn't know in " + stop.level,
                            stop.expected));
    }
}

} // namespace

RegisterList listRegisters(const std::string& path, const std::string& pattern,
                           const DiagnosticSink& sink) {
    RegisterList list;
    list.map = parse(path, list.stops);
    list.registers = find(*list.map, pattern);
    if (sink) {
        reportStops(path, list.stops, sink);
        if (list.map->getRegisters().empty())
            sink(makeDiagnostic(Severity::Warning, "no-register", placeOfFile(path),
                                "no register found"));
    }
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

std::string registerJson(const RegisterList& list) {
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
    json.endObject();
    return json.text();
}

} // namespace tq
