// hbs registers FILE: the registers that the library finds in a description file, and where its
// reader stopped.

#include <iostream>
#include <memory>
#include <string>

#include "host/Command.h"
#include "workbench/registers/RegisterReport.h"

namespace host {

namespace {

struct Options {
    std::string file;
    std::string match = "*";
    bool json = false;
};

int runRegisters(const Options& options) {
    tq::DiagnosticList findings(options.json ? tq::DiagnosticList::kMost : kMostFindings);
    const tq::RegisterList list = tq::listRegisters(options.file, options.match, findings.sink());
    std::cout << (options.json ? tq::registerJson(list, findings.all()) : tq::registerTable(list));
    printFindings(findings);
    return list.registers.empty() ? kNoResult : kSuccess;
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
