// The report of `hbs clocks` as tables.

#include <algorithm>
#include <ostream>

#include "workbench/clocks/ClockReport.h"
#include "workbench/text/Table.h"
#include "workbench/text/Text.h"

namespace tq {

namespace {

constexpr auto kRight = Table::Align::Right;
constexpr unsigned kLargestDivider = 1023;

[[nodiscard]] std::string mhzText(double mhz) {
    return fixedText(mhz, 4);
}
[[nodiscard]] std::string requestText(float mhz) {
    return mhzText(static_cast<double>(mhz));
}

[[nodiscard]] std::string percentText(const GivenClock& given) {
    return given.errorPercent ? fixedText(*given.errorPercent, 4) : "-";
}

[[nodiscard]] std::string ppmText(const GivenClock& given) {
    constexpr double ppmPerPercent = 1e4;
    return given.errorPercent ? fixedText(*given.errorPercent * ppmPerPercent, 1) : "-";
}

/// What stands out of a table of requests.
[[nodiscard]] std::string remarkOn(const ClockReport::Peripheral& line) {
    constexpr double tenthOfPercent = 1000.0; // ppm
    if (line.isBeyondAllowed())
        return "<-- beyond the allowed " +
               fixedText(static_cast<double>(line.request.maxErrorPercent), 4) + " %";
    return line.offPpm() > tenthOfPercent ? "<-- above 0.1 %" : "";
}

void printPlls(const ClockReport& report, std::ostream& out) {
    const bool crossing = std::any_of(report.plls.begin(), report.plls.end(),
                                      [](const auto& pll) { return pll.crossDivider != 0; });
    std::vector<Table::Column> columns = {
        {"PLL"}, {"Domain"}, {"Multiplier", kRight}, {"Divider", kRight}, {"MHz", kRight}};
    if (crossing)
        columns.push_back({"Cross divider", kRight});
    Table table(std::move(columns));
    for (const ClockReport::Pll& pll : report.plls)
        table.addRow({pll.name, pll.domain, std::to_string(pll.multiplier),
                      std::to_string(pll.outputDivider), mhzText(pll.mhz),
                      std::to_string(pll.crossDivider)});
    table.print(out);
}

void printPeripherals(const ClockReport& report, std::ostream& out) {
    Table table({{"Peripheral"},
                 {"Domain"},
                 {"Request MHz", kRight},
                 {"PLL"},
                 {"PLL MHz", kRight},
                 {"\u00f7 cross", kRight},
                 {"\u00f7 own", kRight},
                 {"= Gets MHz", kRight},
                 {"Error %", kRight},
                 {"ppm", kRight},
                 {""}});
    for (const ClockReport::Peripheral& line : report.peripherals) {
        const ClockTree::Peripheral& request = line.request;
        if (line.given)
            table.addRow({request.name, request.domain, requestText(request.mhz), line.pll,
                          mhzText(line.pllMhz),
                          line.crossDivider == 0 ? "-" : std::to_string(line.crossDivider),
                          std::to_string(line.divider), mhzText(line.given->mhz),
                          percentText(*line.given), ppmText(*line.given), remarkOn(line)});
        else
            table.addRow({request.name, request.domain, requestText(request.mhz), "disabled"});
    }
    table.print(out);
}

void printAlone(const ClockReport& report, std::ostream& out) {
    Table table({{"Peripheral"},
                 {"Domain"},
                 {"Request MHz", kRight},
                 {"Nearest MHz", kRight},
                 {"Error %", kRight},
                 {"ppm", kRight},
                 {"Allowed %", kRight},
                 {"Alone it is"}});
    for (const ClockReport::Alone& alone : report.alone) {
        const ClockTree::Peripheral& request = alone.request;
        const std::string allowed = fixedText(static_cast<double>(request.maxErrorPercent), 4);
        if (alone.nearest)
            table.addRow({request.name, request.domain, requestText(request.mhz),
                          mhzText(alone.nearest->mhz), percentText(*alone.nearest),
                          ppmText(*alone.nearest), allowed,
                          alone.allowed ? "within reach" : "out of reach"});
        else
            table.addRow({request.name, request.domain, requestText(request.mhz), "none", "-", "-",
                          allowed, "out of reach"});
    }
    table.print(out);
}

/// A count with its thousands apart.
[[nodiscard]] std::string countText(std::uint64_t count) {
    std::string digits = std::to_string(count);
    for (std::size_t place = digits.size(); place > 3; place -= 3)
        digits.insert(place - 3, 1, ' ');
    return digits;
}

void printSearch(const ClockReport::Search& search, std::ostream& out) {
    if (search.combinations == 0) {
        out << "Every combination of multipliers was tried.\n";
        return;
    }
    out << "That step had " << countText(search.combinations)
        << " combinations of multipliers, each with up to "
        << countText(search.settingsPerCombination) << " settings of the dividers.\n"
        << countText(search.evaluated)
        << " settings were looked at; the rest was proven to be worse.\n";
}

void printSummary(const ClockReport::Summary& summary, std::ostream& out) {
    out << "Requests: " << summary.exact << " met exactly, " << summary.within10ppm
        << " within 10 ppm, " << summary.within1000ppm << " within 0.1 %, "
        << summary.within1percent << " within 1 %, " << summary.worse << " worse.\n";
}

void printWithout(const ClockReport::Conflict::Without& without, std::ostream& out) {
    out << "    without " << printable(without.name) << ", ";
    if (!without.tolerance)
        out << "others still can't be met\n";
    else
        out << (without.allMet ? "all others are" : "the rest of these is") << " met at "
            << fixedText(static_cast<double>(*without.tolerance), 3) << '\n';
}

void printTrades(const ClockReport::Alternative& alternative, bool better, std::ostream& out) {
    std::string list;
    for (const auto& [name, from, to] : alternative.trades)
        if ((to < from) == better)
            list += (list.empty() ? "" : ", ") + printable(name) + " " + fixedText(from, 1) +
                    " \u2192 " + fixedText(to, 1);
    if (!list.empty())
        out << "       " << (better ? "better" : "worse") << ", ppm: " << list << '\n';
}

void printAlternatives(const ClockReport& report, std::ostream& out) {
    out << "\nAlternatives, the best first:\n";
    unsigned place = 0;
    for (const ClockReport::Alternative& alternative : report.alternatives) {
        out << "  " << ++place << ". " << fixedText(alternative.sumPpm, 1) << " ppm";
        if (alternative.weightedSumPpm)
            out << ", with weights " << fixedText(*alternative.weightedSumPpm, 1) << " ppm";
        const char* separator = ": ";
        if (place == 1)
            out << ": the answer above";
        for (const std::string& difference : alternative.differences) {
            out << separator << printable(difference);
            separator = ", ";
        }
        out << '\n';
        printTrades(alternative, true, out);
        printTrades(alternative, false, out);
    }
}

void printConflicts(const ClockReport& report, std::ostream& out) {
    out << "\nCan't be met together, the smallest sets first:\n";
    for (const ClockReport::Conflict& conflict : *report.conflicts) {
        out << "  ";
        const char* separator = "";
        for (const ClockReport::Conflict::Without& without : conflict.members) {
            out << separator << printable(without.name);
            separator = ", ";
        }
        out << '\n';
        for (const ClockReport::Conflict::Without& without : conflict.members)
            printWithout(without, out);
    }
    if (report.hasMoreConflicts)
        out << "There may be more such sets.\n";
}

} // namespace

void printClockTables(const ClockReport& report, std::ostream& out) {
    if (!report.found && report.alone.empty()) {
        out << "No solution.\n";
        return;
    }
    if (!report.found) {
        out << "No solution. The nearest that a PLL of its domain gives each peripheral on its "
               "own:\n\n";
        printAlone(report, out);
        if (report.takesOtherClocks)
            out << "\nClocks of other domains aren't counted here.\n";
        if (report.conflicts)
            printConflicts(report, out);
        return;
    }
    printPlls(report, out);
    out << '\n';
    printPeripherals(report, out);
    out << "\nSolved at tolerance " << fixedText(static_cast<double>(report.tolerance), 3)
        << ", sum of relative errors " << fixedText(static_cast<double>(report.totalError) * 1e6, 1)
        << " ppm\n";
    if (report.weightedError)
        out << "With the weights, the sum is "
            << fixedText(static_cast<double>(*report.weightedError) * 1e6, 1) << " ppm\n";
    printSummary(report.summary(), out);
    if (std::any_of(report.peripherals.begin(), report.peripherals.end(),
                    [](const auto& line) { return line.divider == kLargestDivider; }))
        out << "A divider of " << kLargestDivider
            << ", the largest, counts as no error in the sum.\n";
    if (report.search)
        printSearch(*report.search, out);
    if (report.conflicts)
        printConflicts(report, out);
    if (!report.alternatives.empty())
        printAlternatives(report, out);
}

} // namespace tq
