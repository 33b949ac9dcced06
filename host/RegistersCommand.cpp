// hbs registers FILE: the registers of a description file; with --strict those that the narrow
// reader of the library finds, and where it stopped.

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "host/Command.h"
#include "workbench/addressing/export/MapExport.h"
#include "workbench/files/OutputFile.h"
#include "workbench/ipxact/RegisterDescription.h"
#include "workbench/ipxact/RegisterExport.h"
#include "workbench/registers/RegisterReport.h"

namespace host {

namespace {

struct Options {
    std::string file;
    std::string match = "*";
    std::vector<std::string> libraries;
    std::vector<std::string> exports;
    bool fields = false;
    bool strict = false;
    bool json = false;
};

/// The registers that the whole reader finds beyond those of the narrow one.
void printRest(const Options& options, const tq::RegisterList& list) {
    if (options.json || list.stops.empty())
        return;
    try {
        const tq::ipxact::Summary all =
            tq::ipxact::summaryOf(tq::ipxact::readDescription(options.file, options.libraries, {}));
        const std::size_t seen = list.map->getRegisters().size();
        std::cerr << "hbs: " << (all.registers > seen ? all.registers - seen : 0)
                  << " registers lie beyond\n";
    } catch (const InputError&) {
        return; // not the standard's: nothing lies beyond that could be counted
    }
}

int runStrict(const Options& options) {
    tq::DiagnosticList findings(options.json ? tq::DiagnosticList::kMost : kMostFindings);
    const tq::RegisterList list = tq::listRegisters(options.file, options.match, findings.sink());
    std::cout << (options.json ? tq::registerJson(list, findings.all()) : tq::registerTable(list));
    printFindings(findings);
    printRest(options, list);
    return list.registers.empty() ? kNoResult : kSuccess;
}

int runRegisters(const Options& options) {
    tq::DiagnosticList findings(options.json ? tq::DiagnosticList::kMost : kMostFindings);
    const tq::ipxact::Component component =
        tq::ipxact::readDescription(options.file, options.libraries, findings.sink());
    const tq::ipxact::RegisterSelection selection{options.match, options.fields};
    for (const std::string& path : options.exports) {
        tq::refuseInput(path, {options.file});
        tq::writeOutput(path, tq::ipxact::exportComponent(component, path, findings.sink()));
    }
    const std::string text = options.json
                                 ? tq::ipxact::registerJson(component, selection, findings.all())
                                 : tq::ipxact::registerTable(component, selection);
    std::cout << text;
    if (!options.json) {
        printFindings(findings);
        std::cerr << component.format << ": "
                  << tq::ipxact::summaryText(tq::ipxact::summaryOf(component)) << '\n';
    }
    return tq::ipxact::countRegisters(component, selection) == 0 ? kNoResult : kSuccess;
}

} // namespace

void declareRegisters(CLI::App& app, int& status) {
    auto options = std::make_shared<Options>();
    CLI::App* word =
        app.add_subcommand("registers", "Lists the registers of an IP-XACT or CMSIS-SVD file");
    word->add_option("FILE", options->file, "Register description file")->required();
    word->add_option("--match", options->match, "Lists only names that match this pattern")
        ->type_name("GLOB");
    word->add_flag("--fields", options->fields, "Shows the fields of each register");
    word->add_option("--library", options->libraries, "Folder to look for definitions in");
    word->add_option("--export", options->exports,
                     "Writes a file for other tools, by its ending: .xml (IP-XACT 2014), "
                     ".2022.xml, " +
                         tq::mapFormatEndings());
    word->add_flag("--strict", options->strict,
                   "Shows what the narrow reader sees, and where it stops");
    word->add_flag("--json", options->json, "Prints JSON for programs");
    word->callback([options, &status] {
        status = options->strict ? runStrict(*options) : runRegisters(*options);
    });
}

} // namespace host
