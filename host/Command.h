// What the words of `hbs` share: how they are declared, how they end.
#pragma once

#include <CLI/CLI.hpp>

#include "diagnostics/Diagnostic.h"
#include "workbench/files/InputError.h"

namespace host {

using tq::InputError;

/// Exit statuses of the program.
enum ExitStatus {
    kSuccess = 0,  ///< a result was found and printed
    kNoResult = 1, ///< the input is good, but there is no result
    kBadInput = 2, ///< bad command line or bad file
};

/// A person reads the first findings; the rest is counted.
inline constexpr std::size_t kMostFindings = 20;

/// Writes findings to the standard error stream as compilers do, and the count of those left out.
void printFindings(const tq::DiagnosticList& findings);

// Each declares its word with its options on `app`. The word's callback does the work, leaves the
// exit status in `status` and raises `InputError` where the input can't be used.
void declareClocks(CLI::App& app, int& status);
void declareDefine(CLI::App& app, int& status);
void declareCdo(CLI::App& app, int& status);
void declareHardblock(CLI::App& app, int& status);
void declareHandoff(CLI::App& app, int& status);
void declareAddressing(CLI::App& app, int& status);
void declareRegisters(CLI::App& app, int& status);
void declareIpxact(CLI::App& app, int& status);
void declareImport(CLI::App& app, int& status);

/// The whole program: gives its exit status, and raises nothing.
int runProgram(int argc, char** argv) noexcept;

} // namespace host
