#include "standin/plant/heat.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "standin/plant/layout.h"

namespace standin {

namespace {

constexpr int MostSteps = 100;
constexpr double LongestStep = 50.0;    // K that a correction goes at most
constexpr double LongestOldStep = 1.0;  // K that one goes that factors of an earlier step told

// When corrections turn back and forth, as limits of exchanges come and go, each place is held to where it is
// by that part of what streams and exchanges bring it, as if the plant took its time.
constexpr double FirstEase = 0.1;
constexpr double LeastEase = 1e-3;
constexpr double MostEase = 10.0;
constexpr double EaseRises = 3.0;
constexpr double EaseFalls = 0.9;

/// What holds a place that nothing else holds to its temperature: part of what streams bring it, and W/K. So
/// small that it does not count in any balance.
constexpr double HoldShare = 1e-10;
constexpr double Hold = 1e-7;

// How far from its balance a place may stay: part of what is exchanged there and of what streams bring it at
// a difference of 1 K; and how far rounding alone may bring it.
constexpr double BalanceShare = 1e-10;
constexpr double LeastTraffic = 1.0;  // W
constexpr double Resolution = 1e-14;  // K that a temperature can be told to
constexpr double RoundingShare = 1e-12;

/// A temperature that a way to a solution may lead over.
bool Reckonable(double temperature) {
    return std::abs(temperature) < 1e4;
}

double HoldOf(double turnover) {
    return HoldShare * turnover + Hold;
}

}  // namespace

/// Fills the lacks at those temperatures. Gives the largest, 1 at the border of what counts as met.
double HeatSolver::Measure(const HeatTask& task, const std::vector<double>& temperatures) {
    const std::size_t count = task.places.size();
    lack_.assign(count, 0.0);
    turnover_.assign(count, 0.0);
    traffic_.assign(count, 0.0);
    for (const Stream& stream : task.streams) {
        At(lack_, stream.to) += stream.rate * (At(temperatures, stream.from) - At(temperatures, stream.to));
        At(turnover_, stream.to) += stream.rate;
    }
    for (const Exchange& exchange : task.exchanges) {
        const double heat = HeatOf(exchange, temperatures).watts;
        At(lack_, exchange.feelFrom) -= heat;
        At(lack_, exchange.feelTo) += heat;
        At(traffic_, exchange.feelFrom) += std::abs(heat);
        At(traffic_, exchange.feelTo) += std::abs(heat);
    }
    for (std::size_t place = 0; place < count; ++place) {
        const double held = task.places[place].capacity / task.seconds + HoldOf(turnover_[place]);
        lack_[place] -= held * (temperatures[place] - task.places[place].start);
        if (task.places[place].pinned) lack_[place] = 0.0;
    }
    // A circuit's two places stand for its two equations, which it has met.
    for (const Circuit& circuit : task.circuits) {
        At(lack_, circuit.evaporating) = At(lack_, circuit.condensing) = 0.0;
    }
    double worst = 0.0;
    for (std::size_t place = 0; place < count; ++place) {
        const double border = BalanceShare * (turnover_[place] + traffic_[place] + LeastTraffic) +
                              Resolution * task.places[place].capacity / task.seconds;
        worst = std::max(worst, std::abs(lack_[place]) / border);
    }
    return worst;
}

namespace {

using Entries = std::vector<Eigen::Triplet<double>>;

/// The rows of a circuit: what its temperatures are to follow when others change.
class CircuitRows {
  public:
    CircuitRows(const Circuit& circuit, const HeatTask& task, const std::vector<double>& temperatures,
                Entries& entries)
        : circuit_(circuit), task_(task), temperatures_(temperatures), entries_(entries) {}

    void Add() {
        const double evaporating = At(temperatures_, circuit_.evaporating);
        const double condensing = At(temperatures_, circuit_.condensing);
        const double share = PowerShare(evaporating, condensing);
        const double taken = HeatSum(circuit_.evaporators, task_.exchanges, temperatures_);
        // How the share grows with the condensing and with the evaporating temperature.
        const double byCondensing = share > 0.0 ? PowerShareSlope(evaporating) : 0.0;
        const double byEvaporating = -byCondensing - share / (evaporating + ZeroCelsius);
        const bool motor = circuit_.drive == Drive::Motor;
        // heat given - heat taken - power = 0
        Given();
        Taken(circuit_.evaporating, motor ? -1.0 : -1.0 - share);
        // That power grows with the condensing temperature is left out: it would turn a correction round
        // where nothing but the condenser's own heat moves that temperature.
        Entry(circuit_.evaporating, circuit_.evaporating, Hold - (motor ? 0.0 : taken * byEvaporating));
        Entry(circuit_.evaporating, circuit_.condensing, motor ? 0.0 : Hold);
        if (motor) {  // taken x share - power = 0
            Taken(circuit_.condensing, share);
            Entry(circuit_.condensing, circuit_.evaporating, taken * byEvaporating);
            Entry(circuit_.condensing, circuit_.condensing, taken * byCondensing + Hold);
        } else if (circuit_.drive == Drive::Displacement) {  // taken - capacity = 0
            const Capacity capacity = CapacityOf(circuit_.power, evaporating, condensing);
            Taken(circuit_.condensing, -1.0);
            Entry(circuit_.condensing, circuit_.evaporating, capacity.byEvaporating);
            Entry(circuit_.condensing, circuit_.condensing, capacity.byCondensing + Hold);
        } else {  // The temperature at its limit stays; the other row finds the other.
            const bool low = circuit_.drive == Drive::LowLimit;
            Entry(circuit_.condensing, low ? circuit_.evaporating : circuit_.condensing, 1.0);
        }
    }

