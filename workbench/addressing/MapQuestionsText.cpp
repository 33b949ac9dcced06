// Answers about an address map as tables and as JSON.

#include <ostream>

#include "workbench/addressing/AddressMapJson.h"
#include "workbench/addressing/AddressMapWriting.h"
#include "workbench/addressing/MapQuestions.h"
#include "workbench/text/DiagnosticText.h"
#include "workbench/text/JsonWriter.h"
#include "workbench/text/Table.h"
#include "workbench/text/Text.h"

namespace tq {

namespace {

std::string hex(const HABMAddrValue& value) {
    return value.isValid() ? value.getPrettyHexStringValue(0) : "?";
}

/// The interfaces passed, in order: "/cpu0/M_AXI > /noc0/S > …".
std::string wayText(const ConfiguredMap& map, const MapMatch& match) {
    if (match.view == nullptr)
        return match.block->instance == nullptr ? "switched off" : "no initiator sees it";
    std::string text;
    for (const HABMInterfaceConnection* const connection :
         map.views().wayTo(*match.view, *match.region))
        text +=
            (text.empty() ? connection->getSourcePath() : "") + " > " + connection->getTargetPath();
    if (const HABMAddrAssign* const assign = match.region->assign)
        text += (text.empty() ? "" : ", ") + ("assign " + assign->getName());
    return text;
}

void writeAddress(JsonWriter& json, const char* key, const HABMAddrValue& value) {
    json.writeKey(key);
    if (value.isValid())
        json.value(value.getPrettyHexStringValue(0));
    else
        json.null();
}

void writeText(JsonWriter& json, const char* key, const std::string* text) {
    json.writeKey(key);
    if (text != nullptr)
        json.value(*text);
    else
        json.null();
}

void writeWay(JsonWriter& json, const ConfiguredMap& map, const MapMatch& match) {
    json.beginArray("way");
    if (match.view != nullptr)
        for (const HABMInterfaceConnection* const connection :
             map.views().wayTo(*match.view, *match.region)) {
            json.beginObject();
            json.member("connection", connection->getName());
            json.member("source", connection->getSourcePath());
            json.member("target", connection->getTargetPath());
            json.endObject();
        }
    json.endArray();
}

void write(JsonWriter& json, const ConfiguredMap& map, const MapMatch& match) {
    json.beginObject();
    writeText(json, "from", match.view == nullptr ? nullptr : &match.view->from);
    writeText(json, "space", match.view == nullptr ? nullptr : &match.view->path);
    json.member("block", match.block->path);
    json.member("on", match.block->instance != nullptr);
    writeAddress(json, "address", match.address);
    writeText(json, "register", match.reg == nullptr ? nullptr : &match.reg->getName());
    writeAddress(json, "offset", match.offset);
    writeAddress(json, "block_offset",
                 match.reg == nullptr ? match.offset : match.offset.plus(match.reg->getOffset()));
    if (match.reg != nullptr) {
        json.member("width", match.reg->getWidth());
        json.member("access", HABMRegister::decodeRegisterAccess(match.reg->getAccess()));
        writeAddress(json, "reset", match.reg->getReset());
        writeAddress(json, "value", map.map().valueOf(*match.block, *match.reg));
    }
    const bool isAssigned = match.region != nullptr && match.region->assign != nullptr;
    writeText(json, "assign", isAssigned ? &match.region->assign->getName() : nullptr);
    writeWay(json, map, match);
    json.endObject();
}

void write(JsonWriter& json, const MapReason& reason) {
    json.beginObject("why");
    json.member("path", reason.path);
    json.member("on", reason.isOn);
    json.member("reason", reason.text);
    json.member("condition", reason.expression);
    json.beginArray("scripts");
    for (const std::string& script : reason.scripts)
        json.value(script);
    json.endArray();
    json.beginArray("registers");
    for (const MapReason::Register& reg : reason.registers) {
        json.beginObject();
        json.member("path", reg.path);
        writeAddress(json, "value", reg.value);
        json.member("source", reg.source);
        json.endObject();
    }
    json.endArray();
    json.endObject();
}

void write(JsonWriter& json, const Diagnostic& finding) {
    json.beginObject();
    json.member("id", finding.id);
    json.member("kind", finding.id.substr(0, finding.id.find(':')));
    json.member("severity", severityName(finding.severity));
    json.member("file", finding.place.file);
    json.member("line", finding.place.line);
    json.member("column", finding.place.column);
    json.member("text", finding.text);
    json.member("expected", finding.expected);
    json.endObject();
}

} // namespace

void printMatches(std::ostream& out, const ConfiguredMap& map,
                  const std::vector<MapMatch>& matches) {
    using Align = Table::Align;
    Table table({{"from"},
                 {"address", Align::Right},
                 {"block"},
                 {"register"},
                 {"offset", Align::Right},
                 {"access"},
                 {"reset", Align::Right},
                 {"value", Align::Right},
                 {"way"}});
    for (const MapMatch& match : matches) {
        const HABMRegister* const reg = match.reg;
        table.addRow({match.view == nullptr ? "-" : match.view->path, hex(match.address),
                      match.block->path, reg == nullptr ? "-" : reg->getName(), hex(match.offset),
                      reg == nullptr ? "" : HABMRegister::decodeRegisterAccess(reg->getAccess()),
                      reg == nullptr ? "" : hex(reg->getReset()),
                      reg == nullptr ? "" : hex(map.map().valueOf(*match.block, *reg)),
                      wayText(map, match)});
    }
    table.print(out);
}

void printReason(std::ostream& out, const MapReason& reason) {
    out << printable(reason.path) << (reason.isOn ? " is on: " : " is off: ")
        << printable(reason.text) << '\n';
    if (!reason.expression.empty())
        out << "condition: " << printable(reason.expression) << '\n';
    for (const std::string& script : reason.scripts)
        out << "computed by the script " << printable(script) << '\n';
    for (const MapReason::Register& reg : reason.registers)
        out << printable(reg.path) << " is " << hex(reg.value) << ", from " << printable(reg.source)
            << '\n';
}

std::string mapAnswersJson(const ConfiguredMap& map, const MapAnswers& answers) {
    JsonWriter json;
    json.beginObject();
    if (answers.hasMap)
        writeMembers(json, map.map(), answers.hasRegisters);
    if (answers.findings != nullptr) {
        json.beginArray("findings");
        for (const Diagnostic& finding : answers.findings->all())
            write(json, finding);
        json.endArray();
        json.beginObject("counts");
        for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Remark})
            json.member(severityName(severity), answers.findings->count(severity));
        json.endObject();
    }
    if (answers.matches != nullptr) {
        json.beginArray("matches");
        for (const MapMatch& match : *answers.matches)
            write(json, map, match);
        json.endArray();
    }
    if (answers.reason != nullptr)
        write(json, *answers.reason);
    json.endObject();
    return json.text();
}

} // namespace tq
