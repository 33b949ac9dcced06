// hbs clocks: solves a clock tree file.

#include <iostream>
#include <memory>
#include <sstream>

#include "host/ClockTree.h"
#include "host/Command.h"
#include "host/clocks_report.h"

namespace host {

namespace {

struct Options {
    std::string path;
    bool json = false;
};

/// Collects what the library says on standard output, so that the output stays the report's.
class LibraryTexts {
public:
    LibraryTexts() : m_before(std::cout.rdbuf(m_texts.rdbuf())) {}
    ~LibraryTexts() { std::cout.rdbuf(m_before); }
    LibraryTexts(const LibraryTexts&) = delete;
    LibraryTexts& operator=(const LibraryTexts&) = delete;

    /// Without the last line end.
    [[nodiscard]] std::string text() const {
        std::string text = m_texts.str();
        text.erase(text.find_last_not_of('\n') + 1);
        return text;
    }

private:
    std::ostringstream m_texts;
    std::streambuf* m_before;
};

/// A tree that the solver refuses is a fault of the file, said in the library's words.
void validate(const JsonFile& file, const hbs_clocking::HBSClockingAlgo& solver) {
    const LibraryTexts texts;
    if (!solver.validateConfig())
        file.fail(file.require(file.root(), "domains").offset, texts.text());
}

int solve(const Options& options) {
    const JsonFile file = JsonFile::read(options.path);
    const ClockTree tree = readClockTree(file);
    const auto solver = buildClockSolver(tree);
    validate(file, *solver);
    std::string said;
    {
        const LibraryTexts texts;
        solver->runSolution();
        said = texts.text();
    }
    if (!said.empty())
        std::cerr << "hbs: " << said << '\n';
    const ClockReport report = makeClockReport(tree, *solver);
    if (options.json)
        printClockJson(report, std::cout);
    else
        printClockTables(report, std::cout);
    return report.found ? kSuccess : kNoResult;
}

} // namespace

void declareClocks(CLI::App& app, int& status) {
    CLI::App* word = app.add_subcommand("clocks", "Solves a clock tree file");
    const auto options = std::make_shared<Options>();
    word->add_option("TREE.json", options->path, "The clock tree")->required();
    word->add_flag("--json", options->json, "Prints the result for programs");
    word->callback([options, &status] { status = solve(*options); });
}

} // namespace host
