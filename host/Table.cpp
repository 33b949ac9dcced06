#include "host/Table.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <ostream>
#include <utility>

namespace host {

namespace {

/// One cell wider than this doesn't make its whole column as wide.
constexpr std::size_t kWidestAligned = 80;

std::size_t displayWidth(const std::string& text) {
    // Bytes 10xxxxxx continue a UTF-8 character.
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
    }));
}

} // namespace

Table::Table(std::vector<Column> columns) : m_columns(std::move(columns)) {}

void Table::addRow(std::vector<std::string> cells) {
    cells.resize(m_columns.size());
    for (std::string& cell : cells)
        cell = printable(cell);
    m_rows.push_back(std::move(cells));
}

void Table::print(std::ostream& out) const {
    std::vector<std::size_t> widths;
    for (std::size_t c = 0; c < m_columns.size(); ++c) {
        std::size_t width = displayWidth(m_columns[c].title);
        for (const auto& row : m_rows)
            width = std::max(width, std::min(displayWidth(row[c]), kWidestAligned));
        widths.push_back(width);
    }

    const auto printLine = [&](auto cellAt) {
        // Blanks are written when a text follows them, so that no line ends in one.
        std::size_t blanks = 0;
        for (std::size_t c = 0; c < m_columns.size(); ++c) {
            const std::string cell = cellAt(c);
            const std::size_t padding = widths[c] - std::min(widths[c], displayWidth(cell));
            const bool left = m_columns[c].align == Align::Left;
            if (!cell.empty())
                out << std::string(std::exchange(blanks, 0) + (left ? 0 : padding), ' ') << cell;
            blanks += (cell.empty() ? widths[c] : left ? padding : 0) + 2;
        }
        out << '\n';
    };

    printLine([&](std::size_t c) { return m_columns[c].title; });
    printLine([&](std::size_t c) { return std::string(widths[c], '-'); });
    for (const auto& row : m_rows)
        printLine([&](std::size_t c) { return row[c]; });
}

std::string printable(std::string_view text) {
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string shown;
    const auto escape = [&shown](unsigned char byte) {
        shown.append("\\x").append(1, kDigits[byte >> 4U]).append(1, kDigits[byte & 0xFU]);
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : '\0');
        if (byte < 0x20U || byte == 0x7FU) {
            escape(byte);
        } else if (byte == 0xC2U && next >= 0x80U && next < 0xA0U) { // U+0080 to U+009F
            escape(byte);
            escape(next);
            ++i;
        } else {
            shown += text[i];
        }
    }
    return shown;
}

std::string fixedText(double value, int decimals) {
    std::array<char, 512> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                      std::chars_format::fixed, std::clamp(decimals, 0, 100));
    return {buffer.data(), result.ptr};
}

} // namespace host
