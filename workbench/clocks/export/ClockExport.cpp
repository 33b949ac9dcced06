#include "workbench/clocks/export/ClockExport.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "workbench/clocks/export/ClockWriters.h"
#include "workbench/files/InputError.h"
#include "workbench/text/CellText.h"
#include "workbench/text/Text.h"

namespace tq {

namespace {

struct Ending {
    std::string_view text;
    ClockFormat format;
};
constexpr std::array kEndings = {
    Ending{".dts", ClockFormat::Devicetree},  Ending{".dtsi", ClockFormat::Devicetree},
    Ending{".sdc", ClockFormat::Constraints}, Ending{".h", ClockFormat::CHeader},
    Ending{".csv", ClockFormat::Csv},         Ending{".md", ClockFormat::Markdown}};

[[nodiscard]] std::string mhzText(double mhz) {
    return fixedText(mhz, 6);
}

[[nodiscard]] std::string ppmText(const ClockReport::Peripheral& line) {
    constexpr double ppmPerPercent = 1e4;
    return line.given->errorPercent ? fixedText(*line.given->errorPercent * ppmPerPercent, 1) : "";
}

[[nodiscard]] std::string crossText(const ClockReport::Peripheral& line) {
    return line.crossDivider == 0 ? "" : std::to_string(line.crossDivider);
}

[[nodiscard]] std::string writeCsv(const ClockReport& report) {
    // Lines end as RFC 4180 has them.
    std::string text = "peripheral,domain,request_mhz,pll,multiplier,output_divider,pll_mhz,"
                       "cross_divider,own_divider,mhz,error_ppm\r\n";
    for (const ClockReport::Peripheral& line : report.peripherals) {
        if (!line.given)
            continue;
        const ClockReport::Pll& pll = clock_export::pllOf(report, line.pll);
        text += csvCell(line.request.name) + "," + csvCell(line.request.domain) + "," +
                mhzText(static_cast<double>(line.request.mhz)) + "," + csvCell(line.pll) + "," +
                std::to_string(pll.multiplier) + "," + std::to_string(pll.outputDivider) + "," +
                mhzText(line.pllMhz) + "," + crossText(line) + "," + std::to_string(line.divider) +
                "," + mhzText(line.given->mhz) + "," + ppmText(line) + "\r\n";
    }
    return text;
}

[[nodiscard]] std::string writeMarkdown(const ClockReport& report, float referenceMhz) {
    std::string text =
        "# Clock tree\n\nReference: " + mhzText(static_cast<double>(referenceMhz)) + " MHz\n\n";
    text += markdownRow({"PLL", "domain", "multiplier", "divider", "cross divider", "MHz"});
    text += markdownRow({"---", "---", "---:", "---:", "---:", "---:"});
    for (const ClockReport::Pll& pll : report.plls)
        text += markdownRow({markdownText(pll.name), markdownText(pll.domain),
                             std::to_string(pll.multiplier), std::to_string(pll.outputDivider),
                             std::to_string(pll.crossDivider), mhzText(pll.mhz)});
    text += "\n";
    text += markdownRow({"peripheral", "domain", "request MHz", "PLL", "PLL MHz", "÷ cross",
                         "÷ own", "gets MHz", "error ppm"});
    text += markdownRow({"---", "---", "---:", "---", "---:", "---:", "---:", "---:", "---:"});
    for (const ClockReport::Peripheral& line : report.peripherals)
        if (line.given)
            text +=
                markdownRow({markdownText(line.request.name), markdownText(line.request.domain),
                             mhzText(static_cast<double>(line.request.mhz)), markdownText(line.pll),
                             mhzText(line.pllMhz), crossText(line), std::to_string(line.divider),
                             mhzText(line.given->mhz), ppmText(line)});
    return text;
}

} // namespace

namespace clock_export {

std::uint64_t hzOf(double mhz) {
    constexpr double hzPerMhz = 1e6;
    return static_cast<std::uint64_t>(std::llround(mhz * hzPerMhz));
}

double referenceOf(float referenceMhz) {
    // The shortest decimal that reads back as the same number is what the file said.
    std::array<char, 64> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), referenceMhz).ptr;
    double reference = static_cast<double>(referenceMhz);
    std::from_chars(digits.data(), end, reference);
    return reference;
}

const ClockReport::Pll& pllOf(const ClockReport& report, const std::string& name) {
    return *std::find_if(report.plls.begin(), report.plls.end(),
                         [&](const ClockReport::Pll& pll) { return pll.name == name; });
}

bool isTakenAcross(const ClockReport& report, const std::string& pll) {
    return std::any_of(report.peripherals.begin(), report.peripherals.end(),
                       [&](const ClockReport::Peripheral& line) {
                           return line.pll == pll && line.crossDivider != 0;
                       });
}

} // namespace clock_export

std::optional<ClockFormat> clockFormatOf(std::string_view path) {
    for (const Ending& ending : kEndings)
        if (path.ends_with(ending.text))
            return ending.format;
    return std::nullopt;
}

std::string clockFormatEndings() {
    std::string list;
    for (const Ending& ending : kEndings)
        list.append(list.empty() ? "" : ", ").append(ending.text);
    return list;
}

std::string exportClocks(const ClockReport& report, float referenceMhz, ClockFormat format,
                         const DiagnosticSink& sink) {
    for (const ClockReport::Pll& pll : report.plls)
        if (pll.outputDivider == 0)
            throw InputError("the output divider of " + pll.name +
                             " is 0, expected a clock that can be exported");
    switch (format) {
    case ClockFormat::Devicetree:
        return clock_export::writeDevicetree(report, referenceMhz, sink);
    case ClockFormat::Constraints:
        return clock_export::writeConstraints(report, referenceMhz, sink);
    case ClockFormat::CHeader:
        return clock_export::writeCHeader(report, referenceMhz, sink);
    case ClockFormat::Csv:
        return writeCsv(report);
    case ClockFormat::Markdown:
        break;
    }
    return writeMarkdown(report, referenceMhz);
}

} // namespace tq
