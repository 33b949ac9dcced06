#include "workbench/clocks/ClockSweep.h"

#include <algorithm>
#include <cmath>
#include <ostream>

#include "clocking/SearchInterruption.h"
#include "workbench/clocks/ClockNames.h"
#include "workbench/clocks/ClockOutcomeJson.h"
#include "workbench/clocks/ClockRun.h"
#include "workbench/files/InputError.h"
#include "workbench/text/Table.h"
#include "workbench/text/Text.h"

namespace tq {

namespace {

using What = ClockSweep::What;

constexpr std::size_t kMostValues = 10'000;
constexpr const char* kSubjects = "one of: reference, max_cross, PLL.max, PERIPHERAL.mhz, "
                                  "PERIPHERAL.max_error";
constexpr const char* kForm = "SUBJECT=VALUE,FIRST:LAST:STEP,...";

void readSubject(const ClockTree& tree, const std::string& context, ClockSweep& sweep) {
    if (sweep.subject == "reference") {
        sweep.what = What::Reference;
        return;
    }
    if (sweep.subject == "max_cross") {
        sweep.what = What::MaxCross;
        return;
    }
    const Halves halves = splitAtLast(sweep.subject, '.', context, kSubjects);
    if (halves.right == "max") {
        sweep.what = What::PllLimit;
        sweep.pll = findPll(tree, halves.left, context);
    } else if (halves.right == "mhz" || halves.right == "max_error") {
        sweep.what = halves.right == "mhz" ? What::Request : What::AllowedError;
        sweep.peripheral = findPeripheral(tree, halves.left, context);
    } else {
        throw InputError(context + ": \"" + sweep.subject + "\" can't be swept, expected " +
                         kSubjects);
    }
}

void addRange(const std::string& text, const std::string& context, std::vector<double>& values) {
    const Halves step = splitAtLast(text, ':', context, kForm);
    const Halves ends = splitAtLast(step.left, ':', context, "FIRST:LAST:STEP");
    const double first = readNumber(ends.left, context);
    const double last = readNumber(ends.right, context);
    const double by = readNumber(step.right, context);
    if (by == 0.0 || last < first)
        throw InputError(context + ": \"" + text +
                         "\" is empty, expected a step above 0 and LAST from FIRST up");
    // The last value belongs to the range although the steps are rounded.
    const double count = std::floor((last - first) / by + 1e-6) + 1;
    if (count > static_cast<double>(kMostValues))
        throw InputError(context + ": more than 10,000 values");
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
        values.push_back(first + static_cast<double>(i) * by);
}

[[nodiscard]] bool isInRange(What what, double value) {
    if (what == What::AllowedError)
        return value <= 100.0;
    const auto single = static_cast<float>(value);
    return std::isfinite(single) && (what == What::Request || single > 0.0F);
}

void readValues(const std::string& text, const std::string& context, ClockSweep& sweep) {
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        const std::string part = text.substr(begin, end - begin);
        if (part.find(':') != std::string::npos)
            addRange(part, context, sweep.values);
        else
            sweep.values.push_back(readNumber(part, context));
        begin = end + 1;
    }
    // Steps are rounded; what looks the same is the same.
    for (double& value : sweep.values)
        value = std::round(value * 1e9) / 1e9;
    std::sort(sweep.values.begin(), sweep.values.end());
    sweep.values.erase(std::unique(sweep.values.begin(), sweep.values.end()), sweep.values.end());
    if (sweep.values.size() > kMostValues)
        throw InputError(context + ": more than 10,000 values");
    for (const double value : sweep.values)
        if (!isInRange(sweep.what, value))
            throw InputError(context + ": " + fixedText(value, 6) +
                             (sweep.what == What::AllowedError ? " isn't a percentage up to 100"
                                                               : " isn't a frequency above 0"));
}

void apply(const ClockSweep& sweep, double value, ClockTree& tree) {
    const auto number = static_cast<float>(value);
    switch (sweep.what) {
    case What::Reference:
        tree.referenceMhz = number;
        break;
    case What::MaxCross:
        tree.maxCrossMhz = number;
        break;
    case What::Request:
        tree.peripherals[sweep.peripheral].mhz = number;
        break;
    case What::AllowedError:
        tree.peripherals[sweep.peripheral].maxErrorPercent = number;
        break;
    case What::PllLimit:
        std::size_t left = sweep.pll;
        for (ClockTree::Domain& domain : tree.domains) {
            if (left < domain.plls.size()) {
                domain.plls[left].maxMhz = number;
                break;
            }
            left -= domain.plls.size();
        }
        break;
    }
}

[[nodiscard]] SweepPoint solvePoint(const ClockTree& tree, double value, LibraryTexts& texts) {
    const ClockRun run = runClockTree(tree, {}, &texts);
    if (!run.solver->is_result_found())
        return {{}, value};
    return {outcomeOf(makeClockReport(tree, *run.solver)), value};
}

/// Up to three decimals, and more where they are needed.
[[nodiscard]] std::string valueText(double value) {
    std::string text = fixedText(value, 9);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.')
        text.pop_back();
    return text;
}

/// One sign for 1 ppm, ten more for each power of ten.
[[nodiscard]] std::string bar(double ppm) {
    constexpr double signsPerDecade = 6.0;
    if (ppm < 1.0)
        return "|";
    return "|" + std::string(static_cast<std::size_t>(1 + signsPerDecade * std::log10(ppm)), '#');
}

} // namespace

