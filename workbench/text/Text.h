// Texts made fit for terminals, tables and JSON.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tq_workbench_export.h"

namespace tq {

/// The text with each control character (line ends too), each bidirectional control and each byte
/// that isn't part of valid UTF-8 as "\xNN" per byte: safe to print on a terminal.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string printable(std::string_view text);

/// The text with each byte that isn't part of valid UTF-8 replaced by U+FFFD.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string validUtf8(std::string_view text);

/// The columns that a valid UTF-8 text takes on a terminal: two for wide characters (East Asian
/// wide and fullwidth forms, emoji), none for combining marks.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::size_t displayWidth(std::string_view text);

/// A number with a fixed count of decimals, with "." in every locale.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string fixedText(double value, int decimals);

} // namespace tq
