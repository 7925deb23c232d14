#include "standin/plant/circuit.h"

#include <algorithm>
#include <limits>

#include "standin/plant/fluid.h"
#include "standin/plant/layout.h"

namespace standin {

namespace {

constexpr double CarnotShare = 0.5;
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

/// True where evaporating at that temperature asks for more power than there is, or for more than the highest
/// condensing temperature.
bool AsksTooMuch(const Surroundings& around, double evaporating, double& condensing) {
    const double taken = around.Taken(evaporating);
    condensing = CondensingAt(around, evaporating, taken);
    return condensing > HighestCondensing ||
           taken * PowerShare(evaporating, condensing) > around.circuit.power;
}

}  // namespace

Heat HeatOf(const Exchange& exchange, std::span<const double> temperatures) {
    const double difference = At(temperatures, exchange.senseFrom) - At(temperatures, exchange.senseTo);
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
        circuit.drive = found > HighestCondensing ? Drive::HighLimit : Drive::Free;
        AsksTooMuch(around, high, found);
        low = high;
    }
    evaporating = low;
    condensing = std::min(found, HighestCondensing);
}

}  // namespace standin
