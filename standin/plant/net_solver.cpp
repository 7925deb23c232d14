#include "standin/plant/net_solver.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace standin {

namespace {

constexpr int MostSteps = 50;

// A flow counts as found when it is right to this part of the net's largest, or its pressure to that of the
// largest pressure, which is as near as numbers of 64 bits come.
constexpr double FlowShare = 1e-9;
constexpr double LeastError = 1e-12;  // kg/s
constexpr double PressureShare = 1e-12;
constexpr double LeastSlope = 1e-9;  // kPa/(kg/s)

// A net with less flow than this is at rest; in others less than this part of the largest is no flow.
constexpr double RestingFlow = 1e-6;  // kg/s
constexpr double RoundingShare = 1e-12;

/// How far from a solution factors of an earlier step are worth a try, in parts of the border of `FlowShare`.
constexpr double NearEnough = 1e7;

/// A first step from far away takes all slopes for steeper, by that part of the usual flow's: near rest they
/// tell next to nothing.
constexpr double FirstEase = 1.0;

/// Mass counts as kept while a step is made, in parts of the border of `FlowShare`.
constexpr double KeptShare = 10.0;

/// How steep a check is to what flows back, of its slope at the usual flow, until it is known which hold.
constexpr double CheckSlope = 1e2;

// A step goes along its line to where the net's content (see `Solve`) falls no more than by this part of how
// it fell at first.
constexpr double FlatEnough = 0.3;
constexpr int MostTrials = 20;

bool Finite(const std::vector<double>& values) {
    return std::all_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); });
}

}  // namespace

double NetSolver::Largest(const std::vector<double>& values) {
    double largest = 0.0;
    for (const double value : values) largest = std::max(largest, std::abs(value));
    return largest;
}

double NetSolver::LeastAccepted() const {
    return FlowShare * Largest(flows_) + LeastError;
}

NetSolver::NetSolver(const Layout& layout, const Net& net, std::span<const double> held)
    : flows_(net.aisles.size()),
      pressures_(net.points.size()),
      holding_(net.aisles.size()),
      carried_(net.aisles.size(), 2),
      parts_(net.points.size()),
      drops_(net.aisles.size()),
      driving_(net.aisles.size()),
      changes_(net.aisles.size()),
      surplus_(net.points.size()) {
    std::vector<int> local(layout.points.size(), -1);
    unknowns_.assign(net.points.size(), 0);
    for (const int point : net.points) {
        At(local, point) = static_cast<int>(ranks_.size());
        ranks_.push_back(At(layout.points, point).rank);
    }
    for (const int number : net.aisles) {
        const Aisle& aisle = At(layout.aisles, number);
        edges_.push_back({At(local, aisle.inlet), At(local, aisle.outlet)});
    }
    std::size_t mouth = 0;
    for (const int number : net.mouths) {
        const int point = At(local, At(layout.mouths, number).point);
        mouthPoints_.push_back(point);
        if (At(unknowns_, point) == 0) At(pressures_, point) = held[mouth];
        At(unknowns_, point) = -1;
        ++mouth;
    }
    for (int& unknown : unknowns_) {
        if (unknown == 0) unknown = unknownCount_++;
    }

    std::vector<Eigen::Triplet<double>> entries;
    entries.reserve(static_cast<std::size_t>(unknownCount_) + edges_.size());
    for (int row = 0; row < unknownCount_; ++row) entries.emplace_back(row, row, 1.0);
    for (const Edge& edge : edges_) {
        const int from = At(unknowns_, edge.from);
        const int to = At(unknowns_, edge.to);
        if (from >= 0 && to >= 0 && from != to)
            entries.emplace_back(std::max(from, to), std::min(from, to), 0.0);
    }
    matrix_.resize(unknownCount_, unknownCount_);
    matrix_.setFromTriplets(entries.begin(), entries.end());
    matrix_.makeCompressed();
    for (int row = 0; row < unknownCount_; ++row) diagonal_.push_back(&matrix_.coeffRef(row, row));
    for (const Edge& edge : edges_) {
        const int from = At(unknowns_, edge.from);
        const int to = At(unknowns_, edge.to);
        Places places{};
        if (from != to && from >= 0) places.from = At(diagonal_, from);
        if (from != to && to >= 0) places.to = At(diagonal_, to);
        if (places.from != nullptr && places.to != nullptr) {
            places.across = &matrix_.coeffRef(std::max(from, to), std::min(from, to));
        }
        places_.push_back(places);
    }
    if (unknownCount_ > 0) factors_.analyzePattern(matrix_);
}

bool NetSolver::Carries(std::size_t edge, std::span<const Law> laws) const {
    return !laws[edge].closed && holding_[edge] == 0;
}

