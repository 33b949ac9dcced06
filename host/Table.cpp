#include "host/Table.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <ostream>
#include <utility>

namespace host {

namespace {

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
    m_rows.push_back(std::move(cells));
}

void Table::print(std::ostream& out) const {
    std::vector<std::size_t> widths;
    for (std::size_t c = 0; c < m_columns.size(); ++c) {
        std::size_t width = displayWidth(m_columns[c].title);
        for (const auto& row : m_rows)
            width = std::max(width, displayWidth(row[c]));
        widths.push_back(width);
    }

    const auto printLine = [&](auto cellAt) {
        std::string line;
        for (std::size_t c = 0; c < m_columns.size(); ++c) {
            const std::string cell = cellAt(c);
            const std::string padding(widths[c] - displayWidth(cell), ' ');
            line += m_columns[c].align == Align::Left ? cell + padding : padding + cell;
            line += "  ";
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out << line << '\n';
    };

    printLine([&](std::size_t c) { return m_columns[c].title; });
    printLine([&](std::size_t c) { return std::string(widths[c], '-'); });
    for (const auto& row : m_rows)
        printLine([&](std::size_t c) { return row[c]; });
}

std::string fixedText(double value, int decimals) {
    std::array<char, 512> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                      std::chars_format::fixed, std::clamp(decimals, 0, 100));
    return {buffer.data(), result.ptr};
}

} // namespace host
