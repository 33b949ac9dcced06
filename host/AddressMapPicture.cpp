#include "host/AddressMapPicture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "host/Table.h"

namespace host {

namespace {

// Pixels.
constexpr double kPanelWidth = 430;
constexpr double kMargin = 24;
constexpr double kHead = 84;       ///< above the strips: title, legend and the panel's name
constexpr double kStripWidth = 18; ///< the part true to scale
constexpr double kBoxLeft = 70;    ///< from the panel's left edge
constexpr double kBoxWidth = 210;
constexpr double kLeastHeight = 22; ///< of what fits into one page
constexpr double kPerDoubling = 2.4;
constexpr double kPageBits = 12;

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
    explicit Picture(const AddressMap& map) {
        for (const SpaceMap& space : map.spaces) {
            m_panels.push_back({&space, stretchesOf(space)});
            double height = 0;
            for (const Stretch& stretch : m_panels.back().stretches)
                height += stretch.height;
            m_height = std::max(m_height, height);
        }
    }

    std::string draw(const std::string& title) {
        const double width =
            2 * kMargin +
            kPanelWidth * static_cast<double>(std::max<std::size_t>(m_panels.size(), 1));
        m_svg =
            "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + px(width) + "\" height=\"" +
            px(kHead + m_height + 2 * kMargin) +
            "\" font-family=\"DejaVu Sans, sans-serif\" font-size=\"11\">\n"
            "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n"
            "<defs><pattern id=\"gap\" width=\"6\" height=\"6\" patternUnits=\"userSpaceOnUse\">"
            "<rect width=\"6\" height=\"6\" fill=\"#f6f6f6\"/>"
            "<path d=\"M0 6L6 0\" stroke=\"#d4d4d4\"/></pattern></defs>\n";
        text(kMargin, 26, title, "font-size=\"16\" font-weight=\"bold\"");
        text(kMargin, 44,
             "Left: true to scale. Right: heights grow with the logarithm of the size; "
             "hatched: nothing there.",
             "fill=\"#666666\"");
        for (std::size_t i = 0; i < m_panels.size(); ++i)
            drawPanel(m_panels[i], kMargin + kPanelWidth * static_cast<double>(i));
        return m_svg + "</svg>\n";
    }

private:
    struct Panel {
        const SpaceMap* space;
        std::vector<Stretch> stretches;
    };

    void text(double x, double y, const std::string& content, const std::string& style) {
        m_svg += "<text x=\"" + px(x) + "\" y=\"" + px(y) + "\" " + style + ">" + escaped(content) +
                 "</text>\n";
    }

    void rectangle(double x, double y, double width, double height, const std::string& style) {
        m_svg += "<rect x=\"" + px(x) + "\" y=\"" + px(y) + "\" width=\"" + px(width) +
                 "\" height=\"" + px(height) + "\" " + style + "/>\n";
    }

    void drawPanel(const Panel& panel, double x) {
        text(x, kHead - 12,
             panel.space->path + "  (" + panel.space->range.getAbrvStringValue() + ")",
             "font-size=\"12\" font-weight=\"bold\"");
        double height = 0;
        HABMAddrValue end = panel.space->range;
        for (const Stretch& stretch : panel.stretches) {
            height += stretch.height;
            end = std::max(end, stretch.start.plus(stretch.size));
        }
        rectangle(x, kHead, kStripWidth, height, "fill=\"url(#gap)\" stroke=\"#888888\"");
        double y = kHead;
        std::size_t colour = 0;
        const double perByte = height / std::max(number(end), 1.0);
        for (const Stretch& stretch : panel.stretches) {
            const std::string fill = stretch.entry != nullptr ? kFills[colour++ % kFills.size()]
                                                              : std::string("url(#gap)");
            if (stretch.entry != nullptr)
                drawToScale(stretch, x, y, perByte, fill);
            drawStretch(stretch, x, y, fill);
            y += stretch.height;
        }
    }

    /// The stretch in the strip on the left, and what leads from there to its box.
    void drawToScale(const Stretch& stretch, double x, double y, double perByte,
                     const std::string& fill) {
        const double top = kHead + perByte * number(stretch.start);
        const double height = std::max(perByte * number(stretch.size), 1.0);
        rectangle(x, top, kStripWidth, height, "fill=\"" + fill + "\"");
        m_svg += "<path d=\"M" + px(x + kStripWidth) + " " + px(top) + "L" + px(x + kBoxLeft) +
                 " " + px(y) + "V" + px(y + stretch.height) + "L" + px(x + kStripWidth) + " " +
                 px(top + height) + "Z\" fill=\"" + fill + "\" fill-opacity=\"0.35\"/>\n";
    }

    void drawStretch(const Stretch& stretch, double x, double y, const std::string& fill) {
        rectangle(x + kBoxLeft, y, kBoxWidth, stretch.height,
                  "fill=\"" + fill + "\" stroke=\"#888888\"");
        const std::string size = stretch.size.getAbrvStringValue();
        const double middle = y + stretch.height / 2 + 4;
        if (stretch.entry != nullptr)
            text(x + kBoxLeft + 8, middle, stretch.entry->name + "  " + size, "");
        else
            text(x + kBoxLeft + 8, middle, "unused  " + size, "fill=\"#888888\"");
        text(x + kBoxLeft + kBoxWidth + 6, y + 9, stretch.start.getPrettyHexStringValue(0),
             "font-size=\"10\" font-family=\"DejaVu Sans Mono, monospace\" fill=\"#444444\"");
    }

    std::vector<Panel> m_panels;
    double m_height = 0;
    std::string m_svg;
};

} // namespace

std::string drawAddressMap(const AddressMap& map, const std::string& title) {
    return Picture(map).draw(title);
}

std::string drawAddressMapPage(const AddressMap& map, const std::string& title) {
    return "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>" +
           escaped(title) + "</title></head>\n<body>\n" + drawAddressMap(map, title) +
           "</body></html>\n";
}

} // namespace host
