#include "host/Program.h"

#include <unistd.h>

#include <array>
#include <exception>
#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "host/Command.h"
#include "host/Manual.h"
#include "tq_version.h"
#include "workbench/text/DiagnosticText.h"
#include "workbench/text/MessageFinding.h"
#include "workbench/text/Text.h"

namespace host {

namespace {

ExitStatus statusOf(Outcome outcome) {
    switch (outcome) {
    case Outcome::Found:
        return kSuccess;
    case Outcome::Nothing:
        return kNoResult;
    default:
        return kBadInput;
    }
}

/// The status to exit with.
int finishOutput(int status) {
    if (std::cout.flush())
        return status;
    std::cerr << "hbs: the output can't be written\n";
    return kNoOutput;
}

/// Calls `print`, which needs memory of its own.
template <class Print>
void complain(Print print) noexcept {
    try {
        print();
    } catch (const std::bad_alloc&) {
        std::cerr << "hbs: out of memory\n";
    }
}

/// A finding with a place has its own headline; one without is the program's.
void printError(const tq::Diagnostic& diagnostic) {
    std::cerr << (diagnostic.place.file.empty() ? "hbs: " : "") << tq::describe(diagnostic);
}

/// Messages hold names and script errors out of files, which mustn't reach a terminal raw. Entry
/// and exit lines are for the library's developers.
void printMessage(const ComMsg& message) {
    if (message.scope != "cdo.gen")
        std::cerr << tq::describe(tq::findingOf(message));
}

/// `App::get_option_no_throw` would end the program where memory runs out: it allocates.
bool hasJsonFlag(const CLI::App& word) {
    for (const CLI::Option* option : word.get_options())
        if (option->get_expected_max() == 0 && option->count() != 0 &&
            option->get_lnames() == std::vector<std::string>{"json"})
            return true;
    return false;
}

/// Whether a word that was given, or one below it, has a flag --json, and it was given too.
bool isJsonWanted(const CLI::App& app) {
    for (const CLI::App* word : app.get_subcommands())
        if (hasJsonFlag(*word) || isJsonWanted(*word))
            return true;
    return false;
}

/// Streams, such as those that the help is put together with, swallow what memory failures raise.
bool g_ranOutOfMemory = false;

[[noreturn]] void noteOutOfMemory() {
    g_ranOutOfMemory = true;
    throw std::bad_alloc();
}

/// The words that tell of the others.
void declareHelp(CLI::App& app) {
    auto* const help = app.add_subcommand("help", "Shows the options of a word");
    const auto asked = std::make_shared<std::string>();
    help->add_option("WORD", *asked, "One of the words");
    help->callback([&app, asked] {
        if (asked->empty()) {
            std::cout << overview(app);
            return;
        }
        const std::array line{"hbs", asked->c_str()};
        refuseUnknownNames(app, static_cast<int>(line.size()), line.data());
        std::cout << app.get_subcommand(*asked)->help();
    });
    auto* const manual = app.add_subcommand("manual", "Prints the manual page, for man -l -");
    manual->callback([&app] { std::cout << manualPage(app); });
    auto* const completion = app.add_subcommand("completion", "Prints the completion of a shell");
    const auto shell = std::make_shared<std::string>();
    completion->add_option("SHELL", *shell, "bash, zsh or fish")->required();
    completion->callback([&app, shell] { std::cout << completionScript(app, *shell); });
}

int parseAndRun(int argc, char** argv) {
    const tq::MessageScope messages(printMessage);
    CLI::App app("Knows the hard blocks of a programmable device.", "hbs");
    app.require_subcommand(1);
    app.set_version_flag("--version", TQ_VERSION_STRING);
    Outcome outcome = Outcome::Found;
    declareClocks(app, outcome);
    declareDefine(app, outcome);
    declareCdo(app, outcome);
    declareHardblock(app, outcome);
    declareHandoff(app, outcome);
    declareAddressing(app, outcome);
    declareRegisters(app, outcome);
    declareIpxact(app, outcome);
    declareImport(app, outcome);
    declareHelp(app);
    if (argc == 1) {
        std::cout << overview(app);
        return finishOutput(kSuccess);
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0 && !g_ranOutOfMemory)
            refuseUnknownNames(app, argc, argv); // a mistyped name is the likeliest cause
        const int status = app.exit(error);
        if (g_ranOutOfMemory)
            throw std::bad_alloc();
        return status == 0 ? finishOutput(kSuccess) : kBadInput;
    } catch (const InputError& error) {
        if (isJsonWanted(app))
            std::cout << tq::errorJson(error.diagnostic()) << std::flush;
        throw;
    }
    return finishOutput(statusOf(outcome));
}

} // namespace

tq::Console console() {
    return {std::cout, std::cerr, isatty(STDERR_FILENO) != 0};
}

int runProgram(int argc, char** argv) noexcept {
    std::set_new_handler(noteOutOfMemory);
    g_ranOutOfMemory = false;
    try {
        return parseAndRun(argc, argv);
    } catch (const std::bad_alloc&) {
        std::cerr << "hbs: out of memory\n";
    } catch (const tq::OutputError& error) {
        complain([&] { printError(error.diagnostic()); });
        return kNoOutput;
    } catch (const InputError& error) {
        complain([&] { printError(error.diagnostic()); });
        return kBadInput;
    } catch (const std::exception& error) {
        complain([&] { std::cerr << "hbs: " << tq::printable(error.what()) << '\n'; });
    }
    return kNoResult;
}

} // namespace host
