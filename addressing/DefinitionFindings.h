// Findings about the tables of a hard block, from reading them and from building its block.
#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "addressing/HBSAddrParseUtil.h"
#include "base/FileReading.h"
#include "diagnostics/Diagnostic.h"
#include "diagnostics/SourceText.h"

/// The text of one table, for the places of its rows.
class HBSTableText {
public:
    /// `number` counts the tables in the order of their reading.
    HBSTableText(std::size_t number, std::string path, std::string content)
        : m_number(number), m_content(std::move(content)), m_source(std::move(path), m_content) {}
    HBSTableText(const HBSTableText&) = delete;
    HBSTableText& operator=(const HBSTableText&) = delete;

    [[nodiscard]] std::size_t number() const { return m_number; }
    [[nodiscard]] std::string_view content() const { return m_content; }
    /// The offset of a part of the content.
    [[nodiscard]] std::size_t offsetOf(std::string_view part) const {
        return static_cast<std::size_t>(part.data() - m_content.data());
    }
    [[nodiscard]] tq::Place placeOf(std::size_t offset) const { return m_source.placeOf(offset); }
    /// Gives the content's memory back; no place can be asked for after it.
    void release() { m_content = std::string(); }

private:
    std::size_t m_number;
    std::string m_content;
    tq::SourceText m_source;
};

/// Where a row begins in its table.
struct HBSTableRow {
    const HBSTableText* table = nullptr;
    std::size_t rowStart = 0; ///< offset in the table's content
};

/// Takes the findings of the tables of one hard block to a sink, and counts their rows for the
/// report, if the caller gave them. Findings of places need the sink alone: with an empty one
/// nothing is looked up.
class HBSTableFindings {
public:
    HBSTableFindings(const tq::DiagnosticSink& sink, std::vector<HBSTableReport>* report)
        : m_sink(sink), m_report(report) {}

    /// False where findings go nowhere; checks that serve findings alone can be left out then.
    [[nodiscard]] bool isOn() const { return static_cast<bool>(m_sink); }

    /// Begins the reading of a table. With a sink the content is kept as long as this object, for
    /// the places of its rows, else up to `close`.
    const HBSTableText& open(const std::string& table, const std::string& path,
                             base::FileContent content);
    void close() {
        if (!isOn())
            m_texts.back().release();
    }
    void countRow();
    /// Counts a row that makes nothing.
    void countDropped(const HBSTableRow& row);

    /// A finding at a part of a table's content.
    void tell(const HBSTableText& table, std::string_view part, tq::Severity severity,
              const char* id, const std::string& text, std::string expected = {}) const;
    /// A finding about the value of a key in a row: at the row's start, if it doesn't have the key.
    /// `first` is the row that has the same name or address, if any.
    void tell(const HBSTableRow& row, std::string_view key, tq::Severity severity, const char* id,
              const std::string& text, std::string expected = {},
              const HBSTableRow* first = nullptr, const char* note = "first defined here") const;

private:
    const tq::DiagnosticSink& m_sink;
    std::vector<HBSTableReport>* m_report; ///< may be null
    std::deque<HBSTableText> m_texts;
};

namespace hbs_tables {

/// A text of the input in a message. Long ones are cut, as a message shouldn't be as large as the
/// table.
[[nodiscard]] std::string quoted(std::string_view text);

} // namespace hbs_tables
