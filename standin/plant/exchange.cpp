#include "standin/plant/exchange.h"

#include <algorithm>
#include <cmath>

#include "standin/plant/layout.h"

namespace standin {

namespace {

constexpr double ExcessExponent = 0.3;  // of a radiator, beyond 1

/// The stream cools along a radiator by d(difference) = -emission / rate difference^1.3 over its whole
/// surface.
Heat RadiatorHeat(double emission, double rate, double difference) {
    const double inlet = std::abs(difference);
    if (inlet <= 0.0 || rate <= 0.0) return {0.0, 0.0};
    const double outlet =
        std::pow(std::pow(inlet, -ExcessExponent) + ExcessExponent * emission / rate, -1.0 / ExcessExponent);
    return {std::copysign(rate * (inlet - outlet), difference),
            rate * (1.0 - std::pow(outlet / inlet, 1.0 + ExcessExponent))};
}

}  // namespace

Heat HeatOf(const Exchange& exchange, std::span<const double> temperatures) {
    const double difference = At(temperatures, exchange.senseFrom) - At(temperatures, exchange.senseTo);
    if (exchange.emission > 0.0) return RadiatorHeat(exchange.emission, exchange.conductance, difference);
    const double watts = exchange.conductance * difference;
    if (watts <= exchange.least) return {exchange.least, 0.0};
    if (watts >= exchange.most) return {exchange.most, 0.0};
    return {watts, exchange.conductance};
}

double HeatSum(std::span<const int> list, std::span<const Exchange> exchanges,
               std::span<const double> temperatures) {
    double sum = 0.0;
    for (const int number : list) sum += HeatOf(At(exchanges, number), temperatures).watts;
    return sum;
}

double CounterFlow(double transfer, double one, double other) {
    const double least = std::min(one, other);
    const double ratio = least / std::max(one, other);
    if (least <= 0.0 || transfer <= 0.0) return 0.0;
    const double units = transfer / least;
    if (1.0 - ratio < 1e-9) return least * units / (1.0 + units);
    const double decay = std::exp(-units * (1.0 - ratio));
    return least * (1.0 - decay) / (1.0 - ratio * decay);
}

double ToConstant(double transfer, double rate) {
    return rate <= 0.0 ? 0.0 : -rate * std::expm1(-transfer / rate);
}

double TransferAt(const Rating& rating, double watts) {
    return watts / (rating.inlet - rating.outlet) * std::log(rating.inlet / rating.outlet);
}

double EmissionAt(const Rating& rating, double watts) {
    return watts / (rating.inlet - rating.outlet) / ExcessExponent *
           (std::pow(rating.outlet, -ExcessExponent) - std::pow(rating.inlet, -ExcessExponent));
}

}  // namespace standin
