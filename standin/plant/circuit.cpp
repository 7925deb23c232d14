#include "standin/plant/circuit.h"

#include <algorithm>
#include <limits>

#include "standin/plant/fluid.h"
#include "standin/plant/layout.h"
#include "standin/plant/refrigerant.h"

namespace standin {

namespace {

constexpr double CarnotShare = 0.5;
constexpr double RatedEvaporating = -10.0;  // degrees Celsius
constexpr double RatedCondensing = 45.0;
constexpr int Halvings = 60;  // of some hundred kelvins: down to what a double can tell

/// A circuit at the temperatures of its surroundings.
struct Surroundings {
    const Circuit& circuit;
    std::span<const Exchange> exchanges;
    std::vector<double>& temperatures;

    double Taken(double evaporating) const {
        At(temperatures, circuit.evaporating) = evaporating;
        return HeatSum(circuit.evaporators, exchanges, temperatures);
    }
    double Given(double condensing) const {
        At(temperatures, circuit.condensing) = condensing;
        return HeatSum(circuit.condensers, exchanges, temperatures);
    }
    double GivenSlope() const {
        double slope = 0.0;
        for (const int number : circuit.condensers)
            slope += HeatOf(At(exchanges, number), temperatures).slope;
        return slope;
    }
};

/// The condensing temperature at which the heat given is that taken and the power this needs, above the limit
/// where there is none below it. What is short at a temperature is convex in it, so that Newton's steps from
/// above go down to the root and not past it.
double CondensingAt(const Surroundings& around, double evaporating, double taken) {
    const double shareSlope = PowerShareSlope(evaporating);
    double condensing = HighestCondensing;
    // Below the evaporating temperature nothing is needed but what is taken: then once more from there down.
    for (const bool lifts : {true, false}) {
        if (!lifts) condensing = evaporating;
        for (std::size_t step = 0; step < around.circuit.condensers.size() + 2; ++step) {
            const double need = taken * (1.0 + (lifts ? shareSlope * (condensing - evaporating) : 0.0));
            const double surplus = around.Given(condensing) - need;
            if (lifts && step == 0 && surplus < 0.0) return std::numeric_limits<double>::infinity();
            const double slope = around.GivenSlope() - (lifts ? taken * shareSlope : 0.0);
            if (slope <= 0.0 || surplus <= 0.0) break;
            condensing -= surplus / slope;
        }
        if (condensing >= evaporating) break;
    }
    return condensing;
}

/// True where evaporating at that temperature asks for more than the displacement takes in, for more power
/// than there is, or for more than the highest condensing temperature.
bool AsksTooMuch(const Surroundings& around, double evaporating, double& condensing) {
    const double taken = around.Taken(evaporating);
    condensing = CondensingAt(around, evaporating, taken);
    return condensing > HighestCondensing ||
           taken * PowerShare(evaporating, condensing) > around.circuit.power ||
           taken > CapacityOf(around.circuit.power, evaporating, condensing).watts;
}

}  // namespace

Capacity CapacityOf(double power, double evaporating, double condensing) {
    static const double displacement = [] {  // m3/s of 1 W
        const double taken = EvaporationHeat(RatedEvaporating, RatedCondensing);
        return 1.0 / (PowerShare(RatedEvaporating, RatedCondensing) *
                      SaturationAt(RatedEvaporating).vapourDensity.value * taken);
    }();
    const Saturation suction = SaturationAt(evaporating);
    const Saturation liquid = SaturationAt(condensing);
    const double volume = displacement * power;
    const double taken = suction.vapourEnthalpy.value - liquid.liquidEnthalpy.value;
    return {volume * suction.vapourDensity.value * taken,
            volume * (suction.vapourDensity.slope * taken +
                      suction.vapourDensity.value * suction.vapourEnthalpy.slope),
            -volume * suction.vapourDensity.value * liquid.liquidEnthalpy.slope};
}

double EvaporationHeat(double evaporating, double condensing) {
    return SaturationAt(evaporating).vapourEnthalpy.value - SaturationAt(condensing).liquidEnthalpy.value;
}

double PowerShare(double evaporating, double condensing) {
    return std::max(condensing - evaporating, 0.0) * PowerShareSlope(evaporating);
}

double PowerShareSlope(double evaporating) {
    return 1.0 / (CarnotShare * (evaporating + ZeroCelsius));
}

void CircuitBalance(Circuit& circuit, std::span<const Exchange> exchanges,
                    std::vector<double>& temperatures) {
    double& evaporating = At(temperatures, circuit.evaporating);
    double& condensing = At(temperatures, circuit.condensing);
    double warmest = LowestEvaporating;
    for (const int number : circuit.evaporators) {
        warmest = std::max(warmest, At(temperatures, At(exchanges, number).senseFrom));
    }
    const Surroundings around{circuit, exchanges, temperatures};
    double found = HighestCondensing;
    circuit.drive = Drive::LowLimit;
    double low = LowestEvaporating;
    if (AsksTooMuch(around, low, found)) {
        double high = warmest;
        for (int halving = 0; halving < Halvings; ++halving) {
            const double middle = 0.5 * (low + high);
            (AsksTooMuch(around, middle, found) ? low : high) = middle;
        }
        AsksTooMuch(around, low, found);
        const double taken = around.Taken(low);
        circuit.drive = found > HighestCondensing                        ? Drive::HighLimit
                        : taken * PowerShare(low, found) > circuit.power ? Drive::Motor
                                                                         : Drive::Displacement;
        AsksTooMuch(around, high, found);
        low = high;
    }
    evaporating = low;
    condensing = std::min(found, HighestCondensing);
}

}  // namespace standin
