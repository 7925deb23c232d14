// The fluids of the plant and the constants of nature, in SI units where a name says nothing else.

#pragma once

namespace standin {

enum class Fluid { Water, Brine, Air, Refrigerant };

struct FluidProperties {
    double density;       ///< kg/m3
    double viscosity;     ///< kinematic, m2/s
    double heatCapacity;  ///< J/(kg K)
};

/// Water and air at 20 degrees Celsius; brine, water with 30 % of ethylene glycol by volume, at 0, rounded
/// from the tables of secondary coolants in the ASHRAE Handbook - Fundamentals. A refrigerant circuit is one
/// lump and asks for none of these.
constexpr FluidProperties PropertiesOf(Fluid fluid) {
    if (fluid == Fluid::Air) return {1.204, 1.506e-5, 1006.0};
    if (fluid == Fluid::Brine) return {1050.0, 3.3e-6, 3640.0};
    return {998.2, 1.004e-6, 4182.0};
}

inline constexpr double Gravity = 9.80665;     // m/s2
inline constexpr double ZeroCelsius = 273.15;  // K
inline constexpr double PascalPerKilo = 1000.0;
inline constexpr double WattPerKilo = 1000.0;
inline constexpr double LeastFlow = 1e-9;     // kg/s; less is what rounding leaves of nothing
inline constexpr double StoreOutside = 25.0;  // degrees Celsius around a cold store

}  // namespace standin