/// Begins where the last solution ended, but for what has been opened since.
void NetSolver::Begin(std::span<const Law> laws) {
    bool turned = false;
    for (std::size_t edge = 0; edge < edges_.size(); ++edge) {
        if (!laws[edge].check) holding_[edge] = 0;
        turned = turned || carried_[edge] != static_cast<char>(Carries(edge, laws));
        if (!Carries(edge, laws)) {
            flows_[edge] = 0.0;
        } else if (carried_[edge] != 1) {
            flows_[edge] = laws[edge].usualFlow;
        }
    }
    soft_ = softened_ = false;
    if (!turned && partsKnown_) return;
    factored_ = false;
    FindParts(laws);
}

/// Begins anew, far from a solution: all checks are soft, and flows that tell nothing are the usual ones.
void NetSolver::BeginFar(std::span<const Law> laws) {
    double usual = 0.0;
    for (const Law& law : laws) usual = std::max(usual, law.closed ? 0.0 : law.usualFlow);
    const bool rested = Largest(flows_) < 1e-6 * usual;
    Soften(laws);
    for (std::size_t edge = 0; rested && edge < edges_.size(); ++edge) {
        flows_[edge] = Carries(edge, laws) ? laws[edge].usualFlow : 0.0;
    }
}

Drop NetSolver::DropOf(const Law& law, double flow) const {
    if (!soft_ || !law.check || flow > 0.0) return DropAt(law, flow);
    const double slope = CheckSlope * DropAt(law, law.usualFlow).slope;
    return {slope * flow - law.lift, slope};
}

/// Fills the drops and surpluses at the present flows and pressures. Gives how far these are from a solution,
/// 1 at the border of what counts as one.
double NetSolver::Measure(std::span<const Law> laws) {
    const double flowBorder = LeastAccepted();
    const double pressureBorder = PressureShare * std::max(1.0, Largest(pressures_));
    double worst = 0.0;
    std::fill(surplus_.begin(), surplus_.end(), 0.0);
    for (std::size_t edge = 0; edge < edges_.size(); ++edge) {
        if (!Carries(edge, laws)) continue;
        drops_[edge] = DropOf(laws[edge], flows_[edge]);
        drops_[edge].slope += LeastSlope;
        const double error = std::abs(drops_[edge].pressure - Difference(edges_[edge]));
        worst = std::max(worst, std::min(error / drops_[edge].slope / flowBorder, error / pressureBorder));
        At(surplus_, edges_[edge].from) -= flows_[edge];
        At(surplus_, edges_[edge].to) += flows_[edge];
    }
    for (const int pin : pins_) worst = std::max(worst, std::abs(At(pressures_, pin)) / pressureBorder);
    double surplus = 0.0;
    for (std::size_t point = 0; point < surplus_.size(); ++point) {
        if (unknowns_[point] >= 0) surplus = std::max(surplus, std::abs(surplus_[point]));
    }
    massKept_ = surplus <= KeptShare * flowBorder;
    return std::max(worst, surplus / flowBorder);
}

void NetSolver::Ease(std::span<const Law> laws) {
    for (std::size_t edge = 0; edge < edges_.size(); ++edge) {
        if (Carries(edge, laws))
            drops_[edge].slope += FirstEase * DropAt(laws[edge], laws[edge].usualFlow).slope;
    }
}

/// Fills the matrix of the corrections of the pressures, and gives what is to be corrected.
Eigen::VectorXd NetSolver::Assemble(std::span<const Law> laws) {
    std::fill_n(matrix_.valuePtr(), matrix_.nonZeros(), 0.0);
    for (std::size_t edge = 0; edge < edges_.size(); ++edge) {
        if (!Carries(edge, laws)) continue;
        // The flow that the present pressures would drive, which is what is corrected.
        const double conductance = 1.0 / drops_[edge].slope;
        const double change = conductance * (Difference(edges_[edge]) - drops_[edge].pressure);
        At(surplus_, edges_[edge].from) -= change;
        At(surplus_, edges_[edge].to) += change;
        if (places_[edge].from != nullptr) *places_[edge].from += conductance;
        if (places_[edge].to != nullptr) *places_[edge].to += conductance;
        if (places_[edge].across != nullptr) *places_[edge].across -= conductance;
    }
    Eigen::VectorXd right(unknownCount_);
    for (std::size_t point = 0; point < surplus_.size(); ++point) {
        if (unknowns_[point] >= 0) right[unknowns_[point]] = surplus_[point];
    }
    for (const int pin : pins_) {
        // The part takes and gives nothing, so that this leads no flow into it.
        double& entry = *At(diagonal_, At(unknowns_, pin));
        const double weight = entry > 0.0 ? entry : 1.0;
        entry += weight;
        right[At(unknowns_, pin)] -= weight * At(pressures_, pin);
    }
    return right;
}

