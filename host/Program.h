// The program hbs as a function.
#pragma once

namespace host {

/// Exit statuses of the program.
enum ExitStatus {
    kSuccess = 0,  ///< a result was found and printed
    kNoResult = 1, ///< the input is good, but there is no result
    kBadInput = 2, ///< bad command line or bad file
    kNoOutput = 3, ///< the output can't be written
};

/// The whole program: gives its exit status, and raises nothing.
int runProgram(int argc, char** argv) noexcept;

} // namespace host
