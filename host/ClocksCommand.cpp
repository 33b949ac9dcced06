// hbs clocks: solves a clock tree file.

#include <unistd.h>

#include <iostream>
#include <memory>

#include "HPAParamMgr.h"

#include "host/Command.h"
#include "workbench/clocks/ClockCheck.h"
#include "workbench/clocks/ClockReport.h"
#include "workbench/clocks/ClockRun.h"
#include "workbench/clocks/ClockTree.h"
#include "workbench/files/OutputFile.h"
#include "workbench/text/DiagnosticText.h"
#include "workbench/text/TextStream.h"

namespace host {

namespace {

struct Options {
    std::string path;
    bool json = false;
    bool explain = false;
    int threads = 1; ///< one number everywhere, as near ties are decided by the split
    std::string picturePath;
    std::string settingPath;
};

/// Shows a waiting person where the search is.
void announceStep(float tolerance) {
    std::cerr << "hbs: searching at tolerance " << tolerance << '\n';
}

void writePicture(const std::string& path, const tq::ClockReport& report, float referenceMhz) {
    tq::TextStream picture;
    tq::printClockPicture(report, referenceMhz, picture);
    tq::writeOutput(path, picture.view());
}

/// A tree that the solver refuses is a fault of the file, said in the library's words.
tq::ClockTree readTree(const std::string& path) {
    const tq::JsonFile file = tq::JsonFile::read(path);
    tq::ClockTree tree = tq::readClockTree(file);
    if (const std::string fault = tq::faultOfClockTree(tree); !fault.empty())
        file.fail(file.require(file.root(), "domains").offset, fault);
    return tree;
}

int check(const Options& options, const tq::ClockTree& tree) {
    tq::ClockCheck result = tq::checkClockSetting(tree, tq::JsonFile::read(options.settingPath));
    tq::addBestSum(result, tree);
    if (options.json) {
        tq::printClockCheckJson(result, std::cout);
    } else {
        printFindings(result.findings);
        tq::printClockCheck(result, std::cout);
    }
    return result.holds() ? kSuccess : kNoResult;
}

int solve(const Options& options) {
    tq::refuseInput(options.picturePath, {options.path});
    const tq::ClockTree tree = readTree(options.path);
    if (!options.settingPath.empty())
        return check(options, tree);
    HPAParamMgr::getParamMgr()->setValue("general.maxThreads", std::to_string(options.threads));
    tq::StepObserver observer;
    if (isatty(STDERR_FILENO) != 0)
        observer = announceStep;
    const tq::ClockRun run = tq::runClockTree(tree, observer);
    for (const std::string& line : run.said)
        std::cerr << "hbs: " << line << '\n';
    tq::ClockReport report = tq::makeClockReport(tree, *run.solver);
    tq::addConflicts(report, tree);
    if (options.explain)
        tq::addSearch(report, *run.solver, tree.pllCount);
    for (const tq::Diagnostic& warning : tq::warningsOf(report))
        std::cerr << "hbs: " << tq::describe(warning);
    if (options.json)
        tq::printClockJson(report, std::cout);
    else
        tq::printClockTables(report, std::cout);
    if (report.found && !options.picturePath.empty())
        writePicture(options.picturePath, report, tree.referenceMhz);
    return report.found ? kSuccess : kNoResult;
}

} // namespace

void declareClocks(CLI::App& app, int& status) {
    CLI::App* word = app.add_subcommand("clocks", "Solves a clock tree file");
    const auto options = std::make_shared<Options>();
    word->add_option("TREE.json", options->path, "The clock tree")->required();
    word->add_flag("--json", options->json, "Prints the result for programs");
    word->add_flag("--explain", options->explain,
                   "Says how many combinations there were and how many were looked at");
    word->add_option("--threads", options->threads, "Threads for trees of four and six PLLs")
        ->check(CLI::Range(1, 1024))
        ->capture_default_str();
    word->add_option("--check", options->settingPath,
                     "Checks the setting of this file, as --json prints one, against every rule");
    word->add_option("--svg", options->picturePath, "Draws the solved tree into a file");
    word->callback([options, &status] { status = solve(*options); });
}

} // namespace host
