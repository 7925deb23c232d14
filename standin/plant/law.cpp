#include "standin/plant/law.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "standin/plant/friction.h"

namespace standin {

namespace {

// kPa/(kg/s)2. Air takes a hundredth of what water does.
constexpr double OpenValve = 10.0;
constexpr double OtherElement = 20.0;
constexpr double AirShare = 0.01;

constexpr double ElbowLoss = 0.9;  // in velocity heads
constexpr double ReducerLoss = 0.2;
constexpr double UsualSpeed = 1.0;  // m/s

constexpr double PumpEfficiency = 0.6;
// The opening below which a valve counts as closed: even 1 MPa drives less than a gram an hour through it.
constexpr double LeastOpening = 1e-6;

double ShareOf(Fluid fluid) {
    return fluid == Fluid::Air ? AirShare : 1.0;
}

}  // namespace

Drop DropAt(const Law& law, double flow) {
    const double rounded = std::sqrt(flow * flow + law.knee * law.knee);
    Drop drop{law.linear * flow + law.quadratic * flow * rounded - law.lift,
              law.linear + law.quadratic * (flow * flow + rounded * rounded) / rounded};
    if (law.friction > 0.0) {
        const double reynolds = std::abs(flow) * law.reynolds;
        const Friction friction = FrictionAt(reynolds, law.roughness);
        drop.pressure += law.friction * friction.factor * flow;
        drop.slope += law.friction * (friction.factor + friction.slope * reynolds);
    }
    return drop;
}

Law PipeLaw(Fluid fluid, double length, double diameter, double area, double wall, double elbows,
            bool reducer) {
    const FluidProperties& is = PropertiesOf(fluid);
    const double speedHead = 0.5 / (is.density * area * area) / PascalPerKilo;  // kPa at 1 kg/s
    Law law;
    law.reynolds = diameter / (is.density * area * is.viscosity);
    law.roughness = wall / diameter;
    law.friction = speedHead * length / diameter / law.reynolds;
    law.quadratic = speedHead * (ElbowLoss * elbows + (reducer ? ReducerLoss : 0.0));
    law.usualFlow = is.density * area * UsualSpeed;
    law.volume = area * length;
    return law;
}

Law ValveLaw(Fluid fluid, double opening) {
    Law law;
    law.closed = opening < LeastOpening;
    if (law.closed) return law;
    law.quadratic = OpenValve * ShareOf(fluid) / (opening * opening);
    // At these flows it takes what an open one takes at those.
    law.knee *= opening;
    law.usualFlow *= opening;
    return law;
}

Law PumpLaw(Fluid fluid, double head, double power) {
    Law law;
    law.check = true;
    law.quadratic = OpenValve;
    if (head <= 0.0 || power <= 0.0) return law;
    const double density = PropertiesOf(fluid).density;
    const double rise = density * Gravity * head;                                    // Pa
    const double ratedFlow = PumpEfficiency * power * WattPerKilo / rise * density;  // kg/s
    law.lift = 4.0 / 3.0 * rise / PascalPerKilo;
    law.quadratic = rise / PascalPerKilo / 3.0 / (ratedFlow * ratedFlow);
    law.knee = 1e-5 * std::min(ratedFlow, 1.0);
    law.usualFlow = ratedFlow;
    return law;
}

Law ElementLaw(Fluid fluid) {
    Law law;
    law.quadratic = OtherElement * ShareOf(fluid);
    return law;
}

}  // namespace standin
