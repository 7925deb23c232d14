#include "standin/plant/friction.h"

#include <cmath>

namespace standin {

namespace {

constexpr double LaminarEnd = 2000.0;
constexpr double TurbulentStart = 4000.0;
constexpr double Exponent = 0.9;

Friction Turbulent(double reynolds, double roughness) {
    const double smooth = 5.74 / std::pow(reynolds, Exponent);
    const double y = roughness / 3.7 + smooth;
    const double decades = std::log10(y);
    const double f = 0.25 / (decades * decades);
    // df/dRe = -2 f dy / (y ln y), with dy = -0.9 smooth / Re
    const double slope = 2.0 * f * Exponent * smooth / (reynolds * y * std::log(y));
    return {f * reynolds, f + reynolds * slope};
}

Friction Between(double reynolds, double roughness) {
    const double smooth = 5.74 / std::pow(TurbulentStart, Exponent);
    const double ln10 = std::log(10.0);
    const double y2 = roughness / 3.7 + smooth;
    const double y3 = -2.0 / ln10 * std::log(y2);
    const double fa = 1.0 / (y3 * y3);
    const double fb = fa * (2.0 - 3.6 / ln10 * smooth / (y2 * y3));
    const double r = reynolds / LaminarEnd;
    const double x1 = 7.0 * fa - fb;
    const double x2 = 0.128 - 17.0 * fa + 2.5 * fb;
    const double x3 = -0.128 + 13.0 * fa - 2.0 * fb;
    const double x4 = 0.032 - 3.0 * fa + 0.5 * fb;
    const double f = x1 + r * (x2 + r * (x3 + r * x4));
    const double slope = (x2 + r * (2.0 * x3 + r * 3.0 * x4)) / LaminarEnd;
    return {f * reynolds, f + reynolds * slope};
}

}  // namespace

Friction FrictionAt(double reynolds, double roughness) {
    if (reynolds < LaminarEnd) return {64.0, 0.0};
    return reynolds < TurbulentStart ? Between(reynolds, roughness) : Turbulent(reynolds, roughness);
}

}  // namespace standin
