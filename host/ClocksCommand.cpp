// hbs clocks: solves a clock tree file.

#include <unistd.h>

#include <iostream>
#include <memory>

#include "HPAParamMgr.h"

#include "host/Command.h"
#include "workbench/clocks/ClockCheck.h"
#include "workbench/clocks/ClockReport.h"
#include "workbench/clocks/ClockRun.h"
#include "workbench/clocks/ClockSweep.h"
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
    std::string sweep;
};

/// Shows a waiting person where the search is.
void announceStep(float tolerance) {
    std::cerr << "hbs: searching at tolerance " << tolerance << '\n';
}

/// Writes what `print` prints, if a file was asked for.
template <class Print>
void writeFile(const std::string& path, Print print) {
    if (path.empty())
        return;
    tq::TextStream text;
    print(text);
    tq::writeOutput(path, text.view());
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

int sweep(const Options& options, const tq::ClockTree& tree) {
    const tq::ClockSweep sweep = tq::readClockSweep(tree, options.sweep);
    const std::vector<tq::SweepPoint> points = tq::runClockSweep(tree, sweep);
    if (options.json)
        tq::printClockSweepJson(sweep, points, std::cout);
    else
        tq::printClockSweep(sweep, points, std::cout);
    writeFile(options.picturePath,
              [&](std::ostream& out) { tq::printClockSweepPicture(sweep, points, out); });
    return tq::bestPoint(points) != nullptr ? kSuccess : kNoResult;
}

int solve(const Options& options) {
    tq::refuseInput(options.picturePath, {options.path});
    const tq::ClockTree tree = readTree(options.path);
    if (!options.settingPath.empty())
        return check(options, tree);
    if (!options.sweep.empty())
        return sweep(options, tree);
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
    if (report.found)
        writeFile(options.picturePath, [&](std::ostream& out) {
            tq::printClockPicture(report, tree.referenceMhz, out);
        });
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
    word->add_option("--sweep", options->sweep,
                     "Solves the tree for several values: SUBJECT=VALUE,FIRST:LAST:STEP,... of "
                     "reference, max_cross, PLL.max, PERIPHERAL.mhz or PERIPHERAL.max_error");
    word->add_option("--svg", options->picturePath,
                     "Draws the solved tree, or what a sweep found, into a file");
    word->callback([options, &status] { status = solve(*options); });
}

} // namespace host
