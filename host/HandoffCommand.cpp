// hbs handoff JOB.json: writes a hardware handoff and reports on it, or checks what it is made of.

#include <iostream>
#include <memory>
#include <string>

#include "host/Command.h"
#include "workbench/files/OutputFile.h"
#include "workbench/handoff/HandoffJob.h"
#include "workbench/text/DiagnosticText.h"
#include "workbench/text/Text.h"

namespace host {

namespace {

struct Options {
    std::string job;
    std::string output;
    bool noTimeStamp = false;
    bool check = false;
    bool json = false;
};

int reportIncomplete(const tq::HandoffJob& job) {
    std::cerr << "hbs: " << tq::printable(job.connectivity)
              << R"(: "metadata", its cell, "slaves" or "masters" is missing, )"
              << "so the handoff isn't complete\n";
    return kNoResult;
}

int writeHandoff(const Options& options) {
    const tq::HandoffJob job = tq::readHandoffJob(options.job);
    tq::refuseInput(options.output, {options.job, job.connectivity});
    const tq::HandoffReport report = tq::runHandoff(job, options.output, !options.noTimeStamp);
    std::cout << (options.json ? tq::handoffJson(report) : tq::handoffTables(report));
    return report.isComplete ? kSuccess : reportIncomplete(job);
}

/// A person who asks for the findings gets them all.
int checkHandoff(const Options& options) {
    tq::DiagnosticList findings;
    const tq::HandoffJob job = tq::readHandoffJob(options.job, findings.sink());
    (void)tq::decideHandoff(job, findings.sink());
    if (options.json)
        std::cout << tq::diagnosticsJson(findings.all());
    else
        printFindings(findings);
    if (!options.json)
        std::cout << tq::printable(options.job) << ": findings: " << findings.count() << '\n';
    return findings.count() == 0 ? kSuccess : kNoResult;
}

int run(const Options& options) {
    if (options.check)
        return checkHandoff(options);
    if (options.output.empty())
        throw InputError("-o FILE or --check is required");
    return writeHandoff(options);
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
    auto* output = command->add_option("-o,--output", options->output, "Where the document goes")
                       ->type_name("FILE");
    command->add_flag("--no-time-stamp", options->noTimeStamp,
                      "Leaves the time out, so that equal jobs give equal files");
    command
        ->add_flag("--check", options->check,
                   "Writes nothing but what got lost or looks wrong, with file, line and column")
        ->excludes(output);
    command->add_flag("--json", options->json, "Prints JSON for programs");
    command->callback([options, &status] { status = run(*options); });
}

} // namespace host
