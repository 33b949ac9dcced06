// hbs define DIR NAME: compiles the tables of a hard block, and tells what became of them.

#include <iostream>
#include <memory>
#include <string>

#include "host/Command.h"
#include "workbench/addressing/DefinitionReport.h"

namespace host {

namespace {

struct Options {
    std::string directory;
    std::string name;
    bool write = false;
    bool registers = false;
    bool json = false;
};

Outcome runDefine(const Options& options) {
    tq::DiagnosticList findings(options.json ? tq::DiagnosticList::kMost : tq::kMostFindings);
    tq::CompiledDefinition definition =
        tq::compileDefinition(options.directory, options.name, findings.sink());
    if (options.write)
        tq::writeDefinition(definition);
    std::cout << (options.json ? tq::definitionJson(definition, findings.all())
                               : tq::definitionTables(definition, options.registers));
    if (!options.json)
        console().print(findings);
    return Outcome::Found;
}

} // namespace

void declareDefine(CLI::App& app, Outcome& outcome) {
    auto options = std::make_shared<Options>();
    CLI::App* word = app.add_subcommand(
        "define", "Compiles the tables of a hard block and tells what became of them");
    word->add_option("DIR", options->directory, "Folder of the hard blocks")->required();
    word->add_option("NAME", options->name, "The hard block: its tables lie in DIR/NAME/data")
        ->required();
    word->add_flag("--write", options->write, "Writes DIR/NAME/NAME.bmj");
    word->add_flag("--registers", options->registers, "Shows each register");
    word->add_flag("--json", options->json, "Prints JSON for programs");
    word->callback([options, &outcome] { outcome = runDefine(*options); });
}

} // namespace host
