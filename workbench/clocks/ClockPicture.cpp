// The report of `hbs clocks` as a picture: reference, PLLs by domain, peripherals beside their PLL.

#include <algorithm>
#include <cmath>
#include <ostream>

#include <pugixml.hpp>

#include "workbench/clocks/ClockPage.h"
#include "workbench/clocks/ClockReport.h"
#include "workbench/text/Table.h"
#include "workbench/text/Text.h"
#include "workbench/text/XmlNode.h"
#include "workbench/text/XmlText.h"

namespace tq {

namespace {

// All in pixels.
constexpr int kMargin = 24;
constexpr int kHeader = 64;
constexpr int kRow = 30;
constexpr int kBox = 24; ///< height of a peripheral's box
constexpr int kGap = 18; ///< between PLLs
constexpr int kDomainGap = 34;
constexpr int kLeastPllRows = 2;
constexpr int kReferenceWidth = 110;
constexpr int kPllX = 210;
constexpr int kPllWidth = 250;
constexpr int kPllHeight = 46;
constexpr int kPeripheralX = 590;
constexpr int kPeripheralWidth = 470;
constexpr int kWidth = kPeripheralX + kPeripheralWidth + kMargin;

constexpr const char* kGood = "#2e7d32";
constexpr const char* kFair = "#b26a00";
constexpr const char* kPoor = "#c62828";

/// The larger the error, the warmer.
[[nodiscard]] const char* colourOf(const GivenClock& given) {
    const double percent = std::fabs(given.errorPercent.value_or(0.0));
    return percent <= 0.1 ? kGood : percent <= 1.0 ? kFair : kPoor;
}

class Picture {
public:
    /// With marks, each part of a PLL's clock names the PLL.
    Picture(const ClockReport& report, float referenceMhz, bool hasMarks)
        : m_report(report), m_referenceMhz(referenceMhz), m_hasMarks(hasMarks) {}

    void write(std::ostream& out) {
        m_svg = append(m_document, "svg");
        set(m_svg, "xmlns", "http://www.w3.org/2000/svg");
        set(m_svg, "font-family", "Helvetica, Arial, sans-serif");
        set(m_svg, "font-size", "13");
        rect(0, 0, kWidth, heightOfAll(), "#ffffff", "none");
        addHeader();
        int y = kHeader + kMargin;
        for (std::size_t i = 0; i < m_report.plls.size(); ++i) {
            const bool newDomain = i == 0 || m_report.plls[i].domain != m_report.plls[i - 1].domain;
            if (newDomain) {
                y += i == 0 ? 0 : kDomainGap - kGap;
                addDomain(i, y);
            }
            y += heightOf(m_report.plls[i]) + kGap;
        }
        for (const auto& [pll, top] : m_tops)
            addPll(*pll, top);
        addReference(y - kGap);
        set(m_svg, "width", kWidth);
        set(m_svg, "height", heightOfAll());
        // What shows it smaller scales it instead of cutting it off.
        set(m_svg, "viewBox",
            ("0 0 " + std::to_string(kWidth) + " " + std::to_string(heightOfAll())).c_str());
        m_document.save(out, "  ");
    }

private:
    [[nodiscard]] std::vector<const ClockReport::Peripheral*>
    fedBy(const ClockReport::Pll& pll) const {
        std::vector<const ClockReport::Peripheral*> fed;
        for (const ClockReport::Peripheral& peripheral : m_report.peripherals)
            if (peripheral.given && peripheral.pll == pll.name)
                fed.push_back(&peripheral);
        return fed;
    }

    [[nodiscard]] int heightOf(const ClockReport::Pll& pll) const {
        return std::max(kLeastPllRows, static_cast<int>(fedBy(pll).size())) * kRow;
    }

