// What the words of `hbs` share: how they are declared, how they end.
#pragma once

#include <functional>
#include <memory>

#include <CLI/CLI.hpp>

#include "workbench/files/InputError.h"
#include "workbench/requests/Console.h"

namespace host {

using tq::InputError;
using tq::Outcome;

/// Exit statuses of the program.
enum ExitStatus {
    kSuccess = 0,  ///< a result was found and printed
    kNoResult = 1, ///< the input is good, but there is no result
    kBadInput = 2, ///< bad command line or bad file
};

/// The program's own standard streams.
[[nodiscard]] tq::Console console();

/// Gives a word its work: runs the request, which its options were bound to, when it was given.
template <class Request>
void bindRequest(CLI::App& word, const std::shared_ptr<Request>& request, Outcome& outcome) {
    word.callback([request, &outcome] { outcome = request->run(console()); });
}

// Each declares its word with its options on `app`. The word's callback does the work, leaves its
// outcome in `outcome` and raises `InputError` where the input can't be used.
void declareClocks(CLI::App& app, Outcome& outcome);
void declareDefine(CLI::App& app, Outcome& outcome);
void declareCdo(CLI::App& app, Outcome& outcome);
void declareHardblock(CLI::App& app, Outcome& outcome);
void declareHandoff(CLI::App& app, Outcome& outcome);
void declareAddressing(CLI::App& app, Outcome& outcome);
void declareRegisters(CLI::App& app, Outcome& outcome);
void declareIpxact(CLI::App& app, Outcome& outcome);
void declareImport(CLI::App& app, Outcome& outcome);

/// The whole program: gives its exit status, and raises nothing.
int runProgram(int argc, char** argv) noexcept;

} // namespace host
