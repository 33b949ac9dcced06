// hbs addressing: a definition, a config, and the address map that comes of them.

#include "host/Command.h"
#include "workbench/addressing/export/MapExport.h"
#include "workbench/requests/AddressingRequest.h"

namespace host {

void declareAddressing(CLI::App& app, Outcome& outcome) {
    const auto options = std::make_shared<tq::AddressingRequest>();
    CLI::App* const word = app.add_subcommand(
        "addressing", "Configures a hard block subsystem and prints its address map");
    word->add_option("VLNV", options->vlnv, "The hard block, vendor:library:name:version");
    word->add_option("--data", options->data, "The data area that holds mirrel/hardblocks")
        ->envname("TQ_DATA_PATH");
    word->add_option("--config", options->configs,
                     "Parameters, register values and assigns (JSON); two are compared")
        ->allow_extra_args(false);
    word->add_option("--compare", options->saved, "Compares two maps that --map wrote")
        ->expected(2);
    word->add_flag("--json", options->isJson, "Prints the map or the answers as JSON");
    word->add_option("--report", options->report,
                     "Writes the addressing report to a file, or - for the output");
    word->add_flag("--registers", options->hasRegisters, "Shows each register, in exports too");
    word->add_flag("--check", options->isCheck, "Lists what is wrong; ends with 1 for an error");
    word->add_option("--allow", options->allowed, "Leaves out a finding: KIND or KIND:NAME")
        ->allow_extra_args(false);
    word->add_option("--at", options->at, "Says what lies at an address");
    word->add_option("--from", options->from, "Asks for one initiator, such as cpu0");
    word->add_option("--find", options->find, "Says where what matches a pattern lies");
    word->add_option("--why", options->why, "Says why a sub-block or an interface is on or off");
    word->add_option("--map", options->map,
                     "Writes the map as JSON to a file, or - for the output");
    word->add_option("--svg", options->svg, "Draws the address spaces");
    word->add_option("--html", options->html, "Writes a page to explore the map in a browser");
    word->add_option("--export", options->exports,
                     "Writes the map for other tools, by the ending: " + tq::mapFormatEndings())
        ->allow_extra_args(false);
    bindRequest(*word, options, outcome);
}

} // namespace host
