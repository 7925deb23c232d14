#include "standin/plant/refrigerant.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "standin/plant/fluid.h"

namespace standin {

namespace {

struct Row {
    double celsius;
    double pressure;  ///< kPa
    double volume;    ///< of the vapour, m3/kg
    double liquid;    ///< kJ/kg
    double vapour;
};

// ASHRAE Handbook - Fundamentals, thermophysical properties of refrigerants, R-134a; they follow the equation
// of state of R. Tillner-Roth and H. D. Baehr, J. Phys. Chem. Ref. Data 23 (1994) 657.
constexpr Row Rows[] = {
    {-60, 15.91, 1.079, 123.36, 361.31},    {-50, 29.45, 0.6062, 135.67, 367.65},
    {-40, 51.21, 0.36108, 148.14, 374.00},  {-30, 84.38, 0.22594, 160.79, 380.32},
    {-20, 132.73, 0.14739, 173.64, 386.55}, {-10, 200.60, 0.09959, 186.70, 392.66},
    {0, 292.80, 0.06931, 200.00, 398.60},   {10, 414.61, 0.04944, 213.58, 404.32},
    {20, 571.71, 0.036, 227.47, 409.75},    {30, 770.20, 0.02664, 241.72, 414.82},
    {40, 1016.60, 0.01997, 256.41, 419.43}, {50, 1317.90, 0.01509, 271.62, 423.44},
    {60, 1681.80, 0.01144, 287.50, 426.63}, {70, 2116.80, 0.00865, 304.28, 428.65},
    {80, 2633.20, 0.00645, 322.39, 428.81}, {90, 3244.20, 0.00461, 342.93, 425.42},
};
constexpr double Spacing = 10.0;  // K from row to row

/// What grows by orders of magnitude: its logarithm is nearly straight over the reciprocal temperature.
Property Exponential(double low, double high, const Row& row, double celsius) {
    const double first = 1.0 / (row.celsius + ZeroCelsius);
    const double last = 1.0 / (row.celsius + Spacing + ZeroCelsius);
    const double here = 1.0 / (celsius + ZeroCelsius);
    const double grows = std::log(high / low) / (last - first);
    const double value = low * std::exp(grows * (here - first));
    return {value, -value * grows * here * here};
}

Property Straight(double low, double high, const Row& row, double celsius) {
    const double slope = (high - low) / Spacing;
    return {low + slope * (celsius - row.celsius), slope};
}

}  // namespace

Saturation SaturationAt(double celsius) {
    const double within = std::clamp(celsius, Rows[0].celsius, std::rbegin(Rows)->celsius);
    const auto last = static_cast<double>(std::size(Rows) - 2);
    const Row& row = Rows[static_cast<int>(std::min((within - Rows[0].celsius) / Spacing, last))];
    const Row& next = *(&row + 1);
    return {Exponential(row.pressure, next.pressure, row, within),
            Exponential(1.0 / row.volume, 1.0 / next.volume, row, within),
            Straight(1e3 * row.liquid, 1e3 * next.liquid, row, within),
            Straight(1e3 * row.vapour, 1e3 * next.vapour, row, within)};
}

}  // namespace standin
