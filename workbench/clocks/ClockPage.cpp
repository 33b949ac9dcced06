#include "workbench/clocks/ClockPage.h"

#include <ostream>

#include "workbench/text/Text.h"
#include "workbench/text/TextStream.h"
#include "workbench/text/XmlText.h"

namespace tq {

namespace {

constexpr const char* kStyle = R"(
:root { color-scheme: light dark; --ink: #1b1f24; --paper: #fff; --line: #d0d7de; --lit: #fff3c4;
  --bad: #b3261e; --soft: #57606a; }
@media (prefers-color-scheme: dark) {
  :root { --ink: #e6edf3; --paper: #121212; --line: #3a424c; --lit: #4a3b00; --bad: #ff8a80;
    --soft: #9aa4af; }
  .picture svg { filter: invert(0.93) hue-rotate(180deg); }
}
body { font: 14px/1.45 Helvetica, Arial, sans-serif; color: var(--ink); background: var(--paper);
  margin: 0 auto; max-width: 1500px; padding: 16px; }
.parts { display: flex; flex-wrap: wrap; gap: 24px; align-items: flex-start; }
.picture, .wide { overflow-x: auto; max-width: 100%; }
.picture { flex: 1 1 760px; min-width: 0; }
.picture svg { min-width: 760px; max-width: 100%; height: auto; }
.side { flex: 1 1 320px; min-width: 0; }
table { border-collapse: collapse; font-variant-numeric: tabular-nums; }
th, td { border-bottom: 1px solid var(--line); padding: 3px 10px; text-align: left;
  white-space: nowrap; }
td.number, th.number { text-align: right; }
th button { font: inherit; font-weight: bold; color: inherit; background: none; border: 0;
  padding: 0; cursor: pointer; }
th[aria-sort=ascending] button::after { content: " \25B2"; }
th[aria-sort=descending] button::after { content: " \25BC"; }
tr.far td:last-child, tr.far td.error { color: var(--bad); font-weight: bold; }
input { font: inherit; padding: 4px 8px; margin: 8px 0; max-width: 100%; }
.lit td { background: var(--lit); }
.pointing svg [data-pll] { opacity: 0.25; }
.pointing svg [data-pll].lit { opacity: 1; }
h1, li { overflow-wrap: anywhere; }
li { margin-bottom: 8px; }
.soft { color: var(--soft); }
@media print { input { display: none; } body { max-width: none; padding: 0; }
  .parts { display: block; } .picture, .wide { overflow: visible; }
  .picture svg { min-width: 0; max-height: 94vh; break-inside: avoid; filter: none; }
  table { width: 100%; font-size: 10px; } th, td { padding: 2px 4px; white-space: normal;
    overflow-wrap: anywhere; }
  td.number, th.number { white-space: nowrap; }
  h2 { break-after: avoid; } tr, li { break-inside: avoid; } }
)";

constexpr const char* kScript = R"(
'use strict';
const marked = [...document.querySelectorAll('[data-pll]')];
function point(pll) {
  document.body.classList.toggle('pointing', pll !== null);
  for (const one of marked) one.classList.toggle('lit', pll !== null && one.dataset.pll === pll);
}
for (const one of marked) {
  one.addEventListener('mouseenter', () => point(one.dataset.pll));
  one.addEventListener('mouseleave', () => point(null));
}
const table = document.getElementById('requests');
if (table) {
  const body = table.tBodies[0];
  const key = (row, column) => {
    const text = row.cells[column].textContent;
    const number = parseFloat(text);
    return Number.isNaN(number) ? text : number;
  };
  [...table.tHead.rows[0].cells].forEach((head, column) => {
    head.querySelector('button').addEventListener('click', () => {
      const down = head.getAttribute('aria-sort') === 'ascending';
      for (const other of table.tHead.rows[0].cells) other.removeAttribute('aria-sort');
      head.setAttribute('aria-sort', down ? 'descending' : 'ascending');
      const rows = [...body.rows].sort((a, b) => {
        const x = key(a, column), y = key(b, column);
        const order = typeof x === typeof y ? (x < y ? -1 : x > y ? 1 : 0)
          : typeof x === 'number' ? -1 : 1;
        return down ? -order : order;
      });
      body.append(...rows);
    });
  });
  const filter = document.getElementById('filter');
  filter.addEventListener('input', () => {
    const words = filter.value.toLowerCase().split(/\s+/);
    for (const row of body.rows) {
      const text = row.textContent.toLowerCase();
      row.hidden = !words.every(word => text.includes(word));
    }
  });
}
)";

/// As text or as an attribute's value.
[[nodiscard]] std::string html(const std::string& text) {
    std::string escaped;
    for (const char c : xmlText(text))
        switch (c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += c;
        }
    return escaped;
}

class Page {
public:
    Page(const ClockReport& report, std::ostream& out) : m_report(report), m_out(out) {}

