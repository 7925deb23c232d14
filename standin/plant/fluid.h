// The fluids of the plant and the constants of nature, in SI units where a name says nothing else.

#pragma once

namespace standin {

enum class Fluid { Water, Air, Refrigerant };

struct FluidProperties {
    double density;       ///< kg/m3
    double viscosity;     ///< kinematic, m2/s
    double heatCapacity;  ///< J/(kg K)
};

/// Water and air at 20 degrees Celsius. A refrigerant circuit is one lump and asks for none of these.
constexpr FluidProperties PropertiesOf(Fluid fluid) {
    return fluid == Fluid::Air ? FluidProperties{1.204, 1.506e-5, 1006.0}
                               : FluidProperties{998.2, 1.004e-6, 4182.0};
}

inline constexpr double Gravity = 9.80665;        // m/s2
inline constexpr double ZeroCelsius = 273.15;     // K
inline constexpr double PascalPerKilo = 1000.0;   // also W in a kW
inline constexpr double StartTemperature = 20.0;  // degrees Celsius of all fluid when a run begins
inline constexpr double OutsideAir = 25.0;        // degrees Celsius around towers and cold stores

}  // namespace standin
