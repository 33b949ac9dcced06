#include "addressing/DefinitionFindings.h"

#include <utility>

#include "addressing/DefinitionTables.h"

namespace {

/// The place of a key's value in a row, or of the row.
tq::Place placeOf(const HBSTableRow& row, std::string_view key) {
    const std::string_view content = row.table->content();
    const std::string_view rest = content.substr(row.rowStart);
    const hbs_tables::Record record = hbs_tables::readRecord(rest.substr(0, rest.find('\n')), {});
    const auto found = record.find(key);
    return row.table->placeOf(found == record.end() ? row.rowStart
                                                    : row.table->offsetOf(found->second));
}

} // namespace

const HBSTableText& HBSTableFindings::open(const std::string& table, const std::string& path,
                                           base::FileContent content) {
    const bool isThere = content.outcome != base::ReadOutcome::Missing;
    const bool isRead = content.isWhole();
    if (m_report != nullptr)
        m_report->push_back({table, isThere, isRead, isThere ? content.reason : "", 0, 0});
    if (isOn() && isThere && !isRead)
        m_sink(tq::makeDiagnostic(tq::Severity::Error, "unreadable-table", tq::placeOfFile(path),
                                  "can't be read: " + content.reason));
    return m_texts.emplace_back(m_texts.size(), path, std::move(content.text));
}

void HBSTableFindings::countRow() {
    if (m_report != nullptr) {
        ++m_report->back().rows;
        ++m_report->back().used;
    }
}

void HBSTableFindings::countDropped(const HBSTableRow& row) {
    if (m_report != nullptr)
        --(*m_report)[row.table->number()].used;
}

void HBSTableFindings::tell(const HBSTableText& table, std::string_view part, tq::Severity severity,
                            const char* id, const std::string& text, std::string expected) const {
    if (isOn())
        m_sink(tq::makeDiagnostic(severity, id, table.placeOf(table.offsetOf(part)), text,
                                  std::move(expected)));
}

void HBSTableFindings::tell(const HBSTableRow& row, std::string_view key, tq::Severity severity,
                            const char* id, const std::string& text, std::string expected,
                            const HBSTableRow* first, const char* note) const {
    if (!isOn())
        return;
    tq::Diagnostic finding =
        tq::makeDiagnostic(severity, id, placeOf(row, key), text, std::move(expected));
    if (first != nullptr)
        finding.notes.push_back({placeOf(*first, key), note});
    m_sink(std::move(finding));
}

std::string hbs_tables::quoted(std::string_view text) {
    constexpr std::size_t kMostShown = 80;
    const char* const cut = text.size() > kMostShown ? "..." : "";
    return "\"" + std::string(text.substr(0, kMostShown)) + cut + "\"";
}
