// Reports and sweeps of clock trees.

#include "bindings/interface/ClockReports.h"

#include "bindings/core/Invoke.h"
#include "bindings/interface/ClockParts.h"
#include "workbench/clocks/ClockPage.h"
#include "workbench/clocks/export/ClockExport.h"
#include "workbench/text/TextStream.h"

namespace tq::bindings {

using Pll = ClockReport::Pll;
using Without = ClockReport::Conflict::Without;
using Trade = ClockReport::Alternative::Trade;
using Summary = ClockReport::Summary;

template <>
struct RecordOf<Pll> {
    static constexpr const char* name = "ClockReportPll";
    static constexpr auto fields = std::tuple{field("name", &Pll::name),
                                              field("domain", &Pll::domain),
                                              field("multiplier", &Pll::multiplier),
                                              field("outputDivider", &Pll::outputDivider),
                                              field("crossDivider", &Pll::crossDivider),
                                              field("mhz", &Pll::mhz)};
};

/// A request with what it got, or could have alone.
struct PeripheralRow {
    std::string name;
    std::string domain;
    float requestedMhz = 0.0F;
    float maxErrorPercent = 0.0F;
    bool enabled = true;
    bool noc = false;
    std::string pll;
    unsigned divider = 0;
    std::optional<double> mhz;
    std::optional<double> errorPercent;
    bool allowed = false;
};
template <>
struct RecordOf<PeripheralRow> {
    using R = PeripheralRow;
    static constexpr const char* name = "ClockReportPeripheral";
    static constexpr auto fields = std::tuple{field("name", &R::name),
                                              field("domain", &R::domain),
                                              field("requestedMhz", &R::requestedMhz),
                                              field("maxErrorPercent", &R::maxErrorPercent),
                                              field("enabled", &R::enabled),
                                              field("noc", &R::noc),
                                              field("pll", &R::pll),
                                              field("divider", &R::divider),
                                              field("mhz", &R::mhz),
                                              field("errorPercent", &R::errorPercent),
                                              field("allowed", &R::allowed)};
};

template <>
struct RecordOf<Without> {
    static constexpr const char* name = "ClockConflictMember";
    static constexpr auto fields =
        std::tuple{field("name", &Without::name), field("allMet", &Without::allMet),
                   field("tolerance", &Without::tolerance)};
};

template <>
struct RecordOf<Trade> {
    static constexpr const char* name = "ClockTrade";
    static constexpr auto fields =
        std::tuple{field("peripheral", &Trade::peripheral), field("fromPpm", &Trade::fromPpm),
                   field("toPpm", &Trade::toPpm)};
};

struct AlternativeRow {
    double sumPpm = 0.0;
    std::optional<double> weightedSumPpm;
    std::vector<Pll> plls;
    std::vector<PeripheralRow> peripherals;
    std::vector<std::string> differences;
    std::vector<Trade> trades;
};
template <>
struct RecordOf<AlternativeRow> {
    using R = AlternativeRow;
    static constexpr const char* name = "ClockAlternative";
    static constexpr auto fields = std::tuple{field("sumPpm", &R::sumPpm),
                                              field("weightedSumPpm", &R::weightedSumPpm),
                                              field("plls", &R::plls),
                                              field("peripherals", &R::peripherals),
                                              field("differences", &R::differences),
                                              field("trades", &R::trades)};
};

template <>
struct RecordOf<Summary> {
    static constexpr const char* name = "ClockSummary";
    static constexpr auto fields = std::tuple{
        field("exact", &Summary::exact), field("within10ppm", &Summary::within10ppm),
        field("within1000ppm", &Summary::within1000ppm),
        field("within1percent", &Summary::within1percent), field("worse", &Summary::worse)};
};

template <>
struct RecordOf<SweepPoint> {
    static constexpr const char* name = "SweepPoint";
    static constexpr auto fields =
        std::tuple{field("value", &SweepPoint::value),         field("found", &SweepPoint::found),
                   field("tolerance", &SweepPoint::tolerance), field("sumPpm", &SweepPoint::sumPpm),
                   field("worstPpm", &SweepPoint::worstPpm),   field("worst", &SweepPoint::worst)};
};

namespace {

std::string nameOfReport(const ScriptReport& report) {
    return "of clock tree " + report.tree;
}

PeripheralRow rowOf(const ClockTree::Peripheral& request) {
    PeripheralRow row;
    row.name = request.name;
    row.domain = request.domain;
    row.requestedMhz = request.mhz;
    row.maxErrorPercent = request.maxErrorPercent;
    row.enabled = request.enabled;
    row.noc = request.noc;
    return row;
}

void addGiven(PeripheralRow& row, const std::optional<GivenClock>& given) {
    if (!given)
        return;
    row.mhz = given->mhz;
    row.errorPercent = given->errorPercent;
}

std::vector<PeripheralRow> rowsOf(const std::vector<ClockReport::Peripheral>& lines) {
    std::vector<PeripheralRow> rows;
    rows.reserve(lines.size());
    for (const ClockReport::Peripheral& line : lines) {
        PeripheralRow& row = rows.emplace_back(rowOf(line.request));
        row.pll = line.pll;
        row.divider = line.divider;
        addGiven(row, line.given);
        row.allowed = line.given && !line.isBeyondAllowed();
    }
    return rows;
}

bool found(const ScriptReport& report) {
    return report.report.found;
}
float tolerance(const ScriptReport& report) {
    return report.report.tolerance;
}
float totalError(const ScriptReport& report) {
    return report.report.totalError;
}
std::optional<float> weightedError(const ScriptReport& report) {
    return report.report.weightedError;
}
Summary summary(const ScriptReport& report) {
    return report.report.summary();
}
std::vector<Pll> plls(const ScriptReport& report) {
    return report.report.plls;
}
std::vector<PeripheralRow> peripherals(const ScriptReport& report) {
    return rowsOf(report.report.peripherals);
}

std::vector<PeripheralRow> alone(const ScriptReport& report) {
    std::vector<PeripheralRow> rows;
    rows.reserve(report.report.alone.size());
    for (const ClockReport::Alone& line : report.report.alone) {
        PeripheralRow& row = rows.emplace_back(rowOf(line.request));
        addGiven(row, line.nearest);
        row.allowed = line.allowed;
    }
    return rows;
}

std::vector<std::vector<Without>> conflicts(const ScriptReport& report) {
    std::vector<std::vector<Without>> sets;
    if (report.report.conflicts)
        for (const ClockReport::Conflict& conflict : *report.report.conflicts)
            sets.push_back(conflict.members);
    return sets;
}
bool hasMoreConflicts(const ScriptReport& report) {
    return report.report.hasMoreConflicts;
}

std::vector<AlternativeRow> alternatives(const ScriptReport& report) {
    std::vector<AlternativeRow> rows;
    rows.reserve(report.report.alternatives.size());
    for (const ClockReport::Alternative& alternative : report.report.alternatives)
        rows.push_back({alternative.sumPpm, alternative.weightedSumPpm, alternative.plls,
                        rowsOf(alternative.peripherals), alternative.differences,
                        alternative.trades});
    return rows;
}

std::vector<Finding> warnings(const ScriptReport& report) {
    return findingsOf(warningsOf(report.report));
}

void expectFound(const ScriptReport& report, const char* what) {
    if (!report.report.found)
        throw ScriptError(Failure::Kind::Command,
                          "clock tree " + report.tree + " has no result to " + what);
}

std::string tablesOf(const ScriptReport& report) {
    TextStream out;
    printClockTables(report.report, out);
    return out.str();
}
std::string jsonOf(const ScriptReport& report) {
    TextStream out;
    printClockJson(report.report, out);
    return out.str();
}
std::string pictureOf(const ScriptReport& report) {
    expectFound(report, "draw");
    TextStream out;
    printClockPicture(report.report, report.referenceMhz, out);
    return out.str();
}
std::string pageOf(const ScriptReport& report, const std::string& title) {
    TextStream out;
    printClockPage(report.report, report.referenceMhz, title.empty() ? report.tree : title, out);
    return out.str();
}

std::string exportOf(const ScriptReport& report, const std::string& format) {
    const auto known = clockFormatOf("clocks." + format);
    if (!known)
        raiseArgument("unknown format \"" + format +
                      "\", expected one of: " + clockFormatEndings());
    expectFound(report, "export");
    return exportClocks(report.report, report.referenceMhz, *known, messageSink());
}

// --- sweeps ---

std::string nameOfSweep(const ScriptSweep& sweep) {
    return "of " + sweep.sweep.subject + " in clock tree " + sweep.tree;
}
std::string subject(const ScriptSweep& sweep) {
    return sweep.sweep.subject;
}
std::vector<SweepPoint> points(const ScriptSweep& sweep) {
    return sweep.points;
}
std::optional<SweepPoint> best(const ScriptSweep& sweep) {
    const SweepPoint* const point = bestPoint(sweep.points);
    return point == nullptr ? std::nullopt : std::optional(*point);
}

template <auto Print>
std::string printed(const ScriptSweep& sweep) {
    TextStream out;
    Print(sweep.sweep, sweep.points, out);
    return out.str();
}

} // namespace

void describeClockReports(Interface& interface) {
    Describe<ScriptReport>("ClockReport", "clock report", "report",
                           "What a run of a clock tree found. A copy: it lives on when the tree "
                           "changes or goes.")
        .called<&nameOfReport>()
        .deletable()
        .property<&found>("found", "Whether there is a solution.")
        .property<&tolerance>("tolerance", "The tolerance that succeeded, as a fraction.")
        .property<&totalError>("totalError", "Sum of the relative errors.")
        .property<&weightedError>("weightedError",
                                  "The sum that was searched for, where there are weights.")
        .property<&summary>("summary", "How many enabled requests are met how well.")
        .property<&plls>("plls", "The PLLs with their settings.")
        .property<&peripherals>("peripherals", "The peripherals with what they got.")
        .property<&alone>("alone", "Without a solution: what each enabled peripheral could have "
                                   "from one PLL if nothing else were asked for.")
        .property<&conflicts>("conflicts",
                              "If they were asked for and not all requests are met: the smallest "
                              "sets of requests that can't be met together, with what becomes of "
                              "the others without each member.")
        .property<&hasMoreConflicts>("hasMoreConflicts", "Whether there may be more than these.")
        .property<&alternatives>("alternatives",
                                 "If they were asked for: the best settings, the answer first.")
        .property<&warnings>("warnings", "A finding for each request that gets more than a tenth "
                                         "off what it asks for.")
        .method<&exportOf>("export", {required("format")},
                           "The solution as a file for other tools, by the ending of such files: "
                           "dts, sdc, h, csv or md.",
                           Mode::Slow)
        .method<&tablesOf>("tables", {}, "The report as aligned tables.", Mode::Slow)
        .method<&jsonOf>("json", {}, "The report as a JSON document.", Mode::Slow)
        .method<&pictureOf>("svg", {}, "The solved tree as an SVG picture.", Mode::Slow)
        .method<&pageOf>("html", {optional("title", {std::string()})},
                         "A page for a browser that loads nothing, with the picture, the table, "
                         "the conflicts and the alternatives.",
                         Mode::Slow);
    interface.add(infoOf<ScriptReport>());

    Describe<ScriptSweep>("ClockSweep", "clock sweep", "sweep",
                          "A clock tree solved once for each of several values.")
        .called<&nameOfSweep>()
        .deletable()
        .iterates("points", nullptr)
        .property<&subject>("subject", "What changes, such as UART0.mhz.")
        .property<&points>("points", "One point for each value, ascending.")
        .property<&best>("best", "The point of the smallest sum, or none without a solution.")
        .method<&printed<&printClockSweep>>("tables", {}, "A table with bars.", Mode::Slow)
        .method<&printed<&printClockSweepJson>>("json", {}, "The same as a JSON document.",
                                                Mode::Slow)
        .method<&printed<&printClockSweepPicture>>("svg", {},
                                                   "The errors over the values as an "
                                                   "SVG picture.",
                                                   Mode::Slow);
    interface.add(infoOf<ScriptSweep>());
}

} // namespace tq::bindings
