// hbs handoff JOB.json -o FILE: writes a hardware handoff and reports on it.

#include <iostream>
#include <memory>
#include <string>

#include "host/Command.h"
#include "workbench/files/OutputFile.h"
#include "workbench/handoff/HandoffJob.h"
#include "workbench/text/Text.h"

namespace host {

namespace {

struct Options {
    std::string job;
    std::string output;
    bool noTimeStamp = false;
    bool json = false;
};

int run(const Options& options) {
    const tq::HandoffJob job = tq::readHandoffJob(options.job);
    tq::refuseInput(options.output, {options.job, job.connectivity});
    const tq::HandoffReport report = tq::runHandoff(job, options.output, !options.noTimeStamp);
    std::cout << (options.json ? tq::handoffJson(report) : tq::handoffTables(report));
    if (report.isComplete)
        return kSuccess;
    std::cerr << "hbs: " << tq::printable(job.connectivity)
              << R"(: "metadata", its cell, "slaves" or "masters" is missing, )"
              << "so the handoff isn't complete\n";
    return kNoResult;
}

} // namespace

void declareHandoff(CLI::App& app, int& status) {
    auto* command = app.add_subcommand("handoff", "Writes the hardware handoff document");
    auto options = std::make_shared<Options>();
    command
        ->add_option(
            "job", options->job,
            "JSON file with \"connectivity\" (a path), \"system\" and \"design\" (texts by "
            "name), \"split_by_cells\" (true or false)")
        ->required()
        ->type_name("JOB.json");
    command->add_option("-o,--output", options->output, "Where the document goes")
        ->required()
        ->type_name("FILE");
    command->add_flag("--no-time-stamp", options->noTimeStamp,
                      "Leaves the time out, so that equal jobs give equal files");
    command->add_flag("--json", options->json, "Prints JSON for programs");
    command->callback([options, &status] { status = run(*options); });
}

} // namespace host
