#include "diagnostics/SourceText.h"

#include <algorithm>
#include <utility>

namespace tq {

namespace {

/// A line is shown up to this length; a file of one endless line must not be copied per finding.
constexpr std::size_t kMostShown = 160;
/// What is kept before the column of a line that is cut.
constexpr std::size_t kShownBefore = 60;

[[nodiscard]] bool continuesCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

/// Moves forward to the start of a UTF-8 character, at most over the three bytes that can continue
/// one.
[[nodiscard]] std::size_t characterStart(std::string_view text, std::size_t offset) {
    for (int i = 0; i < 3 && offset < text.size() && continuesCharacter(text[offset]); ++i)
        ++offset;
    return offset;
}

void showLine(Place& place, std::string_view line) {
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    const std::size_t at = std::min(place.column == 0 ? 0 : place.column - 1, line.size());
    const std::size_t from = line.size() <= kMostShown || at <= kShownBefore
                                 ? 0
                                 : characterStart(line, at - kShownBefore);
    const std::size_t to = characterStart(line, std::min(line.size(), from + kMostShown));
    place.lineTextOffset = from;
    place.lineText = line.substr(from, to - from);
}

} // namespace

SourceText::SourceText(std::string file, std::string_view content)
    : m_file(std::move(file)), m_content(content) {}

void SourceText::findLines() const {
    m_lineStarts.push_back(0);
    for (std::size_t end = m_content.find('\n'); end != std::string_view::npos;
         end = m_content.find('\n', end + 1))
        m_lineStarts.push_back(end + 1);
}

std::string_view SourceText::lineText(std::size_t index) const {
    const std::size_t start = m_lineStarts[index];
    const bool isLast = index + 1 == m_lineStarts.size();
    return m_content.substr(start,
                            (isLast ? m_content.size() : m_lineStarts[index + 1] - 1) - start);
}

Place SourceText::placeOf(std::size_t offset) const {
    if (m_lineStarts.empty())
        findLines();
    offset = std::min(offset, m_content.size());
    const auto next = std::upper_bound(m_lineStarts.begin(), m_lineStarts.end(), offset);
    const auto line = static_cast<std::size_t>(next - m_lineStarts.begin());
    return placeInLine(m_file, line, offset - *(next - 1) + 1, lineText(line - 1));
}

Place SourceText::placeAt(std::size_t line, std::size_t column) const {
    return placeInLine(m_file, line, column, this->line(line));
}

std::string_view SourceText::line(std::size_t number) const {
    if (m_lineStarts.empty())
        findLines();
    const bool isThere = number != 0 && number <= m_lineStarts.size();
    return isThere ? lineText(number - 1) : std::string_view();
}

Place placeInLine(std::string file, std::size_t line, std::size_t column,
                  std::string_view lineText) {
    Place place;
    place.file = std::move(file);
    place.line = line;
    place.column = column;
    showLine(place, lineText);
    return place;
}

} // namespace tq
