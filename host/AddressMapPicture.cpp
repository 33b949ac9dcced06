#include "host/AddressMapPicture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <string_view>

#include "host/Table.h"

namespace host {

namespace {

// Pixels.
constexpr double kPanelWidth = 390;
constexpr double kMargin = 24;
constexpr double kTitleHeight = 52; ///< with the legend
constexpr double kNameHeight = 34;  ///< of a panel
constexpr double kStripWidth = 18;  ///< the part true to scale
constexpr double kBoxLeft = 70;     ///< from the panel's left edge
constexpr double kBoxWidth = 210;
constexpr double kLeastHeight = 22; ///< of what fits into one page
constexpr double kPerDoubling = 2.4;
constexpr double kPageBits = 12;

constexpr std::size_t kPanelsPerRow = 4;

constexpr std::array<const char*, 6> kFills{"#8fb8de", "#f2c14e", "#9bc995",
                                            "#e59a84", "#b8a1d9", "#7fc8c2"};

/// A stretch of an address space in the picture.
struct Stretch {
    HABMAddrValue start;
    HABMAddrValue size;
    const SpaceEntry* entry = nullptr; ///< null for a gap
    double height = 0;
};

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '>')
            result += "&gt;";
        else if (c == '"')
            result += "&quot;";
        else
            result += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
    return result;
}

std::string px(double value) {
    return fixedText(value, 1);
}

/// Addresses as numbers to draw with; the digits lost are far below a pixel.
double number(const HABMAddrValue& value) {
    return value.isValid() ? std::strtod(value.getHexStringValue(0).c_str(), nullptr) : 0;
}

/// A size for the eye: "700K", or "1.95G" where no unit divides it.
std::string sizeText(const HABMAddrValue& size) {
    constexpr std::string_view kUnits = "KMGTPE";
    double value = number(size);
    std::size_t unit = 0;
    for (; value >= 1024 && unit < kUnits.size(); ++unit)
        value /= 1024;
    const bool isWhole = value == std::floor(value);
    return fixedText(value, isWhole ? 0 : 2) + (unit == 0 ? "" : std::string(1, kUnits[unit - 1]));
}

double heightOf(const HABMAddrValue& size) {
    const double bits = std::log2(std::max(number(size), 1.0));
    return kLeastHeight + kPerDoubling * std::max(0.0, bits - kPageBits);
}

/// What a space holds from its start to its end, with the gaps between.
std::vector<Stretch> stretchesOf(const SpaceMap& space) {
    std::vector<Stretch> stretches;
    const auto add = [&](const HABMAddrValue& start, const HABMAddrValue& size,
                         const SpaceEntry* entry) {
        stretches.push_back({start, size, entry, heightOf(size)});
    };
    HABMAddrValue reached(std::uint64_t{0});
    for (const SpaceEntry& entry : space.assigned.empty() ? space.windows : space.assigned) {
        if (reached < entry.start)
            add(reached, entry.start.minus(reached), nullptr);
        add(entry.start, entry.size, &entry);
        reached = std::max(reached, entry.start.plus(entry.size));
    }
    if (reached < space.range)
        add(reached, space.range.minus(reached), nullptr);
    return stretches;
}

class Picture {
public:
    std::string draw(const AddressMap& map, const std::string& title) {
        double y = kTitleHeight;
        for (std::size_t i = 0; i < map.spaces.size(); i += kPanelsPerRow)
            y += drawRow(map.spaces, i, y);
        return header(map.spaces.size(), y + kMargin, title) + m_svg + "</svg>\n";
    }

private:
    struct Panel {
        const SpaceMap& space;
        double x;
        double y;      ///< upper edge of the strips
        double height; ///< of the strips
        double bytes;  ///< that the strip on the left stands for
        std::vector<Stretch> stretches;
    };

    static std::string header(std::size_t panels, double height, const std::string& title) {
        const auto columns = static_cast<double>(std::clamp<std::size_t>(panels, 2, kPanelsPerRow));
        return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
               px(2 * kMargin + kPanelWidth * columns) + "\" height=\"" + px(height) +
               "\" font-family=\"DejaVu Sans, sans-serif\" font-size=\"11\">\n"
               "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n"
               "<defs><pattern id=\"gap\" width=\"6\" height=\"6\" "
               "patternUnits=\"userSpaceOnUse\"><rect width=\"6\" height=\"6\" fill=\"#f6f6f6\"/>"
               "<path d=\"M0 6L6 0\" stroke=\"#d4d4d4\"/></pattern></defs>\n" +
               textAt(kMargin, 26, title, "font-size=\"16\" font-weight=\"bold\"") +
               textAt(kMargin, 44,
                      "Left: true to scale. Right: heights grow with the logarithm of the size; "
                      "hatched: nothing there.",
                      "fill=\"#666666\"");
    }

