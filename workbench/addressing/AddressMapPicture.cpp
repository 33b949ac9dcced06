#include "workbench/addressing/AddressMapPicture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <initializer_list>
#include <pugixml.hpp>
#include <string_view>
#include <utility>

#include "workbench/text/Table.h"
#include "workbench/text/Text.h"
#include "workbench/text/TextStream.h"
#include "workbench/text/XmlNode.h"
#include "workbench/text/XmlText.h"

namespace tq {

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

constexpr const char* kHatched = "url(#gap)";
constexpr const char* kFrame = "#888888";

/// A stretch of an address space in the picture.
struct Stretch {
    HABMAddrValue start;
    HABMAddrValue size;
    const AddressMap::SpaceEntry* entry = nullptr; ///< null for a gap
    double height = 0;
};

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
std::vector<Stretch> stretchesOf(const AddressMap::Space& space) {
    std::vector<Stretch> stretches;
    const auto add = [&](const HABMAddrValue& start, const HABMAddrValue& size,
                         const AddressMap::SpaceEntry* entry) {
        stretches.push_back({start, size, entry, heightOf(size)});
    };
    HABMAddrValue reached(std::uint64_t{0});
    for (const AddressMap::SpaceEntry& entry :
         space.assigned.empty() ? space.windows : space.assigned) {
        if (reached < entry.start)
            add(reached, entry.start.minus(reached), nullptr);
        add(entry.start, entry.size, &entry);
        reached = std::max(reached, entry.start.plus(entry.size));
    }
    if (reached < space.space->getRange())
        add(reached, space.space->getRange().minus(reached), nullptr);
    return stretches;
}

/// How a text is written.
struct Style {
    const char* size = nullptr; ///< in pixels; null for the picture's own
    const char* fill = nullptr;
    bool isBold = false;
    bool isFixed = false; ///< a font of fixed width
};

class Picture {
public:
    /// Draws below a node of a document.
    Picture(pugi::xml_node parent, const AddressMap& map, const std::string& title)
        : m_svg(append(parent, "svg")) {
        set(m_svg, "xmlns", "http://www.w3.org/2000/svg");
        pugi::xml_attribute width = set(m_svg, "width", "");
        pugi::xml_attribute height = set(m_svg, "height", "");
        drawHeader(title);
        double y = kTitleHeight;
        for (std::size_t i = 0; i < map.spaces().size(); i += kPanelsPerRow)
            y += drawRow(map.spaces(), i, y);
        const auto columns =
            static_cast<double>(std::clamp<std::size_t>(map.spaces().size(), 2, kPanelsPerRow));
        expectMemory(width.set_value(px(2 * kMargin + kPanelWidth * columns).c_str()) &&
                     height.set_value(px(y + kMargin).c_str()));
    }

private:
    struct Panel {
        const AddressMap::Space& space;
        double x;
        double y;      ///< upper edge of the strips
        double height; ///< of the strips
        double bytes;  ///< that the strip on the left shows
        std::vector<Stretch> stretches;
    };

    void drawHeader(const std::string& title) {
        set(m_svg, "font-family", "DejaVu Sans, sans-serif");
        set(m_svg, "font-size", "11");
        addShape(m_svg, "rect", {{"width", "100%"}, {"height", "100%"}, {"fill", "#ffffff"}});
        pugi::xml_node pattern = addShape(
            append(m_svg, "defs"), "pattern",
            {{"id", "gap"}, {"width", "6"}, {"height", "6"}, {"patternUnits", "userSpaceOnUse"}});
        addShape(pattern, "rect", {{"width", "6"}, {"height", "6"}, {"fill", "#f6f6f6"}});
        addShape(pattern, "path", {{"d", "M0 6L6 0"}, {"stroke", "#d4d4d4"}});
        addText(kMargin, 26, title, {"16", nullptr, true});
        addText(kMargin, 44,
                "Left: true to scale. Right: heights grow with the logarithm of the size; "
                "hatched: nothing there.",
                {nullptr, "#666666"});
    }