  private:
    void Entry(int row, int column, double value) { entries_.emplace_back(row, column, value); }
    /// Adds to a row the heat taken, so many times.
    void Taken(int row, double times) {
        for (const int number : circuit_.evaporators) {
            const Exchange& exchange = At(task_.exchanges, number);
            const double slope = times * HeatOf(exchange, temperatures_).slope;
            Entry(row, exchange.senseFrom, slope);
            Entry(row, circuit_.evaporating, -slope);
        }
    }
    void Given() {
        for (const int number : circuit_.condensers) {
            const Exchange& exchange = At(task_.exchanges, number);
            const double slope = HeatOf(exchange, temperatures_).slope;
            Entry(circuit_.evaporating, circuit_.condensing, slope);
            Entry(circuit_.evaporating, exchange.senseTo, -slope);
        }
    }

    const Circuit& circuit_;
    const HeatTask& task_;
    const std::vector<double>& temperatures_;
    Entries& entries_;
};

}  // namespace

/// Makes the factors of how the lacks fall with the temperatures. False where there are none.
bool HeatSolver::Factor(const HeatTask& task, const std::vector<double>& temperatures, double ease) {
    const auto count = static_cast<int>(task.places.size());
    std::vector<char> own(task.places.size());  ///< places whose row is no balance
    for (int place = 0; place < count; ++place) At(own, place) = At(task.places, place).pinned ? 1 : 0;
    for (const Circuit& circuit : task.circuits) {
        At(own, circuit.evaporating) = At(own, circuit.condensing) = 2;
    }
    Entries entries;
    const auto add = [&](int row, int column, double value) {
        if (At(own, row) == 0) entries.emplace_back(row, column, value);
    };
    for (int place = 0; place < count; ++place) {
        const double held = At(task.places, place).capacity / task.seconds + HoldOf(At(turnover_, place));
        const double eased = ease * (At(turnover_, place) + At(traffic_, place));
        if (At(own, place) == 0) entries.emplace_back(place, place, held + At(turnover_, place) + eased);
        if (At(own, place) == 1) entries.emplace_back(place, place, 1.0);
    }
    for (const Stream& stream : task.streams) add(stream.to, stream.from, -stream.rate);
    for (const Exchange& exchange : task.exchanges) {
        const double slope = HeatOf(exchange, temperatures).slope;
        add(exchange.feelFrom, exchange.senseFrom, slope);
        add(exchange.feelFrom, exchange.senseTo, -slope);
        add(exchange.feelTo, exchange.senseFrom, -slope);
        add(exchange.feelTo, exchange.senseTo, slope);
    }
    for (const Circuit& circuit : task.circuits) CircuitRows(circuit, task, temperatures, entries).Add();
    Eigen::SparseMatrix<double> matrix(count, count);
    matrix.setFromTriplets(entries.begin(), entries.end());
    matrix.makeCompressed();
    factors_.compute(matrix);
    factored_ = factors_.info() == Eigen::Success;
    return factored_;
}

bool HeatSolver::Solve(HeatTask& task, std::vector<double>& temperatures) {
    const std::vector<double> last = temperatures;
    const auto count = static_cast<Eigen::Index>(task.places.size());
    if (factored_ && factors_.rows() != count) factored_ = false;
    lack_.resize(task.places.size());
    const Eigen::Map<const Eigen::VectorXd> lacks(lack_.data(), count);
    double before = std::numeric_limits<double>::infinity();
    double ease = 0.0;
    bool turned = false;
    Eigen::VectorXd lastChange;
    for (int step = 0; step <= MostSteps; ++step) {
        for (Circuit& circuit : task.circuits) CircuitBalance(circuit, task.exchanges, temperatures);
        const double worst = Measure(task, temperatures);
        if (worst <= (step == 0 ? RoundingShare / BalanceShare : 1.0)) return true;
        const double sum = std::accumulate(lack_.begin(), lack_.end(), 0.0,
                                           [](double all, double lack) { return all + std::abs(lack); });
        // Factors of an earlier step are good as long as the corrections made with them shrink fast.
        if (ease > 0.0 || sum > 0.1 * before) factored_ = false;
        if (turned && sum > 0.5 * before) {
            ease = std::clamp(EaseRises * ease, FirstEase, MostEase);
        } else {
            ease = ease < LeastEase ? 0.0 : EaseFalls * ease;
        }
        before = sum;
        const bool fresh = !factored_;
        if (fresh && !Factor(task, temperatures, ease)) break;
        Eigen::VectorXd change = factors_.solve(lacks);
        if (!fresh && !(change.allFinite() && change.cwiseAbs().maxCoeff() < LongestOldStep)) {
            if (!Factor(task, temperatures, ease)) break;
            change = factors_.solve(lacks);
        }
        // The balances of the circuits find these two by themselves.
        for (const Circuit& circuit : task.circuits)
            change[circuit.evaporating] = change[circuit.condensing] = 0.0;
        turned = step > 0 && change.dot(lastChange) < 0.0;
        lastChange = change;
        const double longest = change.cwiseAbs().maxCoeff();
        if (!change.allFinite()) break;
        const double share = longest > LongestStep ? LongestStep / longest : 1.0;
        for (Eigen::Index place = 0; place < count; ++place) {
            temperatures[static_cast<std::size_t>(place)] += share * change[place];
        }
    }
    factored_ = false;
    // On the way is nearer than where it began; the next step goes on from there.
    if (!std::all_of(temperatures.begin(), temperatures.end(), Reckonable)) temperatures = last;
    return false;
}

}  // namespace standin
