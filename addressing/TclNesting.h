// How deep the substitutions of a Tcl script are nested.
#pragma once

#include <string_view>

namespace hbs_addressing {

/// Tcl's parser recurses once per command substitution "[" and per index "$name(" inside
/// another, without a limit of its own. The limit here is the one that Tcl's compiler has,
/// so that no script that Tcl could run is refused.
inline constexpr int kMostNestedSubstitutions = 1000;

/// Whether substitutions in `script` are nested deeper than `kMostNestedSubstitutions`. Follows
/// Tcl's rules for words, quotes, braces, comments and backslashes. The text in braces is looked at
/// as a script of its own, as it may be run later. Time is linear in the text, and nothing
/// recurses.
[[nodiscard]] bool isNestedTooDeep(std::string_view script);

} // namespace hbs_addressing
