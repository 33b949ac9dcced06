// hbs handoff: writes a hardware handoff and reports on it, checks it, shows its maps and nets, and
// compares documents.

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "host/Command.h"
#include "workbench/addressing/export/MapExport.h"
#include "workbench/files/OutputFile.h"
#include "workbench/handoff/HandoffDiff.h"
#include "workbench/handoff/HandoffJob.h"
#include "workbench/handoff/HandoffMap.h"
#include "workbench/handoff/HandoffNet.h"
#include "workbench/text/DiagnosticText.h"
#include "workbench/text/Text.h"

namespace host {

namespace {

struct Options {
    std::string job;
    std::string output;
    std::string net;
    std::string master;
    std::vector<std::string> exports;
    std::vector<std::string> documents;
    bool noTimeStamp = false;
    bool check = false;
    bool map = false;
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

void exportMaps(const Options& options, const tq::HandoffJob& job,
                const std::vector<tq::HandoffMap>& maps, const std::string& name) {
    tq::DiagnosticList findings(kMostFindings);
    for (const std::string& path : options.exports) {
        tq::refuseInput(path, {options.job, job.connectivity});
        tq::writeOutput(path,
                        tq::exportMapAs(path, tq::handoffMapModel(maps, name, findings.sink()),
                                        findings.sink()));
    }
    printFindings(findings);
}

int showMap(const Options& options) {
    const tq::HandoffJob job = tq::readHandoffJob(options.job);
    const auto handoff = tq::decideHandoff(job);
    const auto maps = tq::handoffMaps(*handoff, options.master);
    std::cout << (options.json ? tq::handoffMapJson(maps) : tq::handoffMapTables(maps));
    exportMaps(options, job, maps, handoff->topName());
    return maps.empty() ? kNoResult : kSuccess;
}

int showNet(const Options& options) {
    const auto handoff = tq::decideHandoff(tq::readHandoffJob(options.job));
    const tq::HandoffNet net = tq::findNet(*handoff, options.net);
    std::cout << (options.json ? tq::netJson(net) : tq::netTables(net));
    return kSuccess;
}

int showDifferences(const Options& options) {
    const auto differences = tq::diffHandoffs(options.documents[0], options.documents[1]);
    std::cout << (options.json ? tq::handoffDiffJson(differences)
                               : tq::handoffDiffTable(differences));
    return differences.empty() ? kSuccess : kNoResult;
}

int run(const Options& options) {
    if (!options.documents.empty())
        return showDifferences(options);
    if (options.job.empty())
        throw InputError("JOB.json or --diff A B is required");
    if (options.check)
        return checkHandoff(options);
    if (options.map)
        return showMap(options);
    if (!options.net.empty())
        return showNet(options);
    if (options.output.empty())
        throw InputError("-o FILE, --check, --map or --net is required");
    return writeHandoff(options);
}

} // namespace

void declareHandoff(CLI::App& app, int& status) {
    auto* command = app.add_subcommand("handoff", "Writes the hardware handoff document, or shows "
                                                  "what is in it");
    auto options = std::make_shared<Options>();
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
    command->callback([options, &status] { status = run(*options); });
}

} // namespace host
