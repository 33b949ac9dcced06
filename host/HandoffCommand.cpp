// hbs handoff: writes a hardware handoff and reports on it, checks it, shows its maps and nets, and
// compares documents.

#include "host/Command.h"
#include "workbench/addressing/export/MapExport.h"
#include "workbench/requests/HandoffRequest.h"

namespace host {

void declareHandoff(CLI::App& app, Outcome& outcome) {
    auto* command = app.add_subcommand("handoff", "Writes the hardware handoff document, or shows "
                                                  "what is in it");
    auto options = std::make_shared<tq::HandoffRequest>();
    auto* job = command->add_option(
        "job", options->job,
        "JSON file with \"connectivity\" (a path), \"system\" and \"design\" (texts by "
        "name), \"split_by_cells\" (true or false)");
    job->type_name("JOB.json");
    auto* output = command->add_option("-o,--output", options->output, "Where the document goes")
                       ->type_name("FILE");
    command->add_flag("--no-time-stamp", options->noTimeStamp,
                      "Leaves the time out, so that equal jobs give equal files");
    auto* check = command->add_flag(
        "--check", options->check,
        "Writes nothing but what got lost or looks wrong, with file, line and column");
    auto* map = command->add_flag("--map", options->map, "Shows the address map of each master");
    command->add_option("--master", options->master, "Shows only the map of this master")
        ->needs(map);
    command
        ->add_option("--export", options->exports,
                     "Writes the map for other tools, by the ending: " + tq::mapFormatEndings())
        ->needs(map)
        ->type_name("FILE");
    auto* net = command
                    ->add_option("--net", options->net,
                                 "Shows all that is on this port's net, and why it has its name")
                    ->type_name("MODULE.PORT");
    auto* diff = command
                     ->add_option("--diff", options->documents,
                                  "Compares two documents by their meaning, order aside")
                     ->expected(2)
                     ->type_name("A B");
    const std::vector<CLI::Option*> alternatives{output, check, map, net, diff};
    for (std::size_t i = 0; i < alternatives.size(); ++i)
        for (std::size_t j = i + 1; j < alternatives.size(); ++j)
            alternatives[i]->excludes(alternatives[j]);
    diff->excludes(job);
    command->add_flag("--json", options->json, "Prints JSON for programs");
    bindRequest(*command, options, outcome);
}

} // namespace host
