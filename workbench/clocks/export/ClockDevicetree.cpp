// Clock trees as devicetree source.

#include <algorithm>
#include <map>

#include "workbench/addressing/export/LegalNames.h"
#include "workbench/clocks/export/ClockWriters.h"

namespace tq::clock_export {

namespace {

[[nodiscard]] std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return text;
}

/// Node names have "-" where labels have "_".
[[nodiscard]] std::string nodeName(std::string label) {
    std::replace(label.begin(), label.end(), '_', '-');
    return label;
}

class Devicetree {
public:
    explicit Devicetree(const DiagnosticSink& sink) : m_labels(sink, " clk_reference ") {}

    std::string write(const ClockReport& report, float referenceMhz) {
        m_text =
            "/* Clocks of a solved tree. Generated; don't edit. */\n/dts-v1/;\n\n/ {\n"
            "\tclocks {\n"
            "\t\tclk_reference: clk-reference {\n"
            "\t\t\tcompatible = \"fixed-clock\";\n"
            "\t\t\t#clock-cells = <0>;\n"
            "\t\t\tclock-frequency = <" +
            std::to_string(std::min<std::uint64_t>(hzOf(referenceOf(referenceMhz)), UINT32_MAX)) +
            ">;\n\t\t};\n";
        for (const ClockReport::Pll& pll : report.plls)
            write(report, pll);
        for (const ClockReport::Peripheral& line : report.peripherals)
            if (line.given)
                m_consumers += consumer(line);
        return m_text + "\t};\n\n\tconsumers {\n" + m_consumers + "\t};\n};\n";
    }

private:
    [[nodiscard]] std::string label(const std::string& name, const char* suffix = "") {
        return m_labels.take("clk_" + lower(identifier(name)) + suffix, name);
    }

    void addClock(const std::string& name, const std::string& source, unsigned multiplier,
                  unsigned divider) {
        m_text += "\t\t" + name + ": " + nodeName(name) +
                  " {\n"
                  "\t\t\tcompatible = \"fixed-factor-clock\";\n"
                  "\t\t\t#clock-cells = <0>;\n"
                  "\t\t\tclocks = <&" +
                  source + ">;\n\t\t\tclock-mult = <" + std::to_string(multiplier) +
                  ">;\n\t\t\tclock-div = <" + std::to_string(divider) + ">;\n\t\t};\n";
    }

    void write(const ClockReport& report, const ClockReport::Pll& pll) {
        const std::string name = label(pll.name);
        addClock(name, "clk_reference", pll.multiplier, pll.outputDivider);
        m_clocks[pll.name] = name;
        if (!isTakenAcross(report, pll.name))
            return;
        const std::string across = label(pll.name, "_cross");
        addClock(across, name, 1, pll.crossDivider);
        m_crossClocks[pll.name] = across;
    }

    /// Adds the divider of a peripheral; gives the node that takes its clock.
    [[nodiscard]] std::string consumer(const ClockReport::Peripheral& line) {
        const std::string name = label(line.request.name);
        addClock(name, (line.crossDivider == 0 ? m_clocks : m_crossClocks)[line.pll], 1,
                 line.divider);
        const std::uint64_t hz = hzOf(line.given->mhz);
        const std::string rate =
            hz <= UINT32_MAX ? "assigned-clock-rates = <" + std::to_string(hz) + ">"
                             : "assigned-clock-rates-u64 = /bits/ 64 <" + std::to_string(hz) + ">";
        constexpr std::size_t prefix = 4; // of "clk_"
        return "\t\t" + nodeName(name.substr(prefix)) + " {\n\t\t\tclocks = <&" + name +
               ">;\n\t\t\tassigned-clocks = <&" + name + ">;\n\t\t\t" + rate + ";\n\t\t};\n";
    }

    LegalNames m_labels;
    std::map<std::string, std::string> m_clocks; ///< labels by PLL
    std::map<std::string, std::string> m_crossClocks;
    std::string m_text;
    std::string m_consumers;
};

} // namespace

std::string writeDevicetree(const ClockReport& report, float referenceMhz,
                            const DiagnosticSink& sink) {
    return Devicetree(sink).write(report, referenceMhz);
}

} // namespace tq::clock_export
