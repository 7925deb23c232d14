// Refrigerant circuits, each one lump with an evaporating and a condensing temperature.

#pragma once

#include <span>
#include <vector>

#include "standin/plant/exchange.h"

namespace standin {

/// What decides the temperatures of a circuit.
enum class Drive {
    Displacement,  ///< the compressors move what their displacement takes in
    Motor,         ///< they take in less, so that they draw no more than their power
    LowLimit,      ///< they unload at the lowest evaporating temperature
    HighLimit      ///< they unload at the highest condensing temperature
};

/// A circuit that runs: one with power, and with something to take heat from and to give it to.
struct Circuit {
    int evaporating;  ///< places
    int condensing;
    double power;                    ///< W that the compressors draw at most, above 0
    std::vector<int> evaporators{};  ///< exchanges that lead to `evaporating`
    std::vector<int> condensers{};   ///< exchanges that come from `condensing`
    Drive drive = Drive::Displacement;
};

inline constexpr double LowestEvaporating = -50.0;  // degrees Celsius
inline constexpr double HighestCondensing = 90.0;

/// Heat that compressors of that power take at two temperatures by their displacement, in W, and how it grows
/// with each of them. They are rated at an evaporating temperature of -10 and a condensing one of 45 degrees
/// Celsius, the standard point of EN 12900 for medium temperatures: there they draw just their power.
struct Capacity {
    double watts;
    double byEvaporating;
    double byCondensing;
};
Capacity CapacityOf(double power, double evaporating, double condensing);

/// J/kg that refrigerant takes up between the condenser's outlet and the evaporator's.
double EvaporationHeat(double evaporating, double condensing);

/// Finds the drive of a circuit and its two temperatures, at the other places' temperatures:
///   heat given = heat taken + power,  heat taken / power = COP = half of Carnot's,
///   heat taken = what the displacement takes in, or less where the power or a limit says so
void CircuitBalance(Circuit& circuit, std::span<const Exchange> exchanges, std::vector<double>& temperatures);

/// Power over heat taken: 1 / COP; 0 where there is nothing to lift.
double PowerShare(double evaporating, double condensing);
/// How it grows with the condensing temperature, where there is.
double PowerShareSlope(double evaporating);

}  // namespace standin