    /// Draws the row that starts with the space `first`; gives its height.
    double drawRow(const std::vector<SpaceMap>& spaces, std::size_t first, double y) {
        double highest = 0;
        for (std::size_t i = first; i < std::min(first + kPanelsPerRow, spaces.size()); ++i) {
            Panel panel{spaces[i],
                        kMargin + kPanelWidth * static_cast<double>(i - first),
                        y + kNameHeight,
                        0,
                        std::max(number(spaces[i].range), 1.0),
                        stretchesOf(spaces[i])};
            for (const Stretch& stretch : panel.stretches) {
                panel.height += stretch.height;
                panel.bytes = std::max(panel.bytes, number(stretch.start) + number(stretch.size));
            }
            drawPanel(panel);
            highest = std::max(highest, panel.height);
        }
        return kNameHeight + highest + kMargin;
    }

    static std::string textAt(double x, double y, const std::string& content,
                              const std::string& style) {
        return "<text x=\"" + px(x) + "\" y=\"" + px(y) + "\" " + style + ">" + escaped(content) +
               "</text>\n";
    }

    void rectangle(double x, double y, double width, double height, const std::string& style) {
        m_svg += "<rect x=\"" + px(x) + "\" y=\"" + px(y) + "\" width=\"" + px(width) +
                 "\" height=\"" + px(height) + "\" " + style + "/>\n";
    }

    void drawPanel(const Panel& panel) {
        const SpaceMap& space = panel.space;
        const std::string what = space.assigned.empty() ? ", windows" : "";
        m_svg +=
            textAt(panel.x, panel.y - 12, space.path + "  (" + sizeText(space.range) + what + ")",
                   "font-size=\"12\" font-weight=\"bold\"");
        rectangle(panel.x, panel.y, kStripWidth, panel.height,
                  "fill=\"url(#gap)\" stroke=\"#888888\"");
        double y = panel.y;
        std::size_t colour = 0;
        for (const Stretch& stretch : panel.stretches) {
            const std::string fill = stretch.entry != nullptr ? kFills[colour++ % kFills.size()]
                                                              : std::string("url(#gap)");
            if (stretch.entry != nullptr)
                drawToScale(panel, stretch, y, fill);
            drawStretch(stretch, panel.x, y, fill);
            y += stretch.height;
        }
    }

    /// The stretch in the strip on the left, and what leads from there to its box.
    void drawToScale(const Panel& panel, const Stretch& stretch, double y,
                     const std::string& fill) {
        const double perByte = panel.height / panel.bytes;
        const double top = panel.y + perByte * number(stretch.start);
        const double height = std::max(perByte * number(stretch.size), 1.0);
        rectangle(panel.x, top, kStripWidth, height, "fill=\"" + fill + "\"");
        m_svg += "<path d=\"M" + px(panel.x + kStripWidth) + " " + px(top) + "L" +
                 px(panel.x + kBoxLeft) + " " + px(y) + "V" + px(y + stretch.height) + "L" +
                 px(panel.x + kStripWidth) + " " + px(top + height) + "Z\" fill=\"" + fill +
                 "\" fill-opacity=\"0.35\"/>\n";
    }

    void drawStretch(const Stretch& stretch, double x, double y, const std::string& fill) {
        rectangle(x + kBoxLeft, y, kBoxWidth, stretch.height,
                  "fill=\"" + fill + "\" stroke=\"#888888\"");
        const bool isGap = stretch.entry == nullptr;
        m_svg += textAt(x + kBoxLeft + 8, y + stretch.height / 2 + 4,
                        (isGap ? "unused" : stretch.entry->name) + "  " + sizeText(stretch.size),
                        isGap ? "fill=\"#888888\"" : "");
        m_svg +=
            textAt(x + kBoxLeft + kBoxWidth + 6, y + 9, stretch.start.getPrettyHexStringValue(0),
                   "font-size=\"10\" font-family=\"DejaVu Sans Mono, monospace\" "
                   "fill=\"#444444\"");
    }

    std::string m_svg;
};

} // namespace

std::string drawAddressMap(const AddressMap& map, const std::string& title) {
    return Picture().draw(map, title);
}

std::string drawAddressMapPage(const AddressMap& map, const std::string& title) {
    return "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>" +
           escaped(title) + "</title></head>\n<body>\n" + drawAddressMap(map, title) +
           "</body></html>\n";
}

} // namespace host
