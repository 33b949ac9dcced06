// hbs hardblock: the hard blocks of a metadata file; pins, interfaces and port maps of one.

#include "host/Command.h"
#include "workbench/requests/HardBlockRequest.h"

namespace host {

void declareHardblock(CLI::App& app, Outcome& outcome) {
    auto options = std::make_shared<tq::HardBlockRequest>();
    CLI::App* command = app.add_subcommand(
        "hardblock", "Lists hard blocks, or the pins, interfaces and port maps of one");
    command->add_option("FILE", options->file, "Hard block metadata (JSON)")->required();
    CLI::Option* name = command->add_option(
        "NAME", options->name, "Name of a hard block in it; without one, all are listed");
    CLI::Option* port = command
                            ->add_option("--port", options->port,
                                         "INTERFACE:PORT, such as M_AXI:AWADDR[6] or "
                                         "M_AXI:AWADDR[7:4]: the pins behind those bits")
                            ->needs(name);
    command
        ->add_flag("--tree", options->tree,
                   "Shows interfaces, their logical ports and the physical pins")
        ->needs(name)
        ->excludes(port);
    command->add_flag("--json", options->json, "Prints JSON for programs");
    bindRequest(*command, options, outcome);
}

} // namespace host
