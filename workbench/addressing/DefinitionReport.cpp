#include "workbench/addressing/DefinitionReport.h"

#include <algorithm>
#include <cstddef>
#include <ostream>

#include "HUTFile.h"
#include "workbench/files/InputError.h"
#include "workbench/files/OutputFile.h"
#include "workbench/text/DiagnosticJson.h"
#include "workbench/text/JsonWriter.h"
#include "workbench/text/MessageFinding.h"
#include "workbench/text/Table.h"
#include "workbench/text/Text.h"
#include "workbench/text/TextStream.h"

namespace tq {

namespace {

void printTables(const std::vector<HBSTableReport>& tables, std::ostream& out) {
    Table table({{"table"},
                 {"rows", Table::Align::Right},
                 {"used", Table::Align::Right},
                 {"dropped", Table::Align::Right}});
    for (const HBSTableReport& report : tables) {
        if (report.isRead)
            table.addRow({report.table, std::to_string(report.rows), std::to_string(report.used),
                          std::to_string(report.rows - report.used)});
        else
            table.addRow({report.table, "-", "-", "-"});
    }
    table.print(out);
}

/// The block as a tree, one object a line.
class Tree {
public:
    explicit Tree(bool withRegisters) : m_withRegisters(withRegisters) {}

    void add(const HABMBlock& block) {
        for (const HABMMemoryMap* const map : block.getMemoryMaps())
            addMap(*map);
        for (const HABMAddrSpace* const space : block.getAddrSpaces())
            addSpace(*space);
        for (const HABMInterface* const interface : block.getInterfaces())
            add(*interface);
        for (const HABMBlock* const subBlock : block.getSubBlocks())
            line(0, subBlock->getInstanceName(), "sub-block", start(subBlock->getBaseAddress()), "",
                 subBlock->getModuleName() + enablement(subBlock->getEnablement()));
    }
    void print(std::ostream& out) const { m_table.print(out); }

private:
    void line(std::size_t level, const std::string& name, const char* kind,
              const std::string& address, const std::string& size, const std::string& remark) {
        m_table.addRow({std::string(2 * level, ' ') + name, kind, address, size, remark});
    }
    static std::string start(const HABMAddrValue& value) {
        return value.isValid() ? value.getPrettyHexStringValue(0) : "invalid";
    }
    static std::string size(const HABMAddrValue& value) {
        return value.isValid() ? value.getAbrvStringValue() : "invalid";
    }
    static std::string enablement(const std::string& expression) {
        return expression.empty() ? "" : " if " + expression;
    }

    void addMap(const HABMMemoryMap& map) {
        line(0, map.getName(), "memory map", "", size(map.getRange()), "");
        for (const HABMAddrBlock* const block : map.getAddrBlocks()) {
            const auto registers = block->getRegisters();
            const std::string type = HABMAddrBlock::decodeMemoryType(block->getMemoryType());
            line(1, block->getName(), "address block", start(block->getOffset()),
                 size(block->getRange()),
                 registers.empty() ? type : std::to_string(registers.size()) + " registers");
            if (m_withRegisters)
                for (const HABMRegister* const member : registers)
                    add(*member);
        }
    }
    void add(const HABMRegister& member) {
        std::string remark = HABMRegister::decodeRegisterAccess(member.getAccess());
        if (member.getReset().isValid())
            remark += ", reset " + start(member.getReset());
        line(2, member.getName(), "register", start(member.getOffset()),
             std::to_string(member.getWidth()) + " bits", remark);
    }
    void addSpace(const HABMAddrSpace& space) {
        line(0, space.getName(), "address space", "", size(space.getRange()), "");
        for (const HABMAddrSegment* const segment : space.getAddrSegments())
            line(1, segment->getName(), "segment", start(segment->getOffset()),
                 size(segment->getRange()),
                 HABMAddrSegment::decodeMemoryType(segment->getMemoryType()));
    }
    void add(const HABMInterface& interface) {
        const std::string& reference = interface.isSourceInterface() ? interface.getAddrSpaceRef()
                                                                     : interface.getMemoryMapRef();
        line(0, interface.getInterfaceName(), "interface", "", "",
             HABMInterface::decodeInterfaceMode(interface.getInterfaceMode()) +
                 (reference.empty() ? "" : " of " + reference) +
                 enablement(interface.getEnablement()));
    }

