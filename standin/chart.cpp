#include "standin/chart.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "standin/svg.h"

namespace standin {

namespace {

constexpr Point Size{900, 440};
constexpr Point PlotLow{76, 88};  ///< the plot's upper left corner, and its lower right one
constexpr Point PlotHigh{868, 376};
constexpr double ValueLimit = 1e9;  ///< beyond this a temperature is none
constexpr int TicksWanted = 7;

constexpr std::string_view Styles =
    ".title{font-size:20px;font-weight:bold}.quiet{fill:#777}.axis{stroke:#445;stroke-width:1.2}"
    ".grid{stroke:#e3e6ea}.x{text-anchor:middle;font-size:11px}.y{text-anchor:end;font-size:11px}"
    ".empty{text-anchor:middle;font-size:16px;fill:#777}"
    ".line{fill:none;stroke:#1f6fb4;stroke-width:2;stroke-linejoin:round;stroke-linecap:round}"
    ".dot{fill:#1f6fb4}";

/// One axis: what it shows at its two ends, and how far its marks stand apart.
struct Axis {
    double low = 0.0;
    double high = 1.0;
    double step = 0.5;
};

/// The distance of marks, 1, 2 or 5 of some power of ten and at least `least`, of which `span` holds about as
/// many as are wanted.
double MarkDistance(double span, double least) {
    const double rough = std::max(span / TicksWanted, least);
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= rough * 0.999) return factor * power;
    }
    return 10.0 * power;
}

Axis StepAxis(std::size_t points, int stepsEach) {
    const double last = std::max(1.0 + static_cast<double>(points - 1) * stepsEach, 10.0);
    return {.low = 0.0, .high = last, .step = MarkDistance(last, 1.0)};
}

bool Shown(double temperature) {
    return std::abs(temperature) < ValueLimit;
}

/// From one mark to another, so that all that is shown lies between.
Axis TemperatureAxis(std::span<const double> temperatures) {
    double low = ValueLimit;
    double high = -ValueLimit;
    for (const double each : temperatures) {
        if (!Shown(each)) continue;
        low = std::min(low, each);
        high = std::max(high, each);
    }
    if (low > high) return {};
    const double step = MarkDistance(high - low, 0.1);
    return {.low = std::floor(low / step) * step,
            .high = std::max(std::ceil(high / step), std::floor(low / step) + 1) * step,
            .step = step};
}

Point Place(const Axis& steps, const Axis& degrees, double step, double temperature) {
    return {
        PlotLow.x + (PlotHigh.x - PlotLow.x) * (step - steps.low) / (steps.high - steps.low),
        PlotHigh.y - (PlotHigh.y - PlotLow.y) * (temperature - degrees.low) / (degrees.high - degrees.low)};
}

/// A mark's number with as many decimals as the distance of marks needs.
std::string MarkText(double value, double distance) {
    char buffer[64];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed,
                                            distance < 1.0 ? 1 : 0);
    const std::string text(buffer, end);
    return text == "-0" || text == "-0.0" ? text.substr(1) : text;
}

void DrawAxes(std::string& svg, const Axis& steps, const Axis& degrees) {
    const auto marks = [](const Axis& axis) {
        return static_cast<int>(std::floor((axis.high - axis.low) / axis.step + 0.001));
    };
    for (int mark = 0; mark <= marks(steps); ++mark) {
        const double step = steps.low + mark * steps.step;
        const double x = Place(steps, degrees, step, degrees.low).x;
        SvgLine(svg, {x, PlotLow.y}, {x, PlotHigh.y}, "grid");
        SvgText(svg, {x, PlotHigh.y + 18}, MarkText(step, steps.step), "x");
    }
    for (int mark = 0; mark <= marks(degrees); ++mark) {
        const double temperature = degrees.low + mark * degrees.step;
        const double y = Place(steps, degrees, steps.low, temperature).y;
        SvgLine(svg, {PlotLow.x, y}, {PlotHigh.x, y}, "grid");
        SvgText(svg, {PlotLow.x - 8, y + 4}, MarkText(temperature, degrees.step), "y");
    }
    SvgLine(svg, PlotLow, {PlotLow.x, PlotHigh.y}, "axis");
    SvgLine(svg, {PlotLow.x, PlotHigh.y}, PlotHigh, "axis");
    SvgText(svg, {PlotLow.x - 8, PlotLow.y - 14}, "摄氏度", "y");
    SvgText(svg, {(PlotLow.x + PlotHigh.x) / 2, PlotHigh.y + 42}, "步数", "x");
}

void DrawLine(std::string& svg, const Axis& steps, const Axis& degrees, std::span<const double> temperatures,
              int stepsEach) {
    svg += "<path class=\"line\" d=\"";
    bool begun = false;
    for (std::size_t index = 0; index < temperatures.size(); ++index) {
        const double temperature = temperatures[index];
        if (!Shown(temperature)) {
            begun = false;
            continue;
        }
        const double step = 1.0 + static_cast<double>(index) * stepsEach;
        const Point at = Place(steps, degrees, step, temperature);
        // A point alone is a line to itself: its round ends show.
        svg += begun ? "L" : "M";
        AppendLength(svg, at.x);
        svg += ' ';
        AppendLength(svg, at.y);
        if (!begun) svg += "h0";
        begun = true;
    }
    svg += "\"/>\n";
}

}  // namespace

std::string ChartSvg(std::string_view name, std::span<const double> temperatures, int stepsEach) {
    std::string svg;
    SvgBegin(svg, Size.x, Size.y, Styles);
    SvgText(svg, {24, 34}, TextFitted(name, 44), "title");
    const double behindTitle = 24 + 12.5 * TextPlaces(TextFitted(name, 44)) + 20;
    SvgText(svg, {behindTitle, 34}, "GTemp 蒸发温度", "quiet");
    if (temperatures.empty()) {
        DrawAxes(svg, StepAxis(1, 1), {.low = -10.0, .high = 0.0, .step = 2.0});
        SvgText(svg, {(PlotLow.x + PlotHigh.x) / 2, (PlotLow.y + PlotHigh.y) / 2}, "暂无数据,项目还没有运行",
                "empty");
    } else {
        const Axis steps = StepAxis(temperatures.size(), stepsEach);
        const Axis degrees = TemperatureAxis(temperatures);
        DrawAxes(svg, steps, degrees);
        DrawLine(svg, steps, degrees, temperatures, stepsEach);
        SvgText(svg, {behindTitle + 110, 34},
                "最近 " + (Shown(temperatures.back()) ? MarkText(temperatures.back(), 0.1) : "—"), "quiet");
    }
    SvgEnd(svg);
    return svg;
}

}  // namespace standin