    [[nodiscard]] int heightOfAll() const {
        int height = kHeader + 2 * kMargin;
        for (std::size_t i = 0; i < m_report.plls.size(); ++i) {
            const bool newDomain = i != 0 && m_report.plls[i].domain != m_report.plls[i - 1].domain;
            height += heightOf(m_report.plls[i]) + (newDomain ? kDomainGap : kGap);
        }
        return height;
    }

    void addHeader() {
        text(kMargin, kMargin + 12, "Clock tree", "#111111", "start", "18");
        text(kMargin, kMargin + 34,
             "Solved at tolerance " + fixedText(static_cast<double>(m_report.tolerance), 3) +
                 ", sum of relative errors " +
                 fixedText(static_cast<double>(m_report.totalError) * 1e6, 1) +
                 " ppm. Dashed: across a power domain.",
             "#555555");
        int x = kPeripheralX + 190;
        for (const auto& [colour, label] :
             {std::pair{kGood, "up to 0.1 %"}, {kFair, "up to 1 %"}, {kPoor, "above"}}) {
            rect(x, kMargin + 24, 12, 12, colour, "none");
            text(x + 18, kMargin + 34, label, "#555555");
            x += 105;
        }
    }

    /// The frame of a domain; keeps the places of its PLLs.
    void addDomain(std::size_t first, int top) {
        const std::string& name = m_report.plls[first].domain;
        int y = top;
        for (std::size_t i = first; i < m_report.plls.size() && m_report.plls[i].domain == name;
             ++i) {
            m_tops.emplace_back(&m_report.plls[i], y);
            y += heightOf(m_report.plls[i]) + kGap;
        }
        rect(kPllX - 14, top - 14, kPllWidth + 28, y - kGap - top + 22, "#f4f6f8", "#c5ccd3");
        text(kPllX - 8, top + 1, xmlText(name), "#555555", "start", "11");
    }

    void addPll(const ClockReport::Pll& pll, int top) {
        m_marked = m_hasMarks ? &pll : nullptr;
        const int middle = top + heightOf(pll) / 2;
        const int boxTop = middle - kPllHeight / 2 + 4;
        const int out = boxTop + kPllHeight / 2;
        m_inputs.push_back(out);
        rect(kPllX, boxTop, kPllWidth, kPllHeight, "#ffffff", "#37474f");
        text(kPllX + 10, boxTop + 18, xmlText(pll.name), "#111111", "start", "13", true);
        text(kPllX + kPllWidth - 10, boxTop + 18, fixedText(pll.mhz, 3) + " MHz", "#111111", "end");
        std::string dividers = "\u00d7" + std::to_string(pll.multiplier) + "  \u00f7" +
                               std::to_string(pll.outputDivider);
        if (pll.crossDivider != 0)
            dividers += "   across \u00f7" + std::to_string(pll.crossDivider);
        text(kPllX + 10, boxTop + 36, dividers, "#555555", "start", "12");

        const auto fed = fedBy(pll);
        int y = middle + 4 - static_cast<int>(fed.size()) * kRow / 2 + kRow / 2;
        for (const ClockReport::Peripheral* peripheral : fed) {
            addPeripheral(pll, *peripheral, out, y);
            y += kRow;
        }
        m_marked = nullptr;
    }