    /// Draws the row that starts with the space `first`; gives its height.
    double drawRow(const std::vector<AddressMap::Space>& spaces, std::size_t first, double y) {
        double highest = 0;
        for (std::size_t i = first; i < std::min(first + kPanelsPerRow, spaces.size()); ++i) {
            Panel panel{spaces[i],
                        kMargin + kPanelWidth * static_cast<double>(i - first),
                        y + kNameHeight,
                        0,
                        std::max(number(spaces[i].space->getRange()), 1.0),
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

    void drawPanel(const Panel& panel) {
        const AddressMap::Space& space = panel.space;
        const std::string what = space.assigned.empty() ? ", windows" : "";
        addText(panel.x, panel.y - 12,
                space.path + "  (" + sizeText(space.space->getRange()) + what + ")",
                {"12", nullptr, true});
        addRectangle(panel.x, panel.y, kStripWidth, panel.height, kHatched, kFrame);
        double y = panel.y;
        std::size_t colour = 0;
        for (const Stretch& stretch : panel.stretches) {
            const bool isGap = stretch.entry == nullptr;
            const char* const fill = isGap ? kHatched : kFills[colour++ % kFills.size()];
            if (!isGap)
                drawToScale(panel, stretch, y, fill);
            drawStretch(stretch, panel.x, y, fill);
            y += stretch.height;
        }
    }

    /// The stretch in the strip on the left, and what leads from there to its box.
    void drawToScale(const Panel& panel, const Stretch& stretch, double y, const char* fill) {
        const double perByte = panel.height / panel.bytes;
        const double top = panel.y + perByte * number(stretch.start);
        const double height = std::max(perByte * number(stretch.size), 1.0);
        addRectangle(panel.x, top, kStripWidth, height, fill);
        const std::string outline = "M" + px(panel.x + kStripWidth) + " " + px(top) + "L" +
                                    px(panel.x + kBoxLeft) + " " + px(y) + "V" +
                                    px(y + stretch.height) + "L" + px(panel.x + kStripWidth) + " " +
                                    px(top + height) + "Z";
        addShape(m_svg, "path", {{"d", outline.c_str()}, {"fill", fill}, {"fill-opacity", "0.35"}});
    }

    void drawStretch(const Stretch& stretch, double x, double y, const char* fill) {
        addRectangle(x + kBoxLeft, y, kBoxWidth, stretch.height, fill, kFrame);
        const bool isGap = stretch.entry == nullptr;
        addText(x + kBoxLeft + 8, y + stretch.height / 2 + 4,
                (isGap ? "unused" : stretch.entry->name) + "  " + sizeText(stretch.size),
                {nullptr, isGap ? kFrame : nullptr});
        addText(x + kBoxLeft + kBoxWidth + 6, y + 9, stretch.start.getPrettyHexStringValue(0),
                {"10", "#444444", false, true});
    }

    using Attributes = std::initializer_list<std::pair<const char*, const char*>>;

    static pugi::xml_node addShape(pugi::xml_node parent, const char* name, Attributes attributes) {
        pugi::xml_node shape = append(parent, name);
        for (const auto& [key, value] : attributes)
            set(shape, key, value);
        return shape;
    }

    void addRectangle(double x, double y, double width, double height, const char* fill,
                      const char* stroke = nullptr) {
        pugi::xml_node shape = addShape(m_svg, "rect",
                                        {{"x", px(x).c_str()},
                                         {"y", px(y).c_str()},
                                         {"width", px(width).c_str()},
                                         {"height", px(height).c_str()},
                                         {"fill", fill}});
        if (stroke != nullptr)
            set(shape, "stroke", stroke);
    }

    void addText(double x, double y, const std::string& content, const Style& style) {
        pugi::xml_node text = addShape(m_svg, "text", {{"x", px(x).c_str()}, {"y", px(y).c_str()}});
        if (style.size != nullptr)
            set(text, "font-size", style.size);
        if (style.isBold)
            set(text, "font-weight", "bold");
        if (style.isFixed)
            set(text, "font-family", "DejaVu Sans Mono, monospace");
        if (style.fill != nullptr)
            set(text, "fill", style.fill);
        expectMemory(text.text().set(xmlText(content).c_str()));
    }

    pugi::xml_node m_svg;
};

std::string textOf(const pugi::xml_document& document) {
    TextStream text;
    document.save(text, "", pugi::format_no_declaration);
    return text.str();
}

} // namespace

std::string drawAddressMap(const AddressMap& map, const std::string& title) {
    pugi::xml_document document;
    Picture(document, map, title);
    return textOf(document);
}

std::string drawAddressMaps(const std::vector<std::pair<const AddressMap*, std::string>>& maps) {
    if (maps.size() == 1)
        return drawAddressMap(*maps.front().first, maps.front().second);
    pugi::xml_document document;
    pugi::xml_node all = append(document, "svg");
    set(all, "xmlns", "http://www.w3.org/2000/svg");
    double width = 0;
    double height = 0;
    for (const auto& [map, title] : maps) {
        Picture(all, *map, title);
        pugi::xml_node picture = all.last_child();
        set(picture, "x", px(width).c_str());
        width += picture.attribute("width").as_double();
        height = std::max(height, picture.attribute("height").as_double());
    }
    set(all, "width", px(width).c_str());
    set(all, "height", px(height).c_str());
    return textOf(document);
}

} // namespace tq
