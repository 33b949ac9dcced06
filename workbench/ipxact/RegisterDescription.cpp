#include "workbench/ipxact/RegisterDescription.h"

#include <fnmatch.h>

#include <optional>

#include "workbench/ipxact/ComponentReader.h"
#include "workbench/ipxact/Library.h"
#include "workbench/ipxact/RegisterChecks.h"
#include "workbench/ipxact/SvdReader.h"
#include "workbench/text/DiagnosticJson.h"
#include "workbench/text/JsonWriter.h"
#include "workbench/text/Table.h"
#include "workbench/text/TextStream.h"

namespace tq::ipxact {

namespace {

std::string hexOr(const Number& number, const char* unknown) {
    return number ? hexText(*number) : unknown;
}

bool isSelected(const ListedRegister& entry, const std::string& pattern) {
    return pattern == "*" || fnmatch(pattern.c_str(), entry.name.c_str(), 0) == 0 ||
           fnmatch(pattern.c_str(), entry.path.c_str(), 0) == 0;
}

std::string bitsText(const ListedField& field) {
    if (!field.bitOffset || !field.bitWidth)
        return "[?]";
    const std::string low = decimalText(*field.bitOffset);
    if (*field.bitWidth == 1)
        return "[" + low + "]";
    return "[" + decimalText(*field.bitOffset + *field.bitWidth - 1) + ":" + low + "]";
}

void addRows(Table& table, const ListedRegister& entry, bool withFields) {
    table.addRow({hexOr(entry.address, "?"), entry.width ? decimalText(*entry.width) : "?",
                  accessName(entry.access), entry.reset ? hexText(*entry.reset) : "", entry.path,
                  entry.modes.empty() ? "" : "in " + entry.modes});
    for (const ListedField& field : entry.fields)
        if (withFields)
            table.addRow({"", bitsText(field), accessName(field.access),
                          field.reset ? hexText(*field.reset) : "", "  " + field.name, ""});
}

void writeNumber(JsonWriter& json, std::string_view key, const Number& number) {
    json.writeKey(key);
    if (number && *number >= 0 && *number < (Int128{1} << 64))
        json.value(static_cast<std::uint64_t>(*number));
    else
        json.null();
}

void writeHex(JsonWriter& json, std::string_view key, const Number& number) {
    json.writeKey(key);
    if (number)
        json.value(hexText(*number));
    else
        json.null();
}

void writeField(JsonWriter& json, const ListedField& field) {
    json.beginObject();
    json.member("name", field.name);
    writeNumber(json, "bit_offset", field.bitOffset);
    writeNumber(json, "bit_width", field.bitWidth);
    json.member("access", accessName(field.access));
    writeHex(json, "reset", field.reset);
    json.endObject();
}

void writeRegister(JsonWriter& json, const ListedRegister& entry) {
    json.beginObject();
    json.member("path", entry.path);
    json.member("name", entry.name);
    writeHex(json, "address", entry.address);
    writeNumber(json, "width", entry.width);
    json.member("access", accessName(entry.access));
    writeHex(json, "reset", entry.reset);
    if (!entry.modes.empty())
        json.member("modes", entry.modes);
    json.member("description", entry.source->description);
    json.beginArray("fields");
    for (const ListedField& field : entry.fields)
        writeField(json, field);
    json.endArray();
    json.endObject();
}

void writeSummary(JsonWriter& json, const Summary& summary) {
    json.beginObject("summary");
    json.member("memory_maps", summary.memoryMaps);
    json.member("address_blocks", summary.blocks);
    json.member("registers", summary.registers);
    json.member("fields", summary.fields);
    json.member("interfaces", summary.interfaces);
    json.member("elements_passed_over", summary.leftOut);
    json.endObject();
}

void count(Summary& summary, const std::vector<Register>& items) {
    for (const Register& item : items) {
        summary.registers += item.isFile ? 0 : 1;
        summary.fields += item.fields.size();
        count(summary, item.items);
        count(summary, item.alternates);
    }
}

void count(Summary& summary, const std::vector<MemoryItem>& items) {
    for (const MemoryItem& item : items) {
        summary.blocks += item.kind == MemoryItem::Kind::Block ? 1 : 0;
        count(summary, item.items);
        count(summary, item.registers);
    }
}

void count(Summary& summary, const MemoryMap& map) {
    ++summary.memoryMaps;
    count(summary, map.items);
    for (const MemoryRemap& remap : map.remaps)
        count(summary, remap.items);
}

std::string counted(std::size_t number, const char* thing) {
    return std::to_string(number) + " " + thing + (number == 1 ? "" : "s");
}

} // namespace

Component readDescription(const std::string& path, const std::vector<std::string>& libraries,
                          const DiagnosticSink& sink) {
    const auto tree = ElementTree::read(path);
    std::optional<Library> library;
    const TreeLookup lookup = [&](const Vlnv& vlnv) {
        if (!library)
            library.emplace(libraries, sink);
        return library->find(vlnv);
    };
    Component component =
        isSvd(*tree) ? readSvd(*tree, sink) : readComponent(*tree, {}, lookup, sink);
    checkComponent(component, *tree, sink);
    return component;
}

std::string registerTable(const Component& component, const RegisterSelection& selection) {
    Table table({{"address", Table::Align::Right},
                 {"width", Table::Align::Right},
                 {"access"},
                 {"reset", Table::Align::Right},
                 {"register"},
                 {"remark"}});
    const bool isWhole = forEachRegister(component, [&](const ListedRegister& entry) {
        if (isSelected(entry, selection.pattern))
            addRows(table, entry, selection.withFields);
    });
    if (!isWhole)
        table.addRow({"", "", "", "", "…", "arrays are cut short"});
    if (table.empty())
        return {};
    TextStream out;
    table.print(out);
    return out.str();
}

std::string registerJson(const Component& component, const RegisterSelection& selection,
                         const std::vector<Diagnostic>& findings) {
    JsonWriter json;
    json.beginObject();
    json.member("component", component.vlnv.text());
    json.member("format", component.format);
    json.beginArray("registers");
    const bool isWhole = forEachRegister(component, [&](const ListedRegister& entry) {
        if (isSelected(entry, selection.pattern))
            writeRegister(json, entry);
    });
    json.endArray();
    json.member("whole", isWhole);
    writeSummary(json, summaryOf(component));
    json.writeKey("diagnostics");
    writeDiagnostics(json, findings);
    json.endObject();
    return json.text();
}

std::size_t countRegisters(const Component& component, const RegisterSelection& selection) {
    std::size_t number = 0;
    forEachRegister(component, [&](const ListedRegister& entry) {
        number += isSelected(entry, selection.pattern) ? 1U : 0U;
    });
    return number;
}

Summary summaryOf(const Component& component) {
    Summary summary;
    for (const MemoryMap& map : component.memoryMaps)
        count(summary, map);
    for (const AddressSpace& space : component.addressSpaces)
        if (space.localMap)
            count(summary, *space.localMap);
    summary.interfaces = component.interfaces.size();
    summary.leftOut = component.leftOut;
    return summary;
}

std::string summaryText(const Summary& summary) {
    return counted(summary.memoryMaps, "memory map") + ", " +
           counted(summary.blocks, "address block") + ", " +
           counted(summary.registers, "register") + ", " + counted(summary.fields, "field") +
           (summary.leftOut == 0 ? ""
                                 : "; " + counted(summary.leftOut, "element") + " passed over");
}

} // namespace tq::ipxact
