// A sweep as a plot: the sum and the worst error over the values, on a logarithmic scale.

#include <algorithm>
#include <cmath>
#include <ostream>

#include <pugixml.hpp>

#include "workbench/clocks/ClockSweep.h"
#include "workbench/text/Text.h"
#include "workbench/text/XmlNode.h"
#include "workbench/text/XmlText.h"

namespace tq {

namespace {

// All in pixels.
constexpr int kLeft = 90;
constexpr int kTop = 60;
constexpr int kWidth = 800;
constexpr int kHeight = 360;
constexpr int kMargin = 24;
constexpr int kTicks = 8;

constexpr double kLeastPpm = 0.1; ///< the bottom of the scale; smaller errors are drawn there
constexpr const char* kSumColour = "#1565c0";
constexpr const char* kWorstColour = "#c62828";
constexpr const char* kInk = "#333333";
constexpr const char* kGrid = "#d5dbe1";

class Plot {
public:
    Plot(const ClockSweep& sweep, const std::vector<SweepPoint>& points)
        : m_sweep(sweep), m_points(points) {
        for (const SweepPoint& point : points)
            m_most = std::max({m_most, point.sumPpm, point.worstPpm});
        m_decades = std::ceil(std::log10(m_most / kLeastPpm));
    }

    void write(std::ostream& out) {
        m_svg = append(m_document, "svg");
        set(m_svg, "xmlns", "http://www.w3.org/2000/svg");
        set(m_svg, "font-family", "Helvetica, Arial, sans-serif");
        set(m_svg, "font-size", "12");
        set(m_svg, "width", kLeft + kWidth + kMargin);
        set(m_svg, "height", kTop + kHeight + 60);
        pugi::xml_node paper = append(m_svg, "rect");
        set(paper, "width", "100%");
        set(paper, "height", "100%");
        set(paper, "fill", "#ffffff");
        text(kLeft, 26, "Errors over " + xmlText(m_sweep.subject), "start", kInk);
        text(kLeft, 46, "sum of all errors", "start", kSumColour);
        text(kLeft + 130, 46, "worst error", "start", kWorstColour);
        addScales();
        addCurve(&SweepPoint::sumPpm, kSumColour);
        addCurve(&SweepPoint::worstPpm, kWorstColour);
        m_document.save(out, "  ");
    }

private:
    [[nodiscard]] double x(double value) const {
        const double first = m_points.front().value;
        const double range = m_points.back().value - first;
        return kLeft + (range == 0.0 ? 0.5 : (value - first) / range) * kWidth;
    }

    [[nodiscard]] double y(double ppm) const {
        const double above = std::log10(std::max(ppm, kLeastPpm) / kLeastPpm);
        return kTop + kHeight - above / m_decades * kHeight;
    }

    void addScales() {
        for (int decade = 0; decade <= static_cast<int>(m_decades); ++decade) {
            const double ppm = kLeastPpm * std::pow(10.0, decade);
            line(kLeft, y(ppm), kLeft + kWidth, y(ppm));
            const std::string label = decade == 0 ? "\u2264 0.1" : fixedText(ppm, 0);
            text(kLeft - 8, y(ppm) + 4, label + " ppm", "end", kInk);
        }
        const double first = m_points.front().value;
        const double range = m_points.back().value - first;
        for (int tick = 0; tick <= (range == 0.0 ? 0 : kTicks); ++tick) {
            const double value = first + range * tick / kTicks;
            line(x(value), kTop, x(value), kTop + kHeight);
            text(x(value), kTop + kHeight + 20, fixedText(value, 3), "middle", kInk);
        }
    }

    /// Values without a solution leave a gap.
    void addCurve(double SweepPoint::*ppm, const char* colour) {
        std::string part;
        for (const SweepPoint& point : m_points) {
            if (!point.found) {
                addPart(part, colour);
                part.clear();
                continue;
            }
            const std::string px = fixedText(x(point.value), 1);
            const std::string py = fixedText(y(point.*ppm), 1);
            part.append(px).append(",").append(py).append(" ");
            pugi::xml_node dot = append(m_svg, "circle");
            set(dot, "cx", px.c_str());
            set(dot, "cy", py.c_str());
            set(dot, "r", "2.5");
            set(dot, "fill", colour);
            const std::string title =
                fixedText(point.value, 4) + ": " + fixedText(point.*ppm, 1) + " ppm";
            expectMemory(append(dot, "title").text().set(title.c_str()));
        }
        addPart(part, colour);
    }

    void addPart(const std::string& points, const char* colour) {
        if (points.empty())
            return;
        pugi::xml_node curve = append(m_svg, "polyline");
        set(curve, "points", points.c_str());
        set(curve, "fill", "none");
        set(curve, "stroke", colour);
        set(curve, "stroke-width", "1.5");
    }

    void line(double x1, double y1, double x2, double y2) {
        pugi::xml_node node = append(m_svg, "line");
        set(node, "x1", fixedText(x1, 1).c_str());
        set(node, "y1", fixedText(y1, 1).c_str());
        set(node, "x2", fixedText(x2, 1).c_str());
        set(node, "y2", fixedText(y2, 1).c_str());
        set(node, "stroke", kGrid);
    }

    void text(double px, double py, const std::string& words, const char* anchor,
              const char* colour) {
        pugi::xml_node node = append(m_svg, "text");
        set(node, "x", fixedText(px, 1).c_str());
        set(node, "y", fixedText(py, 1).c_str());
        set(node, "text-anchor", anchor);
        set(node, "fill", colour);
        expectMemory(node.text().set(words.c_str()));
    }

    const ClockSweep& m_sweep;
    const std::vector<SweepPoint>& m_points;
    double m_most = 1.0;
    double m_decades = 1.0;
    pugi::xml_document m_document;
    pugi::xml_node m_svg;
};

} // namespace

void printClockSweepPicture(const ClockSweep& sweep, const std::vector<SweepPoint>& points,
                            std::ostream& out) {
    Plot(sweep, points).write(out);
}

} // namespace tq
