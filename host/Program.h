// The program hbs as a function.
#pragma once

namespace host {

/// The whole program: gives its exit status, and raises nothing.
int runProgram(int argc, char** argv) noexcept;

} // namespace host
