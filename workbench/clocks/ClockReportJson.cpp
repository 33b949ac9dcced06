// The report of `hbs clocks` as JSON.

#include <array>
#include <charconv>
#include <cmath>
#include <ostream>

#include "base/JsonWriter.h"
#include "workbench/clocks/ClockOutcomeJson.h"

namespace tq {

namespace {

class ReportWriter {
public:
    explicit ReportWriter(std::ostream& out) : m_stream(out), m_json(m_stream) {
        m_json.SetIndent(' ', 2);
    }

    void write(const ClockReport& report) {
        m_json.StartObject();
        key("solved").Bool(report.found);
        if (report.found)
            writeSolution(report);
        else
            writeList("alone", report.alone);
        if (report.conflicts)
            writeConflicts(report);
        if (!report.alternatives.empty())
            writeList("alternatives", report.alternatives);
        m_json.EndObject();
    }

private:
    using Json = JsonPrettyWriter<rapidjson::OStreamWrapper>;

    void writeSolution(const ClockReport& report) {
        number("tolerance", report.tolerance);
        number("sum_of_relative_errors", report.totalError);
        if (report.weightedError)
            number("weighted_sum", *report.weightedError);
        if (report.search) {
            key("search").StartObject();
            key("combinations").Uint64(report.search->combinations);
            key("settings_looked_at").Uint64(report.search->evaluated);
            key("settings_per_combination").Uint(report.search->settingsPerCombination);
            m_json.EndObject();
        }
        writeList("plls", report.plls);
        writeList("peripherals", report.peripherals);
    }

    /// The sets as lists of names, and beside them what becomes of the others without each.
    void writeConflicts(const ClockReport& report) {
        key("conflicts").StartArray();
        for (const ClockReport::Conflict& conflict : *report.conflicts) {
            m_json.StartArray();
            for (const ClockReport::Conflict::Without& without : conflict.members)
                m_json.String(without.name.data(),
                              static_cast<rapidjson::SizeType>(without.name.size()));
            m_json.EndArray();
        }
        m_json.EndArray();
        key("without").StartArray();
        for (const ClockReport::Conflict& conflict : *report.conflicts)
            writeConflict(conflict);
        m_json.EndArray();
    }

    void writeConflict(const ClockReport::Conflict& conflict) {
        m_json.StartArray();
        for (const ClockReport::Conflict::Without& without : conflict.members) {
            m_json.StartObject();
            text("name", without.name);
            key("all_others_met").Bool(without.allMet);
            if (without.tolerance)
                number("tolerance", *without.tolerance);
            else
                key("tolerance").Null();
            m_json.EndObject();
        }
        m_json.EndArray();
    }

    template <class Item>
    void writeList(const char* name, const std::vector<Item>& items) {
        key(name).StartArray();
        for (const Item& item : items) {
            m_json.StartObject();
            writeItem(item);
            m_json.EndObject();
        }
        m_json.EndArray();
    }

    void writeItem(const ClockReport::Alternative& alternative) {
        constexpr double ppm = 1e6;
        number("sum_of_relative_errors", alternative.sumPpm / ppm);
        if (alternative.weightedSumPpm)
            number("weighted_sum", *alternative.weightedSumPpm / ppm);
        key("differences").StartArray();
        for (const std::string& difference : alternative.differences)
            m_json.String(difference.data(), static_cast<rapidjson::SizeType>(difference.size()));
        m_json.EndArray();
        writeList("trades", alternative.trades);
        writeList("plls", alternative.plls);
        writeList("peripherals", alternative.peripherals);
    }

    void writeItem(const ClockReport::Alternative::Trade& trade) {
        text("name", trade.peripheral);
        number("from_ppm", trade.fromPpm);
        number("to_ppm", trade.toPpm);
    }

    void writeItem(const ClockReport::Pll& pll) {
        text("name", pll.name);
        text("domain", pll.domain);
        key("multiplier").Uint(pll.multiplier);
        key("output_divider").Uint(pll.outputDivider);
        key("cross_domain_divider").Uint(pll.crossDivider);
        number("mhz", pll.mhz);
    }

    void writeItem(const ClockReport::Peripheral& line) {
        writeRequest(line.request);
        key("enabled").Bool(line.request.enabled);
        if (!line.given)
            return;
        text("pll", line.pll);
        key("divider").Uint(line.divider);
        writeGiven("mhz", *line.given);
    }

    void writeItem(const ClockReport::Alone& alone) {
        writeRequest(alone.request);
        number("max_error_percent", alone.request.maxErrorPercent);
        key("within_reach").Bool(alone.allowed);
        if (alone.nearest)
            writeGiven("nearest_mhz", *alone.nearest);
        else
            key("nearest_mhz").Null();
    }

    void writeRequest(const ClockTree::Peripheral& request) {
        text("name", request.name);
        text("domain", request.domain);
        number("request_mhz", request.mhz);
    }

    void writeGiven(const char* name, const GivenClock& given) {
        number(name, given.mhz);
        if (!given.errorPercent) {
            key("error_percent").Null();
            key("error_ppm").Null();
            return;
        }
        number("error_percent", *given.errorPercent);
        number("error_ppm", *given.errorPercent * 1e4);
    }

    Json& key(const char* name) {
        m_json.Key(name);
        return m_json;
    }

    void text(const char* name, const std::string& value) {
        key(name).String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
    }

    /// The shortest text that reads back as the same number of its own precision. Null for what
    /// JSON has no number for: the clock of a PLL whose output divider is 0 is infinite.
    template <class Number>
    void number(const char* name, Number value) {
        if (!std::isfinite(value)) {
            key(name).Null();
            return;
        }
        std::array<char, 64> digits{};
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
        key(name).RawValue(digits.data(), static_cast<std::size_t>(end - digits.data()),
                           rapidjson::kNumberType);
    }

    rapidjson::OStreamWrapper m_stream;
    Json m_json;
};

} // namespace

void writeOutcome(const ClockOutcome& outcome, JsonWriter& json) {
    json.member("solved", outcome.found);
    if (!outcome.found)
        return;
    json.member("tolerance", static_cast<double>(outcome.tolerance));
    json.member("sum_ppm", outcome.sumPpm);
    json.member("worst_ppm", outcome.worstPpm);
    json.member("worst", outcome.worst);
}

void printClockJson(const ClockReport& report, std::ostream& out) {
    ReportWriter(out).write(report);
    out << '\n';
}

} // namespace tq