    bool m_withRegisters;
    Table m_table{{{"object"},
                   {"kind"},
                   {"address", Table::Align::Right},
                   {"size", Table::Align::Right},
                   {"remark"}}};
};

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

void printCounts(const HABMBlock& block, std::ostream& out) {
    out << printable(block.getModuleName()) << " (" << printable(block.getModuleVlnv())
        << "): " << counted(block.getPorts().size(), "port") << ", "
        << counted(block.getInterfaces().size(), "interface") << ", "
        << counted(block.findRegisters("", true).size(), "register") << ", "
        << counted(block.getSubBlocks().size(), "sub-block") << ", "
        << counted(block.getInterfaceConnections().size() + block.getPortConnections().size(),
                   "connection")
        << ", " << counted(block.getGenerics().size(), "parameter") << '\n';
}

void writeJson(JsonWriter& json, const HBSTableReport& report) {
    json.beginObject();
    json.member("table", report.table);
    json.member("there", report.isThere);
    json.member("read", report.isRead);
    json.member("rows", report.rows);
    json.member("used", report.used);
    json.endObject();
}

} // namespace

CompiledDefinition compileDefinition(const std::string& directory, const std::string& name,
                                     const DiagnosticSink& sink) {
    CompiledDefinition definition;
    definition.folder = directory + "/" + name;
    // Unknown keys send a message, which would say again what the sink is told with its place.
    const MessageScope messages([&](const ComMsg& message) {
        if (sink && !message.format.starts_with("@91-48@"))
            sink(findingOf(message));
    });
    definition.block = HBSAddrParseUtil::buildHardblockDefinition(HUTFile(directory), name, false,
                                                                  sink, &definition.tables);
    if (definition.block == nullptr)
        throw fileError(directory, "expected a folder of hard blocks, and a NAME in it");
    const auto& tables = definition.tables;
    for (const HBSTableReport& report : tables)
        if (report.isThere && !report.isRead)
            throw fileError(definition.folder + "/" + report.table,
                            "can't be read: " + report.fault);
    if (std::none_of(tables.begin(), tables.end(),
                     [](const HBSTableReport& report) { return report.isRead; }))
        throw fileError(definition.folder, "none of the tables is there to be read, from " +
                                               tables.front().table + " to " + tables.back().table);
    definition.dangling = HABMBlockCheck::run(*definition.block).dangling;
    return definition;
}

void writeDefinition(CompiledDefinition& definition) {
    // The library's own write wouldn't tell of a failure.
    const std::string path = definition.folder + "/" + definition.block->getModuleName() + ".bmj";
    // A link of that name may lead to one of the tables, which the block would then replace.
    for (const HBSTableReport& report : definition.tables)
        refuseInput(path, {definition.folder + "/" + report.table});
    if (!HABMBlock::writeTopBlock(HUTFile(path), *definition.block, true))
        throw outputError(path, "the file can't be written");
    definition.written = path;
}

std::string definitionTables(const CompiledDefinition& definition, bool withRegisters) {
    TextStream out;
    printTables(definition.tables, out);
    Tree tree(withRegisters);
    tree.add(*definition.block);
    out << '\n';
    tree.print(out);
    out << '\n';
    for (const std::string& reference : definition.dangling)
        out << "leads nowhere: " << printable(reference) << '\n';
    printCounts(*definition.block, out);
    if (!definition.written.empty())
        out << "written: " << printable(definition.written) << '\n';
    return out.str();
}

std::string definitionJson(const CompiledDefinition& definition,
                           const std::vector<Diagnostic>& findings) {
    JsonWriter json;
    json.beginObject();
    json.member("name", definition.block->getModuleName());
    json.member("vlnv", definition.block->getModuleVlnv());
    json.beginArray("tables");
    for (const HBSTableReport& report : definition.tables)
        writeJson(json, report);
    json.endArray();
    json.beginArray("dangling");
    for (const std::string& reference : definition.dangling)
        json.value(reference);
    json.endArray();
    json.writeKey("diagnostics");
    writeDiagnostics(json, findings);
    if (!definition.written.empty())
        json.member("written", definition.written);
    json.endObject();
    return json.text();
}

} // namespace tq
