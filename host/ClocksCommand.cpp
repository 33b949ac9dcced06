// hbs clocks: solves clock tree files.

#include <atomic>
#include <csignal>
#include <ctime>

#include "host/Command.h"
#include "workbench/clocks/ClockBatch.h"
#include "workbench/clocks/export/ClockExport.h"
#include "workbench/requests/ClockRequest.h"

namespace host {

namespace {

/// Ctrl-C ends the batch with what is done, and the program where that takes too long for its user.
/// One key may come as two signals, from the terminal and from a parent that hands it on. A shell
/// that starts the program in the background has the signal ignored, which stays so.
class InterruptsBatch {
public:
    InterruptsBatch() : m_before(std::signal(SIGINT, SIG_IGN)) {
        if (m_before != SIG_IGN)
            std::signal(SIGINT, interrupt);
    }
    ~InterruptsBatch() { std::signal(SIGINT, m_before); }
    InterruptsBatch(const InterruptsBatch&) = delete;
    InterruptsBatch& operator=(const InterruptsBatch&) = delete;

private:
    static void interrupt(int signal) {
        const std::time_t now = std::time(nullptr);
        std::time_t first = 0;
        if (!s_first.compare_exchange_strong(first, now) && now - first > 1)
            std::signal(signal, SIG_DFL), std::raise(signal);
        tq::interruptClockBatch();
    }

    void (*m_before)(int);
    static inline std::atomic<std::time_t> s_first = 0;
};

} // namespace

void declareClocks(CLI::App& app, Outcome& outcome) {
    CLI::App* word = app.add_subcommand("clocks", "Solves a clock tree file");
    const auto options = std::make_shared<tq::ClockRequest>();
    // An empty value, of a variable that isn't set, mustn't look like an option that isn't given.
    const auto isGiven = [](const std::string& value) {
        return value.empty() ? std::string("expected a value") : std::string();
    };
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
                     "Checks the setting of this file, as --json prints one, against every rule")
        ->check(isGiven);
    word->add_option("--sweep", options->sweep,
                     "Solves the tree for several values: SUBJECT=VALUE,FIRST:LAST:STEP,... of "
                     "reference, max_cross, PLL.max, PERIPHERAL.mhz or PERIPHERAL.max_error")
        ->check(isGiven);
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
                     "Draws the solved tree, or what a sweep found, into a file")
        ->check(isGiven);
    word->add_option("--html", options->pagePath,
                     "Writes a page with the picture, the table and the conflicts or alternatives")
        ->check(isGiven);
    word->callback([options, &outcome] {
        // A single search ends with the process.
        const std::unique_ptr<InterruptsBatch> interrupts =
            options->isBatch() ? std::make_unique<InterruptsBatch>() : nullptr;
        outcome = options->run(console());
    });
}

} // namespace host
