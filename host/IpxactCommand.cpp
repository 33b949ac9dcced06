// hbs ipxact map DESIGN: what each initiator of a design sees.

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "host/Command.h"
#include "workbench/ipxact/DesignMap.h"

namespace host {

namespace {

struct Options {
    std::string file;
    std::vector<std::string> libraries;
    bool json = false;
};

Outcome runMap(const Options& options) {
    tq::DiagnosticList findings(options.json ? tq::DiagnosticList::kMost : tq::kMostFindings);
    const tq::ipxact::Design design =
        tq::ipxact::readDesign(options.file, options.libraries, findings.sink());
    const auto spaces = tq::ipxact::mapDesign(design, findings.sink());
    std::cout << (options.json ? tq::ipxact::designMapJson(spaces, findings.all())
                               : tq::ipxact::designMapTable(spaces));
    if (!options.json)
        console().print(findings);
    return spaces.empty() ? Outcome::Nothing : Outcome::Found;
}

} // namespace

void declareIpxact(CLI::App& app, Outcome& outcome) {
    auto options = std::make_shared<Options>();
    CLI::App* const word = app.add_subcommand("ipxact", "Designs of IP-XACT components");
    word->require_subcommand(1);
    CLI::App* const map = word->add_subcommand(
        "map", "Shows what each initiator of a design sees at which addresses");
    map->add_option("DESIGN", options->file, "Design, design configuration or component")
        ->required();
    map->add_option("--library", options->libraries, "Folder of components and designs");
    map->add_flag("--json", options->json, "Prints JSON for programs");
    map->callback([options, &outcome] { outcome = runMap(*options); });
}

} // namespace host
