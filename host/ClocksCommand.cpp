// hbs clocks: solves a clock tree file.

#include <unistd.h>

#include <iostream>
#include <memory>
#include <new>

#include "HPAParamMgr.h"

#include "host/Command.h"
#include "workbench/clocks/ClockReport.h"
#include "workbench/clocks/ClockTree.h"
#include "workbench/files/OutputFile.h"
#include "workbench/text/TextStream.h"

namespace host {

namespace {

struct Options {
    std::string path;
    bool json = false;
    bool explain = false;
    int threads = 1; ///< one number everywhere, as near ties are decided by the split
    std::string picturePath;
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

/// Collects what the library says on standard output, so that the output stays the report's.
class LibraryTexts {
public:
    LibraryTexts() : m_before(std::cout.rdbuf(m_texts.rdbuf())) {}
    ~LibraryTexts() { std::cout.rdbuf(m_before); }
    LibraryTexts(const LibraryTexts&) = delete;
    LibraryTexts& operator=(const LibraryTexts&) = delete;

    /// Without the last line end. Raises `std::bad_alloc` if some of it found no memory.
    [[nodiscard]] std::string text() const {
        if (std::cout.bad())
            throw std::bad_alloc();
        std::string text = m_texts.str();
        text.erase(text.find_last_not_of('\n') + 1);
        return text;
    }

private:
    tq::TextStream m_texts;
    std::streambuf* m_before;
};

/// A tree that the solver refuses is a fault of the file, said in the library's words.
void validate(const tq::JsonFile& file, const hbs_clocking::HBSClockingAlgo& solver) {
    const LibraryTexts texts;
    if (!solver.validateConfig())
        file.fail(file.require(file.root(), "domains").offset, texts.text());
}

int solve(const Options& options) {
    tq::refuseInput(options.picturePath, {options.path});
    const tq::JsonFile file = tq::JsonFile::read(options.path);
    const tq::ClockTree tree = tq::readClockTree(file);
    HPAParamMgr::getParamMgr()->setValue("general.maxThreads", std::to_string(options.threads));
    tq::StepObserver observer;
    if (isatty(STDERR_FILENO) != 0)
        observer = announceStep;
    const auto solver = tq::buildClockSolver(tree, observer);
    validate(file, *solver);
    std::string said;
    {
        const LibraryTexts texts;
        solver->runSolution();
        said = texts.text();
    }
    if (!said.empty())
        std::cerr << "hbs: " << said << '\n';
    tq::ClockReport report = tq::makeClockReport(tree, *solver);
    if (options.explain) {
        const hbs_clocking::SearchStatistics& statistics = solver->getSearchStatistics();
        report.search = {statistics.combinations, statistics.evaluatedTuples};
    }
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
    word->add_option("--svg", options->picturePath, "Draws the solved tree into a file");
    word->callback([options, &status] { status = solve(*options); });
}

} // namespace host