    void write(float referenceMhz, const std::string& title) {
        m_out << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                 "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                 "<title>"
              << html(title) << "</title>\n<style>" << kStyle << "</style>\n</head>\n<body>\n<h1>"
              << html(title) << "</h1>\n";
        writeSummary(referenceMhz);
        m_out << "<div class=\"parts\">\n";
        if (m_report.found)
            writePicture(referenceMhz);
        if (m_report.conflicts || !m_report.alternatives.empty()) {
            m_out << "<div class=\"side\">\n";
            if (m_report.conflicts)
                writeConflicts();
            if (!m_report.alternatives.empty())
                writeAlternatives();
            m_out << "</div>\n";
        }
        m_out << "</div>\n";
        m_report.found ? writeRequests() : writeAlone();
        m_out << "<script>" << kScript << "</script>\n</body>\n</html>\n";
    }

private:
    void writeSummary(float referenceMhz) {
        m_out << "<p>Reference " << fixedText(static_cast<double>(referenceMhz), 4) << " MHz. ";
        if (!m_report.found) {
            m_out << "No solution.</p>\n";
            return;
        }
        const ClockReport::Summary summary = m_report.summary();
        m_out << "Sum of relative errors "
              << fixedText(static_cast<double>(m_report.totalError) * 1e6, 1)
              << " ppm. Requests: " << summary.exact << " met exactly, " << summary.within10ppm
              << " within 10 ppm, " << summary.within1000ppm << " within 0.1 %, "
              << summary.within1percent << " within 1 %, " << summary.worse << " worse.</p>\n";
    }

    void writePicture(float referenceMhz) {
        TextStream picture;
        printMarkedClockPicture(m_report, referenceMhz, picture);
        const std::string text = picture.str();
        m_out << "<div class=\"picture\">\n" << text.substr(text.find("<svg")) << "</div>\n";
    }

    void writeConflicts() {
        m_out << "<h2>Can't be met together</h2>\n<ol id=\"conflicts\">\n";
        for (const ClockReport::Conflict& conflict : *m_report.conflicts) {
            std::string names;
            std::string rest;
            for (const ClockReport::Conflict::Without& without : conflict.members) {
                names += (names.empty() ? "" : ", ") + html(without.name);
                rest += "<br><span class=\"soft\">without " + html(without.name) + ", " +
                        outcome(without) + "</span>";
            }
            m_out << "<li><b>" << names << "</b>" << rest << "</li>\n";
        }
        m_out << "</ol>\n";
    }

    [[nodiscard]] static std::string outcome(const ClockReport::Conflict::Without& without) {
        if (!without.tolerance)
            return "others still can't be met";
        return (without.allMet ? "all others are met at " : "the rest of these is met at ") +
               fixedText(static_cast<double>(*without.tolerance), 3);
    }

