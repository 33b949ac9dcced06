// What the words of `hbs` share: how they are declared, how they end.
#pragma once

#include <memory>

#include <CLI/CLI.hpp>

#include "host/Program.h"
#include "workbench/files/InputError.h"
#include "workbench/requests/Console.h"

namespace host {

using tq::InputError;
using tq::Outcome;

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

} // namespace host
