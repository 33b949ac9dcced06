// What the words of `hbs` share: how they are declared, how they end.
#pragma once

#include <CLI/CLI.hpp>

#include <stdexcept>
#include <string>

#include "host/Table.h"

namespace host {

/// Exit statuses of the program.
enum ExitStatus {
    kSuccess = 0,  ///< a result was found and printed
    kNoResult = 1, ///< the input is good, but there is no result
    kBadInput = 2, ///< bad command line or bad file
};

/// A file or a command line that can't be used; the text names the file, the line and the column
/// where there are any, and what was expected. Text of others in it can't steer a terminal.
class BadInput : public std::runtime_error {
public:
    explicit BadInput(const std::string& text) : std::runtime_error(printable(text)) {}
};

// Each declares its word with its options on `app`. The word's callback does the work, leaves the
// exit status in `status` and raises `BadInput` where the input can't be used.
void declareClocks(CLI::App& app, int& status);
void declareDefine(CLI::App& app, int& status);
void declareCdo(CLI::App& app, int& status);
void declareHardblock(CLI::App& app, int& status);
void declareHandoff(CLI::App& app, int& status);
void declareAddressing(CLI::App& app, int& status);
void declareRegisters(CLI::App& app, int& status);

} // namespace host
