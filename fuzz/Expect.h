// What every output of the host has to be, for any input.
#pragma once

#include <string>

namespace fuzz {

/// Ends the fuzzer where the text isn't one JSON value in UTF-8.
void expectJson(const std::string& text);

/// Ends the fuzzer where the text isn't a well-formed XML document.
void expectXml(const std::string& text);

} // namespace fuzz
