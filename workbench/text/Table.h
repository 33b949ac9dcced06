// Tables for people: columns aligned, a rule under the head.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "tq_workbench_export.h"

namespace tq {

/// Collects rows of text and prints them aligned.
///
///     Table table({{"PLL"}, {"MHz", Table::Align::Right}});
///     table.addRow({"PLL0", "1299.987"});
///     table.print(std::cout);
class TQ_WORKBENCH_EXPORT Table {
public:
    /// The side of its column at which a text begins or ends.
    enum class Align { Left, Right };

    /// The head of a column.
    struct Column {
        std::string title;
        Align align = Align::Left;
    };

    /// A table without rows.
    explicit Table(std::vector<Column> columns);

    /// Missing cells are blank, cells too many are dropped, control characters are made visible.
    void addRow(std::vector<std::string> cells);
    [[nodiscard]] bool empty() const { return m_rows.empty(); }
    /// Columns are two blanks apart; widths are those on a terminal; no line ends in a blank.
    void print(std::ostream& out) const;

private:
    std::vector<Column> m_columns;
    std::vector<std::vector<std::string>> m_rows;
};

} // namespace tq
