// How much pressure an aisle takes at a flow through it.

#pragma once

#include "standin/plant/fluid.h"

namespace standin {

/// The pressure that an aisle takes from inlet to outlet, in kPa, at m kg/s:
///   linear m + quadratic m |m| + friction (f Re) m - lift
/// Near rest |m| is rounded to sqrt(m2 + knee2), so that the slope does not vanish.
struct Law {
    bool closed = false;  ///< carries nothing
    bool check = false;   ///< lets nothing flow from outlet to inlet
    double lift = 0.0;    ///< kPa
    double linear = 0.0;  ///< kPa/(kg/s)
    double quadratic = 0.0;
    double knee = 1e-5;      ///< kg/s
    double friction = 0.0;   ///< kPa/(kg/s)
    double reynolds = 0.0;   ///< of 1 kg/s
    double roughness = 0.0;  ///< over the diameter
    double usualFlow = 0.5;  ///< kg/s, where a solution begins
    double volume = 0.0;     ///< m3 that it keeps heat in

    bool operator==(const Law&) const = default;
};

struct Drop {
    double pressure;  ///< kPa
    double slope;     ///< kPa/(kg/s), above 0
};

Drop DropAt(const Law& law, double flow);

/// Of an aisle of a pipe, duct or reducer. `diameter` in m: of a duct its hydraulic one; `area` in m2; `wall`
/// the roughness in m; `elbows` and `reducer` tell the minor losses.
Law PipeLaw(Fluid fluid, double length, double diameter, double area, double wall, double elbows,
            bool reducer);

/// Of a valve in water or air, by its opening.
Law ValveLaw(Fluid fluid, double opening);

/// Of a pump, in air a fan: head in m, power in kW.
Law PumpLaw(Fluid fluid, double head, double power);

/// Of each other element.
Law ElementLaw(Fluid fluid);

}  // namespace standin