    void writeAlternatives() {
        m_out << "<h2>Alternatives</h2>\n<ol id=\"alternatives\">\n";
        for (const ClockReport::Alternative& alternative : m_report.alternatives) {
            m_out << "<li><b>" << fixedText(alternative.sumPpm, 1) << " ppm</b>";
            std::string differences;
            for (const std::string& difference : alternative.differences)
                differences += (differences.empty() ? ": " : ", ") + html(difference);
            m_out << (&alternative == m_report.alternatives.data() ? ": the answer shown"
                                                                   : differences);
            for (const auto& [name, from, to] : alternative.trades)
                m_out << "<br><span class=\"soft\">" << html(name) << " " << fixedText(from, 1)
                      << " \u2192 " << fixedText(to, 1) << " ppm</span>";
            m_out << "</li>\n";
        }
        m_out << "</ol>\n";
    }

    struct Column {
        const char* title;
        bool hasNumbers = true;
    };

    void writeHead(std::initializer_list<Column> columns) {
        m_out << "<input id=\"filter\" type=\"search\" placeholder=\"Filter\" "
                 "aria-label=\"Filter\">\n<div class=\"wide\"><table "
                 "id=\"requests\">\n<thead><tr>";
        for (const Column& column : columns)
            m_out << "<th" << (column.hasNumbers ? " class=\"number\"" : "") << "><button>"
                  << column.title << "</button></th>";
        m_out << "</tr></thead>\n<tbody>\n";
    }

    void cell(const std::string& text) { m_out << "<td>" << html(text) << "</td>"; }
    void number(const std::string& text, const char* kind = "") {
        m_out << "<td class=\"number" << kind << "\">" << text << "</td>";
    }
    void mhz(double value) { number(fixedText(value, 4)); }

    void writeRequests() {
        writeHead({{"Peripheral", false},
                   {"Domain", false},
                   {"Request MHz"},
                   {"PLL", false},
                   {"PLL MHz"},
                   {"÷ cross"},
                   {"÷ own"},
                   {"Gets MHz"},
                   {"ppm"}});
        constexpr double tenthOfPercent = 1000.0; // ppm
        for (const ClockReport::Peripheral& line : m_report.peripherals) {
            if (!line.given)
                continue;
            m_out << "<tr data-pll=\"" << html(line.pll) << "\""
                  << (line.offPpm() > tenthOfPercent ? " class=\"far\"" : "") << ">";
            cell(line.request.name);
            cell(line.request.domain);
            mhz(static_cast<double>(line.request.mhz));
            cell(line.pll);
            mhz(line.pllMhz);
            number(line.crossDivider == 0 ? "-" : std::to_string(line.crossDivider));
            number(std::to_string(line.divider));
            mhz(line.given->mhz);
            number(fixedText(line.given->errorPercent.value_or(0.0) * 1e4, 1), " error");
            m_out << "</tr>\n";
        }
        m_out << "</tbody></table></div>\n";
    }

    void writeAlone() {
        writeHead({{"Peripheral", false},
                   {"Domain", false},
                   {"Request MHz"},
                   {"Nearest MHz"},
                   {"Allowed %"}});
        for (const ClockReport::Alone& alone : m_report.alone) {
            m_out << "<tr" << (alone.allowed ? "" : " class=\"far\"") << ">";
            cell(alone.request.name);
            cell(alone.request.domain);
            mhz(static_cast<double>(alone.request.mhz));
            number(alone.nearest ? fixedText(alone.nearest->mhz, 4) : "none");
            number(fixedText(static_cast<double>(alone.request.maxErrorPercent), 4));
            m_out << "</tr>\n";
        }
        m_out << "</tbody></table></div>\n";
    }

    const ClockReport& m_report;
    std::ostream& m_out;
};

} // namespace

void printClockPage(const ClockReport& report, float referenceMhz, const std::string& title,
                    std::ostream& out) {
    Page(report, out).write(referenceMhz, title);
}

} // namespace tq