ClockSweep readClockSweep(const ClockTree& tree, const std::string& text) {
    const std::string context = "--sweep " + text;
    const Halves halves = splitAtLast(text, '=', context, kForm);
    ClockSweep sweep;
    sweep.subject = halves.left;
    readSubject(tree, context, sweep);
    readValues(halves.right, context, sweep);
    return sweep;
}

std::vector<SweepPoint> runClockSweep(const ClockTree& tree, const ClockSweep& sweep) {
    LibraryTexts texts;
    std::vector<SweepPoint> points;
    ClockTree changed = tree;
    for (const double value : sweep.values) {
        hbs_clocking::SearchInterruption::raiseIfRequested();
        apply(sweep, value, changed);
        points.push_back(solvePoint(changed, value, texts));
    }
    return points;
}

const SweepPoint* bestPoint(const std::vector<SweepPoint>& points) {
    const SweepPoint* best = nullptr;
    for (const SweepPoint& point : points)
        if (point.found && (best == nullptr || point.sumPpm < best->sumPpm))
            best = &point;
    return best;
}

void printClockSweep(const ClockSweep& sweep, const std::vector<SweepPoint>& points,
                     std::ostream& out) {
    constexpr auto right = Table::Align::Right;
    Table table({{sweep.subject, right},
                 {"Sum ppm", right},
                 {"Worst ppm", right},
                 {"Worst peripheral"},
                 {"Sum, from 1 ppm, by powers of ten"}});
    for (const SweepPoint& point : points)
        if (point.found)
            table.addRow({valueText(point.value), fixedText(point.sumPpm, 1),
                          fixedText(point.worstPpm, 1), point.worst, bar(point.sumPpm)});
        else
            table.addRow({valueText(point.value), "no solution"});
    table.print(out);
    if (const SweepPoint* best = bestPoint(points))
        out << "\nBest: " << printable(sweep.subject) << " " << valueText(best->value)
            << ", with a sum of " << fixedText(best->sumPpm, 1) << " ppm.\n";
    else
        out << "\nNo value has a solution.\n";
}

void printClockSweepJson(const ClockSweep& sweep, const std::vector<SweepPoint>& points,
                         std::ostream& out) {
    JsonWriter json;
    json.beginObject();
    json.member("sweep", sweep.subject);
    json.writeKey("best");
    if (const SweepPoint* best = bestPoint(points))
        json.value(best->value);
    else
        json.null();
    json.beginArray("points");
    for (const SweepPoint& point : points) {
        json.beginObject();
        json.member("value", point.value);
        writeOutcome(point, json);
        json.endObject();
    }
    json.endArray();
    json.endObject();
    out << json.text();
}

} // namespace tq
