// hbs define DIR NAME: compiles the tables of a hard block, and tells what became of them.

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "HUTFile.h"
#include "addressing/HBSAddrParseUtil.h"
#include "blockmodel/HABM.h"
#include "host/Command.h"
#include "host/Table.h"
#include "rapidjson_headers.h"

namespace host {

namespace {

struct Options {
    std::string directory;
    std::string name;
    bool write = false;
    bool registers = false;
    bool json = false;
};

/// Several faults may lie in one row, which may be used without a part of it.
std::size_t rowsUsed(const HBSTableReport& report) {
    std::set<std::size_t> dropped;
    for (const HBSDroppedRow& row : report.dropped)
        if (row.isWhole)
            dropped.insert(row.line);
    return report.rows - dropped.size();
}

void printTables(const std::vector<HBSTableReport>& tables, const std::string& place,
                 std::ostream& out) {
    Table table({{"table"},
                 {"rows", Table::Align::Right},
                 {"used", Table::Align::Right},
                 {"dropped", Table::Align::Right}});
    for (const HBSTableReport& report : tables) {
        const std::size_t used = rowsUsed(report);
        if (report.isRead)
            table.addRow({report.table, std::to_string(report.rows), std::to_string(used),
                          std::to_string(report.rows - used)});
        else
            table.addRow({report.table, "-", "-", "-"});
    }
    table.print(out);
    for (const HBSTableReport& report : tables) {
        const std::string file = place + "/" + report.table;
        if (report.isThere && !report.isRead)
            out << file << ": can't be read\n";
        for (const HBSDroppedRow& row : report.dropped)
            out << file << ':' << row.line << (row.isWhole ? ": dropped: " : ": not used: ")
                << row.reason << '\n';
    }
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
    out << block.getModuleName() << " (" << block.getModuleVlnv()
        << "): " << counted(block.getPorts().size(), "port") << ", "
        << counted(block.getInterfaces().size(), "interface") << ", "
        << counted(block.findRegisters("", true).size(), "register") << ", "
        << counted(block.getSubBlocks().size(), "sub-block") << ", "
        << counted(block.getInterfaceConnections().size() + block.getPortConnections().size(),
                   "connection")
        << ", " << counted(block.getGenerics().size(), "parameter") << '\n';
}

void printJson(const HABMBlock& block, const std::vector<HBSTableReport>& tables,
               const std::vector<std::string>& dangling, const std::string& written,
               std::ostream& out) {
    rapidjson::OStreamWrapper stream(out);
    rapidjson::PrettyWriter<rapidjson::OStreamWrapper> writer(stream);
    writer.StartObject();
    writer.Key("name");
    writer.String(block.getModuleName().c_str());
    writer.Key("vlnv");
    writer.String(block.getModuleVlnv().c_str());
    writer.Key("tables");
    writer.StartArray();
    for (const HBSTableReport& report : tables) {
        writer.StartObject();
        writer.Key("table");
        writer.String(report.table.c_str());
        writer.Key("there");
        writer.Bool(report.isThere);
        writer.Key("read");
        writer.Bool(report.isRead);
        writer.Key("rows");
        writer.Uint64(report.rows);
        writer.Key("dropped");
        writer.StartArray();
        for (const HBSDroppedRow& row : report.dropped) {
            writer.StartObject();
            writer.Key("line");
            writer.Uint64(row.line);
            writer.Key("reason");
            writer.String(row.reason.c_str());
            writer.Key("whole");
            writer.Bool(row.isWhole);
            writer.EndObject();
        }
        writer.EndArray();
        writer.EndObject();
    }
    writer.EndArray();
    writer.Key("dangling");
    writer.StartArray();
    for (const std::string& reference : dangling)
        writer.String(reference.c_str());
    writer.EndArray();
    if (!written.empty()) {
        writer.Key("written");
        writer.String(written.c_str());
    }
    writer.EndObject();
    out << '\n';
}

/// Writes the block where the definitions are read from, and gives the path. The library's own
/// write wouldn't tell of a failure.
std::string write(const HABMBlock& block, const std::string& place) {
    std::string path = place + "/" + block.getModuleName() + ".bmj";
    if (!HABMBlock::writeTopBlock(HUTFile(path), block, true))
        throw BadInput(path + ": the file can't be written");
    return path;
}

int runDefine(const Options& options) {
    const std::string place = options.directory + "/" + options.name;
    std::vector<HBSTableReport> tables;
    const std::unique_ptr<HABMBlock> block = HBSAddrParseUtil::buildHardblockDefinition(
        HUTFile(options.directory), options.name, false, tables);
    if (block == nullptr)
        throw BadInput(options.directory + ": expected a folder of hard blocks, and a NAME in it");
    if (std::none_of(tables.begin(), tables.end(),
                     [](const HBSTableReport& report) { return report.isRead; }))
        throw BadInput(place + ": none of the tables is there to be read, from " +
                       tables.front().table + " to " + tables.back().table);

    const std::string written = options.write ? write(*block, place) : "";
    const std::vector<std::string> dangling = HABMBlockCheck::run(*block).dangling;
    if (options.json) {
        printJson(*block, tables, dangling, written, std::cout);
        return kSuccess;
    }
    printTables(tables, place, std::cout);
    Tree tree(options.registers);
    tree.add(*block);
    std::cout << '\n';
    tree.print(std::cout);
    std::cout << '\n';
    for (const std::string& reference : dangling)
        std::cout << "leads nowhere: " << reference << '\n';
    printCounts(*block, std::cout);
    if (!written.empty())
        std::cout << "written: " << written << '\n';
    return kSuccess;
}

} // namespace

void declareDefine(CLI::App& app, int& status) {
    auto options = std::make_shared<Options>();
    CLI::App* word = app.add_subcommand(
        "define", "Compiles the tables of a hard block and tells what became of them");
    word->add_option("DIR", options->directory, "Folder of the hard blocks")->required();
    word->add_option("NAME", options->name, "The hard block: its tables lie in DIR/NAME/data")
        ->required();
    word->add_flag("--write", options->write, "Writes DIR/NAME/NAME.bmj");
    word->add_flag("--registers", options->registers, "Shows each register");
    word->add_flag("--json", options->json, "Prints JSON for programs");
    word->callback([options, &status] { status = runDefine(*options); });
}

} // namespace host
