// What may stand in the scripts that are built from names and values, so that data is never run as
// a command that it doesn't mean.
#pragma once

#include <string>
#include <string_view>

namespace hbs_addressing {

/// Whether `text` is taken by Tcl as one word that means itself: no separator, no substitution, no
/// quoting. Names that aren't can't be carried by the scripts, which have no quoting.
[[nodiscard]] bool standsAsWord(std::string_view text);

/// The same inside of a command substitution, which a "]" would end.
[[nodiscard]] bool standsAsBracketedWord(std::string_view text);

/// Why the script "expr {TEXT}" must not be run, or the empty text if it may:
/// - A "}" closes the expression early, and what follows it would be run as commands. An expression
///   that is never closed is left to Tcl, which reports it and runs nothing.
/// - There are more than `kMostSubstitutions` command and array element substitutions. Tcl's parser
///   recurses for each that is nested in another and would take the stack down.
[[nodiscard]] std::string faultOfExpression(std::string_view text);

inline constexpr int kMostSubstitutions = 1000;

} // namespace hbs_addressing
