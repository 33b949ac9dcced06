#include "workbench/text/Table.h"

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <utility>

#include "workbench/text/Text.h"

namespace tq {

namespace {

/// One cell wider than this doesn't make its whole column as wide.
constexpr std::size_t kWidestAligned = 80;

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

} // namespace tq
