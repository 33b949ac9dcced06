// Texts as cells of tables in files.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace tq {

/// A cell of a CSV file: quoted where the text has a separator, and with "'" in front where a
/// spreadsheet would take it for a formula.
[[nodiscard]] std::string csvCell(std::string_view text);

/// A text of one line in which no character has a meaning of its own in Markdown.
[[nodiscard]] std::string markdownText(std::string_view text);

/// A row of a Markdown table, with its line end.
[[nodiscard]] std::string markdownRow(std::initializer_list<std::string> cells);

} // namespace tq
