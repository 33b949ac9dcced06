// hbs import FILE... -o DATA_AREA: components and designs as definitions of hard blocks.

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "host/Command.h"
#include "workbench/ipxact/BlockImport.h"

namespace host {

namespace {

struct Options {
    std::vector<std::string> files;
    tq::ipxact::ImportOptions import;
};

Outcome runImport(const Options& options) {
    tq::DiagnosticList findings(tq::kMostFindings);
    for (const std::string& file : options.files) {
        tq::ipxact::ImportSummary summary;
        const std::string written =
            tq::ipxact::importFile(file, options.import, summary, findings.sink());
        std::cout << written << ": " << tq::ipxact::importText(summary) << '\n';
    }
    console().print(findings);
    return Outcome::Found;
}

} // namespace

void declareImport(CLI::App& app, Outcome& outcome) {
    auto options = std::make_shared<Options>();
    CLI::App* const word = app.add_subcommand(
        "import", "Makes definitions of IP-XACT components and designs and of CMSIS-SVD devices");
    word->add_option("FILE", options->files, "Component, design or device")->required();
    word->add_option("-o,--output", options->import.area,
                     "The data area; definitions go below its mirrel/hardblocks")
        ->required();
    word->add_option("--library", options->import.libraries, "Folder of components and designs");
    word->add_flag("--tables", options->import.asTables,
                   "Writes the tables that hbs define compiles, not the compiled file");
    word->callback([options, &outcome] { outcome = runImport(*options); });
}

} // namespace host
