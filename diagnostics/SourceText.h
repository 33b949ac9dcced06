// The text of an input whose readers want to name places in it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostics/Diagnostic.h"

namespace tq {

/// Turns byte offsets of a text into lines and columns. The lines are looked up once, at the first
/// question; each question then takes logarithmic time.
class SourceText {
public:
    /// `content` must outlive this object.
    SourceText(std::string file, std::string_view content);

    [[nodiscard]] const std::string& file() const { return m_file; }
    [[nodiscard]] std::string_view content() const { return m_content; }

    /// The place of a byte, with its line's text; an offset beyond the end names the end.
    [[nodiscard]] Place placeOf(std::size_t offset) const;
    /// The place that a parser names by line and column, both from 1 (0 where unknown), with the
    /// line's text if there is such a line.
    [[nodiscard]] Place placeAt(std::size_t line, std::size_t column) const;

    /// A line, counted from 1, without its end; empty beyond the last.
    [[nodiscard]] std::string_view line(std::size_t number) const;

private:
    void findLines() const;
    /// `index` counts from 0.
    [[nodiscard]] std::string_view lineText(std::size_t index) const;

    std::string m_file;
    std::string_view m_content;
    mutable std::vector<std::size_t> m_lineStarts; ///< empty before the first question
};

/// The place of a line that a reader counts by itself, with the part of the line around `column`
/// (from 1; 0 where unknown).
[[nodiscard]] Place placeInLine(std::string file, std::size_t line, std::size_t column,
                                std::string_view lineText);

} // namespace tq
