#include "standin/plant/friction.h"

#include <cmath>
#include <numbers>

namespace standin {

namespace {

constexpr double LaminarEnd = 2000.0;
constexpr double TurbulentStart = 4000.0;
constexpr double Exponent = 0.9;

Friction Turbulent(double reynolds, double roughness) {
    // Two logarithms and an exponential: this is where a large net spends its time.
    const double smooth = 5.74 * std::exp(-Exponent * std::log(reynolds));
    const double y = roughness / 3.7 + smooth;
    const double logarithm = std::log(y);
    const double f = 0.25 * std::numbers::ln10 * std::numbers::ln10 / (logarithm * logarithm);
    // df/dRe = -2 f dy / (y ln y), with dy = -0.9 smooth / Re
    const double slope = 2.0 * f * Exponent * smooth / (reynolds * y * logarithm);
    return {f * reynolds, f + reynolds * slope};
}

Friction Between(double reynolds, double roughness) {
    static const double smooth = 5.74 / std::pow(TurbulentStart, Exponent);
    constexpr double ln10 = std::numbers::ln10;
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
