// The chart of a run.

#include <algorithm>
#include <cmath>

#include "standin/drawing.h"
#include "standin/svg.h"

namespace standin {

namespace {

constexpr Point Size{900, 440};
constexpr Point UpperLeft{70, 60};  ///< of the plot: step 0 at the highest temperature
constexpr Point LowerRight{870, 390};
constexpr int Marks = 5;  ///< parts of each axis
constexpr double TemperatureLimit = 1e9;

constexpr std::string_view Styles =
    ".title{font-size:20px}.x{text-anchor:middle}.y{text-anchor:end}path{fill:none;stroke:#ddd}"
    ".line{stroke:#1f6fb4;stroke-width:2;stroke-linecap:round}";

/// What the plot shows between its corners.
struct Range {
    double lastStep = Marks;
    double coldest = TemperatureLimit;
    double warmest = -TemperatureLimit;
};

bool Shown(double temperature) {
    return std::abs(temperature) < TemperatureLimit;
}

Range RangeOf(std::span<const double> temperatures, int stepsEach) {
    Range range;
    const double steps = static_cast<double>(temperatures.size()) * stepsEach;
    range.lastStep = std::max(std::ceil(steps / Marks), 1.0) * Marks;
    for (const double each : temperatures) {
        if (!Shown(each)) continue;
        range.coldest = std::min(range.coldest, std::floor(each));
        range.warmest = std::max(range.warmest, std::ceil(each));
    }
    if (range.coldest > range.warmest) range.coldest = range.warmest = 0;
    range.warmest = std::max(range.warmest, range.coldest + 1);
    return range;
}

Point Place(const Range& range, double step, double temperature) {
    const double height = (temperature - range.coldest) / (range.warmest - range.coldest);
    return {UpperLeft.x + (LowerRight.x - UpperLeft.x) * step / range.lastStep,
            LowerRight.y - (LowerRight.y - UpperLeft.y) * height};
}

void DrawMark(std::string& svg, const Range& range, double part) {
    const double step = range.lastStep * part;
    const double temperature = range.coldest + (range.warmest - range.coldest) * part;
    const Point at = Place(range, step, temperature);
    SvgPut(svg, "<path d=\"M", at.x, " ", LowerRight.y, "V", UpperLeft.y, "M", UpperLeft.x, " ", at.y, "H",
           LowerRight.x, "\"/>\n");
    std::string steps;
    std::string degrees;
    SvgPut(steps, step);
    SvgPut(degrees, temperature);
    SvgText(svg, {at.x, LowerRight.y + 20}, "x", steps);
    SvgText(svg, {UpperLeft.x - 8, at.y + 4}, "y", degrees);
}

}  // namespace

std::string ChartSvg(std::string_view name, std::span<const double> temperatures, int stepsEach) {
    const Range range = RangeOf(temperatures, stepsEach);
    std::string svg;
    SvgText(svg, {UpperLeft.x, 30}, "title", std::string(name) + " GTemp 蒸发温度 °C / 步数");
    for (int mark = 0; mark <= Marks; ++mark) DrawMark(svg, range, mark / double{Marks});
    svg += "<path class=\"line\" d=\"";
    std::string_view stroke = "M";
    for (std::size_t index = 0; index < temperatures.size(); ++index) {
        const Point at = Place(range, 1.0 + static_cast<double>(index) * stepsEach, temperatures[index]);
        // A value alone is a line to itself, of which the round ends show.
        if (Shown(temperatures[index])) SvgPut(svg, stroke, at.x, " ", at.y, "h0");
        stroke = Shown(temperatures[index]) ? "L" : "M";
    }
    svg += "\"/>\n";
    return SvgWhole(Size, Styles, svg);
}

}  // namespace standin
