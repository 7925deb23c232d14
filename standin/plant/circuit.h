// Refrigerant circuits, each one lump with an evaporating and a condensing temperature, and the exchanges of
// heat that they take part in.

#pragma once

#include <span>
#include <vector>

namespace standin {

/// Heat that goes from one place to another, by the difference of two temperatures, within limits. A stream
/// is felt where it leads to, and sensed where it comes from.
struct Exchange {
    int senseFrom = -1;
    int feelFrom = -1;
    int senseTo = -1;
    int feelTo = -1;
    double conductance = 0.0;  ///< W/K
    double least = 0.0;        ///< W
    double most = 0.0;
};

/// W, and how it grows with the difference: W/K, 0 at a limit.
struct Heat {
    double watts;
    double slope;
};
Heat HeatOf(const Exchange& exchange, std::span<const double> temperatures);

/// What holds the temperatures of a circuit.
enum class Drive {
    Free,      ///< the compressors draw all their power
    LowLimit,  ///< they unload at the lowest evaporating temperature
    HighLimit  ///< they unload at the highest condensing temperature
};

/// A circuit that runs: one with power, and with something to take heat from and to give it to.
struct Circuit {
    int evaporating;  ///< places
    int condensing;
    double power;                    ///< W that the compressors can draw, above 0
    std::vector<int> evaporators{};  ///< exchanges that lead to `evaporating`
    std::vector<int> condensers{};   ///< exchanges that come from `condensing`
    Drive drive = Drive::Free;
};

inline constexpr double LowestEvaporating = -50.0;  // degrees Celsius
inline constexpr double HighestCondensing = 90.0;

/// Finds the drive of a circuit and its two temperatures, at the other places' temperatures:
///   heat given = heat taken + power,  heat taken / power = COP = half of Carnot's
void CircuitBalance(Circuit& circuit, std::span<const Exchange> exchanges, std::vector<double>& temperatures);

/// The heat of all exchanges of a list, in W.
double HeatSum(std::span<const int> list, std::span<const Exchange> exchanges,
               std::span<const double> temperatures);

/// Power over heat taken: 1 / COP; 0 where there is nothing to lift.
double PowerShare(double evaporating, double condensing);
/// How it grows with the condensing temperature, where there is.
double PowerShareSlope(double evaporating);

}  // namespace standin
