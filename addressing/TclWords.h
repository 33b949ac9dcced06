// Quoting for the scripts that are built from names and values, so that data never runs as a
// command.
#pragma once

#include <string>
#include <string_view>

namespace hbs_addressing {

/// Whether Tcl takes `text` as one word without any quoting: no separator, no substitution, no
/// quotes. Names that aren't such words can't be used in the scripts that set registers, which
/// don't quote.
[[nodiscard]] bool isPlainWord(std::string_view text);

/// The same for a word inside of a command substitution, which a "]" would end.
[[nodiscard]] bool isPlainBracketedWord(std::string_view text);

/// A path as one word of a script, also in brackets or braces; quoted if that is needed. Names a
/// file of these very bytes if they are text in Tcl's system encoding.
[[nodiscard]] std::string quotePath(const std::string& path);

/// Why the script "expr {TEXT}" must not be run, or the empty text if it may:
/// - A "}" closes the expression early, and the text after it would be run as commands. An
///   expression that is never closed is left to Tcl, which reports it and runs nothing.
/// - There are more than `kMostSubstitutions` command and array element substitutions. Tcl's parser
///   recurses for each that is nested in another and would take the stack down.
[[nodiscard]] std::string findExpressionFault(std::string_view text);

inline constexpr int kMostSubstitutions = 1000;

} // namespace hbs_addressing
