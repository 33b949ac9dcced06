// hbs registers FILE: the registers that the library finds in a description file, and where its
// reader stopped early.

#include <fnmatch.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/Command.h"
#include "host/RegisterOutline.h"
#include "host/Table.h"
#include "rapidjson_headers.h"
#include "regfile/HBSRegFileParser.h"

namespace host {

namespace {

struct Options {
    std::string file;
    std::string match = "*";
    bool json = false;
};

std::unique_ptr<hbs::HBSRegistersMap> parse(const std::string& path) {
    std::unique_ptr<hbs::HBSRegistersMap> map;
    try {
        map = hbs::HBSRegFileParser::parseFile(path);
    } catch (const std::logic_error& error) {
        throw BadInput(path + ": a spirit:dim is no number: " + error.what());
    }
    if (map == nullptr)
        throw BadInput(path + ": the file can't be parsed");
    return map;
}

/// The library's registers of the outline's names, in file order.
std::vector<const hbs::HBSRegister*> find(hbs::HBSRegistersMap& map, const RegisterOutline& outline,
                                          const std::string& glob) {
    std::vector<const hbs::HBSRegister*> found;
    for (const auto& name : outline.names) {
        const hbs::HBSRegister* const known = map.getRegister(name);
        if (known != nullptr && fnmatch(glob.c_str(), name.c_str(), 0) == 0)
            found.push_back(known);
    }
    return found;
}

std::string place(const std::string& path, std::size_t line) {
    return line == 0 ? path : path + ":" + std::to_string(line);
}

/// A file of another make stops the reader everywhere; the first places tell enough.
constexpr std::size_t kMostWarnings = 10;

void printWarnings(const std::string& path, const RegisterOutline& outline) {
    const std::size_t shown = std::min(outline.stops.size(), kMostWarnings);
    for (const auto& stop : std::span(outline.stops).first(shown))
        std::cerr << place(path, stop.line) << ": warning: the reader stopped at <" << stop.element
                  << ">, which it doesn't know in " << stop.level << '\n';
    if (shown < outline.stops.size())
        std::cerr << path << ": warning: and at " << outline.stops.size() - shown
                  << " more places\n";
    if (outline.names.empty())
        std::cerr << path << ": warning: no register found\n";
}

void printTable(const std::vector<const hbs::HBSRegister*>& registers) {
    Table table({{"name"}, {"offset"}, {"description"}});
    for (const auto* entry : registers)
        table.addRow({entry->getName(), entry->getOffset(), entry->getDesc()});
    table.print(std::cout);
}

void printJson(const std::vector<const hbs::HBSRegister*>& registers,
               const RegisterOutline& outline) {
    rapidjson::OStreamWrapper stream(std::cout);
    rapidjson::PrettyWriter<rapidjson::OStreamWrapper> writer(stream);
    const auto member = [&](const char* name, const std::string& text) {
        writer.Key(name);
        writer.String(text.c_str());
    };
    writer.StartObject();
    writer.Key("registers");
    writer.StartArray();
    for (const auto* entry : registers) {
        writer.StartObject();
        member("name", entry->getName());
        member("offset", entry->getOffset());
        member("description", entry->getDesc());
        writer.EndObject();
    }
    writer.EndArray();
    writer.Key("stops");
    writer.StartArray();
    for (const auto& stop : outline.stops) {
        writer.StartObject();
        writer.Key("line");
        writer.Uint64(stop.line);
        member("element", stop.element);
        member("level", stop.level);
        writer.EndObject();
    }
    writer.EndArray();
    writer.EndObject();
    std::cout << '\n';
}

int runRegisters(const Options& options) {
    const auto map = parse(options.file);
    const RegisterOutline outline = RegisterOutline::read(options.file);
    const auto registers = find(*map, outline, options.match);
    if (options.json)
        printJson(registers, outline);
    else if (!registers.empty())
        printTable(registers);
    printWarnings(options.file, outline);
    return registers.empty() ? kNoResult : kSuccess;
}

} // namespace

void declareRegisters(CLI::App& app, int& status) {
    auto options = std::make_shared<Options>();
    CLI::App* word = app.add_subcommand("registers", "Lists the registers of an IP-XACT file");
    word->add_option("FILE", options->file, "Register description file")->required();
    word->add_option("--match", options->match, "Lists only names that match this pattern")
        ->type_name("GLOB");
    word->add_flag("--json", options->json, "Prints JSON for programs");
    word->callback([options, &status] { status = runRegisters(*options); });
}

} // namespace host