    void addPeripheral(const ClockReport::Pll& pll, const ClockReport::Peripheral& peripheral,
                       int out, int y) {
        const double direct = pll.mhz / peripheral.divider;
        const bool divided = std::fabs(direct - peripheral.given->mhz) > direct * 1e-6;
        const bool across = peripheral.request.domain != pll.domain;
        constexpr int bend = kPllX + kPllWidth + 40;
        line({{kPllX + kPllWidth, out}, {bend, out}, {bend, y}, {kPeripheralX, y}}, across);
        std::string dividers = "\u00f7" + std::to_string(peripheral.divider);
        if (divided)
            dividers = "\u00f7" + std::to_string(pll.crossDivider) + " " + dividers;
        text(kPeripheralX - 6, y - 4, dividers, "#37474f", "end", "11");

        const char* colour = colourOf(*peripheral.given);
        rect(kPeripheralX, y - kBox / 2, kPeripheralWidth, kBox, "#ffffff", "#90a4ae");
        rect(kPeripheralX, y - kBox / 2, 5, kBox, colour, "none");
        text(kPeripheralX + 14, y + 4, shortened(xmlText(peripheral.request.name), 24));
        text(kPeripheralX + 205, y + 4, shortened(xmlText(peripheral.request.domain), 13),
             "#777777", "start", "11");
        text(kPeripheralX + 380, y + 4, fixedText(peripheral.given->mhz, 4) + " MHz", "#111111",
             "end");
        text(kPeripheralX + kPeripheralWidth - 10, y + 4,
             peripheral.given->errorPercent ? fixedText(*peripheral.given->errorPercent, 4) + " %"
                                            : "off",
             colour, "end");
    }

    void addReference(int bottom) {
        const int middle = (kHeader + kMargin + bottom) / 2;
        constexpr int bend = kMargin + kReferenceWidth + 26;
        for (const int input : m_inputs)
            line({{kMargin + kReferenceWidth, middle},
                  {bend, middle},
                  {bend, input},
                  {kPllX, input}},
                 false);
        rect(kMargin, middle - 26, kReferenceWidth, 52, "#ffffff", "#37474f");
        text(kMargin + kReferenceWidth / 2, middle - 5, "Reference", "#111111", "middle", "13",
             true);
        text(kMargin + kReferenceWidth / 2, middle + 14,
             fixedText(static_cast<double>(m_referenceMhz), 4) + " MHz", "#555555", "middle", "12");
    }

    [[nodiscard]] pugi::xml_node element(const char* name) {
        pugi::xml_node node = append(m_svg, name);
        if (m_marked != nullptr)
            set(node, "data-pll", xmlText(m_marked->name).c_str());
        return node;
    }

    void rect(int x, int y, int width, int height, const char* fill, const char* stroke) {
        pugi::xml_node node = element("rect");
        set(node, "x", x);
        set(node, "y", y);
        set(node, "width", width);
        set(node, "height", height);
        set(node, "rx", width > 20 ? 4 : 0);
        set(node, "fill", fill);
        set(node, "stroke", stroke);
    }

    void text(int x, int y, const std::string& words, const char* colour = "#111111",
              const char* anchor = "start", const char* size = "13", bool bold = false) {
        pugi::xml_node node = element("text");
        set(node, "x", x);
        set(node, "y", y);
        set(node, "fill", colour);
        set(node, "text-anchor", anchor);
        set(node, "font-size", size);
        if (bold)
            set(node, "font-weight", "bold");
        expectMemory(node.text().set(words.c_str()));
    }

    void line(const std::vector<std::pair<int, int>>& points, bool dashed) {
        std::string list;
        for (const auto& [x, y] : points)
            list += std::to_string(x) + "," + std::to_string(y) + " ";
        pugi::xml_node node = element("polyline");
        set(node, "points", list.c_str());
        set(node, "fill", "none");
        set(node, "stroke", "#78909c");
        if (dashed)
            set(node, "stroke-dasharray", "5 3");
    }

    const ClockReport& m_report;
    float m_referenceMhz;
    bool m_hasMarks;
    const ClockReport::Pll* m_marked = nullptr; ///< of the parts that are being added
    pugi::xml_document m_document;
    pugi::xml_node m_svg;
    std::vector<std::pair<const ClockReport::Pll*, int>> m_tops;
    std::vector<int> m_inputs;
};

} // namespace

void printClockPicture(const ClockReport& report, float referenceMhz, std::ostream& out) {
    Picture(report, referenceMhz, false).write(out);
}

void printMarkedClockPicture(const ClockReport& report, float referenceMhz, std::ostream& out) {
    Picture(report, referenceMhz, true).write(out);
}

} // namespace tq
