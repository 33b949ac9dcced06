#include "workbench/clocks/ClockRun.h"

#include <algorithm>
#include <iostream>
#include <streambuf>

#include "workbench/clocks/ClockReport.h"
#include "workbench/text/TextStream.h"

namespace tq {

namespace {

/// What the library said on this thread: lines as they came, each kept once.
struct Said {
    std::string open; ///< the line that hasn't ended yet
    std::vector<std::string> lines;
};

[[nodiscard]] Said& saidHere() {
    thread_local Said said;
    return said;
}

} // namespace

struct LibraryTexts::Buffer : std::streambuf {
    int_type overflow(int_type character) override {
        const char c = traits_type::to_char_type(character);
        return xsputn(&c, 1) == 1 ? character : traits_type::eof();
    }

    std::streamsize xsputn(const char* text, std::streamsize length) override {
        for (std::streamsize i = 0; i < length; ++i)
            put(text[i]);
        return length;
    }

    // A solver may say the same once for each of a million settings.
    static void put(char c) {
        Said& said = saidHere();
        if (c != '\n') {
            said.open += c;
            return;
        }
        if (std::find(said.lines.begin(), said.lines.end(), said.open) == said.lines.end())
            said.lines.push_back(said.open);
        said.open.clear();
    }
};

LibraryTexts::LibraryTexts()
    : m_buffer(std::make_unique<Buffer>()), m_before(std::cout.rdbuf(m_buffer.get())) {
    saidHere() = {};
}

LibraryTexts::~LibraryTexts() {
    std::cout.rdbuf(m_before);
}

std::vector<std::string> LibraryTexts::takeLines() {
    // The stream swallows what its buffer raises.
    if (std::cout.bad())
        throw std::bad_alloc();
    Said& said = saidHere();
    if (!said.open.empty())
        Buffer::put('\n');
    return std::exchange(said.lines, {});
}

std::string faultOfClockTree(const ClockTree& tree) {
    const auto solver = buildClockSolver(tree);
    LibraryTexts texts;
    if (solver->validateConfig())
        return {};
    std::string fault;
    for (const std::string& line : texts.takeLines())
        fault += (fault.empty() ? "" : "\n") + line;
    return fault;
}

ClockRun runClockTree(const ClockTree& tree, const StepObserver& observer, LibraryTexts* texts,
                      const hbs_clocking::SearchTerms& terms) {
    if (texts == nullptr) {
        LibraryTexts own;
        return runClockTree(tree, observer, &own, terms);
    }
    ClockRun run{buildClockSolver(tree, observer), {}};
    run.solver->setSharesSolutions(false);
    run.solver->setTerms(terms);
    run.solver->runSolution();
    run.said = texts->takeLines();
    return run;
}

bool meetsAllRequests(const ClockTree& tree, const hbs_clocking::HBSClockingAlgo& solver) {
    if (!solver.is_result_found())
        return false;
    const ClockReport report = makeClockReport(tree, solver);
    return std::none_of(report.peripherals.begin(), report.peripherals.end(),
                        [](const ClockReport::Peripheral& line) { return line.isBeyondAllowed(); });
}

} // namespace tq
