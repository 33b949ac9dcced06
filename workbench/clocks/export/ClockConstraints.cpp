// Clock trees as timing constraints (SDC).

#include <array>
#include <charconv>
#include <map>

#include "workbench/addressing/export/LegalNames.h"
#include "workbench/clocks/export/ClockWriters.h"

namespace tq::clock_export {

namespace {

/// Nanoseconds, in the shortest form that reads back as the same number.
[[nodiscard]] std::string periodText(double mhz) {
    constexpr double nsPerUs = 1000.0;
    std::array<char, 64> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), nsPerUs / mhz).ptr;
    return {digits.data(), end};
}

class Constraints {
public:
    explicit Constraints(const DiagnosticSink& sink) : m_names(sink, " reference ") {}

    std::string write(const ClockReport& report, float referenceMhz) {
        m_text =
            "# Clocks of a solved tree. Generated; don't edit. Ratios are exact; the names of\n"
            "# ports and pins are those of the tree.\n"
            "create_clock -name reference -period " +
            periodText(referenceOf(referenceMhz)) + " [get_ports {reference}]\n";
        for (const ClockReport::Pll& pll : report.plls)
            write(report, pll);
        for (const ClockReport::Peripheral& line : report.peripherals)
            if (line.given)
                write(line);
        return m_text;
    }

private:
    /// Names that are identifiers need no quoting in Tcl.
    void generate(const std::string& name, const std::string& source, const std::string& ratio,
                  const std::string& pin) {
        m_text += "create_generated_clock -name " + name + " -source " + source + " " + ratio +
                  " [get_pins {" + pin + "}]\n";
    }

    void write(const ClockReport& report, const ClockReport::Pll& pll) {
        const std::string name = m_names.take(identifier(pll.name), pll.name);
        generate(name, "[get_ports {reference}]",
                 "-multiply_by " + std::to_string(pll.multiplier) + " -divide_by " +
                     std::to_string(pll.outputDivider),
                 name + "/CLKOUT");
        m_pins[pll.name] = name + "/CLKOUT";
        if (!isTakenAcross(report, pll.name))
            return;
        const std::string across = m_names.take(name + "_cross", pll.name);
        generate(across, "[get_pins {" + name + "/CLKOUT}]",
                 "-divide_by " + std::to_string(pll.crossDivider), name + "/CLKCROSS");
        m_crossPins[pll.name] = name + "/CLKCROSS";
    }

    void write(const ClockReport::Peripheral& line) {
        const std::string name = m_names.take(identifier(line.request.name), line.request.name);
        const std::string& pin = (line.crossDivider == 0 ? m_pins : m_crossPins)[line.pll];
        generate(name, "[get_pins {" + pin + "}]", "-divide_by " + std::to_string(line.divider),
                 name + "/CLK");
    }

    LegalNames m_names;
    std::map<std::string, std::string> m_pins; ///< by PLL
    std::map<std::string, std::string> m_crossPins;
    std::string m_text;
};

} // namespace

std::string writeConstraints(const ClockReport& report, float referenceMhz,
                             const DiagnosticSink& sink) {
    return Constraints(sink).write(report, referenceMhz);
}

} // namespace tq::clock_export
