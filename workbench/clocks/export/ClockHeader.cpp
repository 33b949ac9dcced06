// Clock settings as macros of C and C++.

#include "workbench/addressing/export/LegalNames.h"
#include "workbench/clocks/export/ClockWriters.h"

namespace tq::clock_export {

namespace {

class Header {
public:
    explicit Header(const DiagnosticSink& sink) : m_names(sink, " CLOCKS_REFERENCE ") {}

    std::string write(const ClockReport& report, float referenceMhz) {
        m_text = "/* Clock settings. Generated; don't edit. */\n"
                 "#ifndef CLOCKS_H\n#define CLOCKS_H\n\n";
        define("CLOCKS_REFERENCE", "_HZ", hzOf(referenceOf(referenceMhz)), "ull");
        m_text += "\n/* The PLLs: reference * MULTIPLIER / DIVIDER; CROSS_DIVIDER for clocks that "
                  "cross a domain. */\n";
        for (const ClockReport::Pll& pll : report.plls)
            write(pll);
        m_text += "\n/* The peripherals: PLL is the INDEX of the source, DIVIDER their own, "
                  "CROSS_DIVIDER 1 for a clock that doesn't cross. */\n";
        for (const ClockReport::Peripheral& line : report.peripherals)
            if (line.given)
                write(report, line);
        return m_text + "\n#endif\n";
    }

private:
    void define(const std::string& name, const char* what, std::uint64_t number,
                const char* suffix = "u") {
        m_text += "#define " + name + what + " " + std::to_string(number) + suffix + "\n";
    }

    void write(const ClockReport::Pll& pll) {
        const std::string name = m_names.take("CLOCKS_" + capital(identifier(pll.name)), pll.name);
        define(name, "_INDEX", m_pllCount++);
        define(name, "_MULTIPLIER", pll.multiplier);
        define(name, "_DIVIDER", pll.outputDivider);
        define(name, "_CROSS_DIVIDER", pll.crossDivider);
        define(name, "_HZ", hzOf(pll.mhz), "ull");
    }

    void write(const ClockReport& report, const ClockReport::Peripheral& line) {
        const std::string name =
            m_names.take("CLOCKS_" + capital(identifier(line.request.name)), line.request.name);
        define(name, "_PLL",
               static_cast<std::uint64_t>(&pllOf(report, line.pll) - report.plls.data()));
        define(name, "_CROSS_DIVIDER", line.crossDivider == 0 ? 1 : line.crossDivider);
        define(name, "_DIVIDER", line.divider);
        define(name, "_HZ", hzOf(line.given->mhz), "ull");
    }

    LegalNames m_names;
    std::uint64_t m_pllCount = 0;
    std::string m_text;
};

} // namespace

std::string writeCHeader(const ClockReport& report, float referenceMhz,
                         const DiagnosticSink& sink) {
    return Header(sink).write(report, referenceMhz);
}

} // namespace tq::clock_export