/// One step of Newton's method; where `factored_`, with the factors of an earlier one. False where it leads
/// nowhere.
bool NetSolver::Step(std::span<const Law> laws) {
    Eigen::VectorXd right = Assemble(laws);
    const bool fresh = !factored_;
    if (unknownCount_ > 0) {
        if (fresh) factors_.factorize(matrix_);
        factored_ = factors_.info() == Eigen::Success;
        if (!factored_) return false;
        right = factors_.solve(right).eval();
    }
    const auto correction = [&](int point) {
        const int unknown = At(unknowns_, point);
        return unknown < 0 ? 0.0 : right[unknown];
    };
    for (std::size_t edge = 0; edge < edges_.size(); ++edge) {
        changes_[edge] = 0.0;
        if (!Carries(edge, laws)) continue;
        const double corrected = correction(edges_[edge].from) - correction(edges_[edge].to);
        driving_[edge] = Difference(edges_[edge]) + corrected;
        // Rounded as in `Assemble`, so that mass is kept more sharply than a pressure can be told.
        changes_[edge] = (Difference(edges_[edge]) - drops_[edge].pressure + corrected) / drops_[edge].slope;
    }
    // Where mass is not kept yet the whole step does it.
    const double share = fresh && massKept_ ? ShareOfStep(laws) : 1.0;
    for (std::size_t edge = 0; edge < edges_.size(); ++edge) flows_[edge] += share * changes_[edge];
    for (int point = 0; point < static_cast<int>(pressures_.size()); ++point) {
        At(pressures_, point) += correction(point);
    }
    return Finite(flows_) && Finite(pressures_);
}

/// The share of `changes_`, at most 1, at which the content is about least, under the pressures that drive
/// them.
double NetSolver::ShareOfStep(std::span<const Law> laws) const {
    const auto rises = [&](double share) {
        double sum = 0.0;
        for (std::size_t edge = 0; edge < edges_.size(); ++edge) {
            if (changes_[edge] == 0.0) continue;
            const double pressure = DropOf(laws[edge], flows_[edge] + share * changes_[edge]).pressure;
            sum += changes_[edge] * (pressure - driving_[edge]);
        }
        return sum;
    };
    double low = 0.0;
    double high = 1.0;
    double atLow = rises(low);
    double atHigh = rises(high);
    const double flat = -FlatEnough * atLow;
    for (int trial = 0; trial < MostTrials && atHigh > flat; ++trial) {
        // The false position, but within the borders of a bisection that is no even one.
        const double middle = std::clamp((low * atHigh - high * atLow) / (atHigh - atLow),
                                         low + 0.1 * (high - low), low + 0.6 * (high - low));
        const double atMiddle = rises(middle);
        if (std::abs(atMiddle) <= flat) return middle;
        (atMiddle < 0.0 ? low : high) = middle;
        (atMiddle < 0.0 ? atLow : atHigh) = atMiddle;
    }
    return high;
}

/// Of all flows that keep mass, those that a net takes make its content least: the sum of what each aisle's
/// pressure drop adds up to from no flow to its flow, less what the vessels' pressures give. Drops rise with
/// flow, so that it is convex, and Newton's steps with a search along each lead to its least.
bool NetSolver::Solve(std::span<const Law> laws) {
    const std::vector<double> lastFlows = flows_;
    const std::vector<double> lastPressures = pressures_;
    const std::vector<char> lastHolding = holding_;
    Begin(laws);
    bool fresh = false;
    double last = std::numeric_limits<double>::infinity();
    for (int step = 0; step <= MostSteps; ++step) {
        double distance = Measure(laws);
        const bool far = step == 0 && distance > NearEnough;
        if (far) {
            BeginFar(laws);
            distance = Measure(laws);
            Ease(laws);
        } else if (distance <= 1.0) {
            if (!TurnChecks(laws)) {
                Rest(laws);
                Settle(laws);
                return true;
            }
            FindParts(laws);
            distance = Measure(laws);
            factored_ = false;
        }
        // Factors of an earlier solution are good as long as the corrections made with them shrink fast.
        if (far || fresh || distance > 0.05 * last) factored_ = false;
        fresh = !factored_;
        last = distance;
        if (step == MostSteps || !Step(laws)) break;
    }
    flows_ = lastFlows;
    pressures_ = lastPressures;
    holding_ = lastHolding;
    factored_ = partsKnown_ = false;
    return false;
}

/// Takes away what rounding left of no flow, and remembers what carries.
void NetSolver::Settle(std::span<const Law> laws) {
    const double largest = Largest(flows_);
    const double nothing = largest < RestingFlow ? RestingFlow : RoundingShare * largest;
    for (std::size_t edge = 0; edge < edges_.size(); ++edge) {
        if (std::abs(flows_[edge]) < nothing) flows_[edge] = 0.0;
        carried_[edge] = Carries(edge, laws) ? 1 : 0;
    }
}

std::vector<double> NetSolver::MouthFlows() const {
    std::vector<double> comes(pressures_.size());
    std::vector<double> mouths(pressures_.size());
    for (std::size_t edge = 0; edge < edges_.size(); ++edge) {
        At(comes, edges_[edge].from) -= flows_[edge];
        At(comes, edges_[edge].to) += flows_[edge];
    }
    for (const int point : mouthPoints_) At(mouths, point) += 1.0;
    std::vector<double> flows;
    for (const int point : mouthPoints_) flows.push_back(At(comes, point) / At(mouths, point));
    return flows;
}

}  // namespace standin
