// Exchanges of heat between two places.

#pragma once

#include <span>

namespace standin {

/// Heat that goes from one place to another, by the difference of two temperatures, within limits. A stream
/// is felt where it leads to, and sensed where it comes from.
struct Exchange {
    int senseFrom = -1;
    int feelFrom = -1;
    int senseTo = -1;
    int feelTo = -1;
    double conductance = 0.0;  ///< W/K; of a radiator W/K that its stream carries
    double least = 0.0;        ///< W
    double most = 0.0;
    double emission = 0.0;  ///< W/K^1.3 of a radiator, else 0
};

/// W, and how it grows with the difference: W/K, 0 at a limit.
struct Heat {
    double watts;
    double slope;
};
Heat HeatOf(const Exchange& exchange, std::span<const double> temperatures);

/// The heat of all exchanges of a list, in W.
double HeatSum(std::span<const int> list, std::span<const Exchange> exchanges,
               std::span<const double> temperatures);

/// W/K between the inlets of two streams in counter-flow, by effectiveness and number of transfer units (W.
/// M. Kays and A. L. London, Compact Heat Exchangers). `transfer` in W/K; the streams in W/K.
double CounterFlow(double transfer, double one, double other);
/// The same where one side keeps its temperature.
double ToConstant(double transfer, double rate);

/// What an emitter is rated at: how much its stream is warmer than its surroundings, or colder, at its inlet
/// and at its outlet, in K.
struct Rating {
    double inlet;
    double outlet;
};
inline constexpr Rating RadiatorRating{55.0, 45.0};  // EN 442: water 75/65, room 20 degrees Celsius
inline constexpr Rating FanCoilRating{20.0, 15.0};   // EN 1397: water 7/12, room 27
inline constexpr Rating AirCoolerRating{10.0, 7.0};  // a cooler of water or brine
inline constexpr Rating TowerRating{10.0, 5.0};      // water, and air outside: an approach of 5 K

/// W/K of an emitter whose heat is `watts` at its rating, where heat follows the logarithmic mean difference.
double TransferAt(const Rating& rating, double watts);
/// W/K^1.3 of a radiator, each part of which gives heat by the difference to the power of 1.3.
double EmissionAt(const Rating& rating, double watts);

}  // namespace standin
