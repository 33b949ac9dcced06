// hbs clocks: solves a clock tree file.

#include <unistd.h>

#include <csignal>
#include <iostream>
#include <memory>

#include "HPAParamMgr.h"

#include "host/Command.h"
#include "workbench/clocks/ClockBatch.h"
#include "workbench/clocks/ClockCheck.h"
#include "workbench/clocks/ClockPage.h"
#include "workbench/clocks/ClockReport.h"
#include "workbench/clocks/ClockRun.h"
#include "workbench/clocks/ClockSweep.h"
#include "workbench/clocks/ClockTerms.h"
#include "workbench/clocks/ClockTree.h"
#include "workbench/clocks/export/ClockExport.h"
#include "workbench/files/OutputFile.h"
#include "workbench/text/DiagnosticText.h"
#include "workbench/text/TextStream.h"

namespace host {

namespace {

struct Options {
    std::vector<std::string> paths;
    bool json = false;
    bool explain = false;
    int threads = 1; ///< one number everywhere, as near ties are decided by the split
    std::string picturePath;
    std::string pagePath;
    std::string settingPath;
    std::string sweep;
    unsigned alternatives = 0;
    std::vector<std::string> pins;
    std::vector<std::string> weights;
    std::vector<std::string> exports;
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

hbs_clocking::SearchTerms termsOf(const Options& options, const tq::ClockTree& tree) {
    hbs_clocking::SearchTerms terms;
    for (const std::string& pin : options.pins)
        tq::addPin(tree, pin, terms);
    for (const std::string& weight : options.weights)
        tq::addWeight(tree, weight, terms);
    terms.settings = options.alternatives;
    return terms;
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

/// Ctrl-C ends the batch with what is done.
class InterruptsBatch {
public:
    InterruptsBatch() {
        std::signal(SIGINT, [](int) { tq::interruptClockBatch(); });
    }
    ~InterruptsBatch() { std::signal(SIGINT, SIG_DFL); }
    InterruptsBatch(const InterruptsBatch&) = delete;
    InterruptsBatch& operator=(const InterruptsBatch&) = delete;
};

int solveMany(const Options& options) {
    if (!options.settingPath.empty() || !options.sweep.empty() || options.alternatives != 0 ||
        !options.pins.empty() || !options.weights.empty() || !options.picturePath.empty() ||
        !options.pagePath.empty())
        throw InputError("several trees take --json and --export FILE.csv only");
    for (const std::string& path : options.exports)
        if (tq::clockFormatOf(path) != tq::ClockFormat::Csv)
            throw InputError("--export " + path + ": several trees are exported as .csv only");
    tq::ClockBatch batch;
    {
        const InterruptsBatch interrupts;
        batch = tq::runClockBatch(tq::findTrees(options.paths),
                                  isatty(STDERR_FILENO) != 0 ? &std::cerr : nullptr);
    }
    if (options.json)
        tq::printClockBatchJson(batch, std::cout);
    else
        tq::printClockBatch(batch, std::cout);
    for (const std::string& path : options.exports)
        tq::writeOutput(path, tq::clockBatchCsv(batch));
    if (batch.failed != 0)
        return kBadInput;
    return batch.unsolved == 0 && !batch.isInterrupted ? kSuccess : kNoResult;
}

void writeExports(const Options& options, const tq::ClockTree& tree,
                  const tq::ClockReport& report) {
    tq::DiagnosticList findings;
    for (const std::string& path : options.exports)
        tq::writeOutput(path, tq::exportClocks(report, tree.referenceMhz, *tq::clockFormatOf(path),
                                               findings.sink()));
    printFindings(findings);
}

/// Before anything is solved or written.
void checkOutputs(const Options& options) {
    tq::refuseInput(options.picturePath, options.paths);
    tq::refuseInput(options.pagePath, options.paths);
    for (const std::string& path : options.exports) {
        tq::refuseInput(path, options.paths);
        if (!tq::clockFormatOf(path))
            throw InputError("--export " + path +
                             ": expected a file that ends in one of: " + tq::clockFormatEndings());
    }
}

int solve(const Options& options) {
    checkOutputs(options);
    if (options.paths.size() > 1 || tq::isFolder(options.paths.front()))
        return solveMany(options);
    const tq::ClockTree tree = readTree(options.paths.front());
    if (!options.settingPath.empty())
        return check(options, tree);
    if (!options.sweep.empty())
        return sweep(options, tree);
    HPAParamMgr::getParamMgr()->setValue("general.maxThreads", std::to_string(options.threads));
    tq::StepObserver observer;
    if (isatty(STDERR_FILENO) != 0)
        observer = announceStep;
    const hbs_clocking::SearchTerms terms = termsOf(options, tree);
    const tq::ClockRun run = tq::runClockTree(tree, observer, nullptr, terms);
    for (const std::string& line : run.said)
        std::cerr << "hbs: " << line << '\n';
    tq::ClockReport report = tq::makeClockReport(tree, *run.solver);
    if (terms.multipliers.empty() && terms.sources.empty())
        tq::addConflicts(report, tree);
    tq::addAlternatives(report, tree, *run.solver);
    if (options.explain)
        tq::addSearch(report, *run.solver, tree.pllCount);
    for (const tq::Diagnostic& warning : tq::warningsOf(report))
        std::cerr << "hbs: " << tq::describe(warning);
    if (options.json)
        tq::printClockJson(report, std::cout);
    else
        tq::printClockTables(report, std::cout);
    writeFile(options.pagePath, [&](std::ostream& out) {
        tq::printClockPage(report, tree.referenceMhz, options.paths.front(), out);
    });
    if (report.found)
        writeFile(options.picturePath, [&](std::ostream& out) {
            tq::printClockPicture(report, tree.referenceMhz, out);
        });
    if (report.found)
        writeExports(options, tree, report);
    return report.found ? kSuccess : kNoResult;
}

} // namespace

void declareClocks(CLI::App& app, int& status) {
    CLI::App* word = app.add_subcommand("clocks", "Solves a clock tree file");
    const auto options = std::make_shared<Options>();
    word->add_option("TREE.json", options->paths,
                     "The clock tree; several, or a folder, are solved on all cores")
        ->required();
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
    word->add_option("--alternatives", options->alternatives,
                     "Lists the best settings that differ in a multiplier or a source")
        ->check(CLI::Range(1, 100));
    word->add_option("--pin", options->pins,
                     "Keeps PLL.multiplier=NUMBER or PERIPHERAL.source=PLL; may be repeated")
        ->allow_extra_args(false);
    word->add_option("--weight", options->weights,
                     "Counts a peripheral's error so often in the sum: PERIPHERAL=WEIGHT; may be "
                     "repeated")
        ->allow_extra_args(false);
    word->add_option("--export", options->exports,
                     "Writes the solution for other tools, by the ending of the file: " +
                         tq::clockFormatEndings() + "; may be repeated")
        ->allow_extra_args(false);
    word->add_option("--svg", options->picturePath,
                     "Draws the solved tree, or what a sweep found, into a file");
    word->add_option("--html", options->pagePath,
                     "Writes a page with the picture, the table and the conflicts or alternatives");
    word->callback([options, &status] { status = solve(*options); });
}

} // namespace host
