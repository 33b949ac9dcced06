// The program hbs, run inside a fuzzer.
#pragma once

#include <initializer_list>
#include <string>

namespace fuzz {

/// Runs the command line without the program's name and gives what it prints on its standard output
/// stream. Any exception but a refusal leaves it.
std::string runProgram(std::initializer_list<std::string> words);

} // namespace fuzz
