// The nearest known name to a mistyped one, and how it is offered.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tq {

/// The name with the fewest edits (insertion, removal or change of a character, swap of two
/// neighbours; ASCII case counts as half an edit, and that of a whole name too) to the one typed,
/// or an empty text if none is near: more than a third of the typed characters would have to change
/// (and the case of one). The first of equals. Names longer than 64 characters aren't near to any.
[[nodiscard]] std::string_view nearestName(std::string_view typed,
                                           std::span<const std::string_view> known);

/// What a diagnostic expects instead of a name: "one of: a, b; did you mean \"b\"?", the question
/// only where a known name is near. The first forty of many are listed.
[[nodiscard]] std::string oneOfNames(std::string_view typed,
                                     std::span<const std::string_view> known);

/// The nearest name in quotes, or an empty text where none is near.
[[nodiscard]] std::string quotedNearestName(std::string_view typed,
                                            std::span<const std::string_view> known);

} // namespace tq
