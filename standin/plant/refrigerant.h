// Saturated R134a.

#pragma once

namespace standin {

/// A property and how it grows with the temperature, per kelvin.
struct Property {
    double value;
    double slope;
};

struct Saturation {
    Property pressure;        ///< kPa, absolute
    Property vapourDensity;   ///< kg/m3
    Property liquidEnthalpy;  ///< J/kg, 200 kJ/kg at 0 degrees Celsius
    Property vapourEnthalpy;  ///< J/kg
};

inline constexpr double Atmosphere = 101.325;  // kPa

/// At a temperature in degrees Celsius, which is cut to the table's: -60 to 90.
Saturation SaturationAt(double celsius);

}  // namespace standin
