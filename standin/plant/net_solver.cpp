#include "standin/plant/net_solver.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace standin {

namespace {

constexpr int MostSteps = 50;
constexpr int DampedFrom = 12;  ///< the step from which one that does not help is halved

// A flow counts as found when it is right to this part of the net's largest, or its pressure to that of the
// largest pressure, which is as near as numbers of 64 bits come.
constexpr double FlowShare = 1e-9;
constexpr double LeastFlow = 1e-9;  // kg/s
constexpr double PressureShare = 1e-12;
constexpr double LeastSlope = 1e-9;  // kPa/(kg/s)

/// How far from a solution factors of an earlier step are worth a try, in parts of the border of `FlowShare`.
constexpr double NearEnough = 1e7;

// A flow that comes near 0 on its way has next to no slope there, and the next step would go far beyond all
// flows. So slopes begin too steep, which only shortens steps, and lose that from step to step.
constexpr double FirstEase = 1.0;
constexpr double LeastEase = 1e-6;
constexpr double EaseFalls = 0.6;

/// A step may turn a check, but not for ever.
constexpr int LastTurn = 40;

double Largest(const std::vector<double>& values) {
    double largest = 0.0;
    for (const double value : values) largest = std::max(largest, std::abs(value));
    return largest;
}

double LeastAccepted(const std::vector<double>& flows) {
    return FlowShare * Largest(flows) + LeastFlow;
}

bool Finite(const std::vector<double>& values) {
    return std::all_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); });
}

}  // namespace

NetSolver::NetSolver(const Layout& layout, const Net& net, std::span<const double> held)
    : flows_(net.aisles.size()),
      pressures_(net.points.size()),
      holding_(net.aisles.size()),
      carried_(net.aisles.size(), 2),
      parts_(net.points.size()),
      drops_(net.aisles.size()),
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

/// Begins where the last solution ended, but for what has been opened since, and for a net that was at rest.
void NetSolver::Begin(std::span<const Law> laws) {
    double usual = 0.0;
    for (const Law& law : laws) usual = std::max(usual, law.closed ? 0.0 : law.usualFlow);
    const bool rested = Largest(flows_) < 1e-6 * usual;
    for (std::size_t edge = 0; edge < edges_.size(); ++edge) {
        if (!laws[edge].check) holding_[edge] = 0;
        if (carried_[edge] != static_cast<char>(Carries(edge, laws))) factored_ = false;
        if (!Carries(edge, laws)) {
            flows_[edge] = 0.0;
        } else if (rested || carried_[edge] != 1) {
            flows_[edge] = laws[edge].usualFlow;
        }
    }
}

/// Parts the net at what carries nothing, and chooses the points on which parts rest that no vessel holds.
void NetSolver::FindParts(std::span<const Law> laws) {
    Joined joined(static_cast<int>(pressures_.size()));
    for (std::size_t edge = 0; edge < edges_.size(); ++edge) {
        if (Carries(edge, laws)) joined.Join(edges_[edge].from, edges_[edge].to);
    }
    constexpr int Held = -2;
    std::vector<int> rest(pressures_.size(), -1);
    for (int point = 0; point < static_cast<int>(pressures_.size()); ++point) {
        At(parts_, point) = joined.Of(point);
        int& lowest = At(rest, At(parts_, point));
        if (At(unknowns_, point) < 0) {
            lowest = Held;
        } else if (lowest == -1 || (lowest >= 0 && At(ranks_, point) < At(ranks_, lowest))) {
            lowest = point;
        }
    }
    pins_.clear();
    std::copy_if(rest.begin(), rest.end(), std::back_inserter(pins_), [](int point) { return point >= 0; });
}

/// Fills the drops and surpluses at the present flows and pressures. Gives how far these are from a solution,
/// 1 at the border of what counts as one. `ease` makes the slopes steeper, by that part of the usual flow.
double NetSolver::Measure(std::span<const Law> laws, double ease) {
    const double flowBorder = LeastAccepted(flows_);
    const double pressureBorder = PressureShare * std::max(1.0, Largest(pressures_));
    double worst = 0.0;
    std::fill(surplus_.begin(), surplus_.end(), 0.0);
    for (std::size_t edge = 0; edge < edges_.size(); ++edge) {
        if (!Carries(edge, laws)) continue;
        drops_[edge] = DropAt(laws[edge], flows_[edge]);
        drops_[edge].slope += LeastSlope;
        if (ease > 0.0) drops_[edge].slope += ease * DropAt(laws[edge], laws[edge].usualFlow).slope;
        const double error = std::abs(drops_[edge].pressure - Difference(edges_[edge]));
        worst = std::max(worst, std::min(error / drops_[edge].slope / flowBorder, error / pressureBorder));
        At(surplus_, edges_[edge].from) -= flows_[edge];
        At(surplus_, edges_[edge].to) += flows_[edge];
    }
    for (std::size_t point = 0; point < surplus_.size(); ++point) {
        if (unknowns_[point] >= 0) worst = std::max(worst, std::abs(surplus_[point]) / flowBorder);
    }
    for (const int pin : pins_) worst = std::max(worst, std::abs(At(pressures_, pin)) / pressureBorder);
    return worst;
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

/// One step of Newton's method, or a share of one; where `factored_`, with the factors of an earlier one.
/// False where it leads nowhere.
bool NetSolver::Step(std::span<const Law> laws, double share) {
    Eigen::VectorXd right = Assemble(laws);
    if (unknownCount_ > 0) {
        if (!factored_) factors_.factorize(matrix_);
        factored_ = factors_.info() == Eigen::Success;
        if (!factored_) return false;
        right = factors_.solve(right).eval();
    }
    const auto correction = [&](int point) {
        const int unknown = At(unknowns_, point);
        return unknown < 0 ? 0.0 : right[unknown];
    };
    for (std::size_t edge = 0; edge < edges_.size(); ++edge) {
        if (!Carries(edge, laws)) continue;
        const double driving = Difference(edges_[edge]) - drops_[edge].pressure +
                               correction(edges_[edge].from) - correction(edges_[edge].to);
        flows_[edge] += share * driving / drops_[edge].slope;
    }
    for (int point = 0; point < static_cast<int>(pressures_.size()); ++point) {
        At(pressures_, point) += share * correction(point);
    }
    return Finite(flows_) && Finite(pressures_);
}

/// Shuts the checks that something flows back through and opens those that are pushed. True when one turned.
bool NetSolver::TurnChecks(std::span<const Law> laws) {
    const double flowBorder = 10.0 * LeastAccepted(flows_);
    const double pressureBorder = 1e-9 * std::max(1.0, Largest(pressures_));
    bool turned = false;
    for (std::size_t edge = 0; edge < edges_.size(); ++edge) {
        if (!laws[edge].check || laws[edge].closed) continue;
        const bool back = holding_[edge] == 0 && flows_[edge] < -flowBorder;
        const bool pushed =
            holding_[edge] != 0 && Difference(edges_[edge]) + laws[edge].lift > pressureBorder;
        if (!back && !pushed) continue;
        holding_[edge] = back ? 1 : 0;
        flows_[edge] = back ? 0.0 : 0.1 * laws[edge].usualFlow;
        turned = true;
    }
    return turned;
}

bool NetSolver::Solve(std::span<const Law> laws) {
    const std::vector<double> lastFlows = flows_;
    const std::vector<double> lastPressures = pressures_;
    const std::vector<char> lastHolding = holding_;
    Begin(laws);
    FindParts(laws);
    double last = std::numeric_limits<double>::infinity();
    double ease = 0.0;
    for (int step = 0; step <= MostSteps; ++step) {
        double distance = Measure(laws, ease);
        if (step == 0 && distance > NearEnough) {
            ease = FirstEase;
            distance = Measure(laws, ease);
        }
        ease = ease < LeastEase ? 0.0 : ease * EaseFalls;
        const bool found = distance <= 1.0;
        if (step <= LastTurn || found) {
            if (TurnChecks(laws)) {
                FindParts(laws);
                Measure(laws, ease);
                factored_ = false;
            } else if (found) {
                Rest(laws);
                for (std::size_t edge = 0; edge < edges_.size(); ++edge) {
                    carried_[edge] = Carries(edge, laws) ? 1 : 0;
                }
                return true;
            }
        }
        // Factors of an earlier step are good as long as the corrections made with them shrink fast.
        if (step == 0 ? distance > NearEnough : distance > 0.05 * last) factored_ = false;
        const double share = step >= DampedFrom && distance > last ? 0.5 : 1.0;
        last = distance;
        if (step == MostSteps || !Step(laws, share)) break;
    }
    flows_ = lastFlows;
    pressures_ = lastPressures;
    holding_ = lastHolding;
    factored_ = false;
    return false;
}

/// A part that only pumps at rest tie to others rests on 0 as well, as far as their checks let it: a pump
/// pushes it no lower than its own pressure at no flow, and draws it no higher. A check that then has more
/// behind it than before it is shut.
void NetSolver::Rest(std::span<const Law> laws) {
    const double border = 10.0 * LeastAccepted(flows_);
    std::vector<std::size_t> resting;
    bool parts = false;
    for (std::size_t edge = 0; edge < edges_.size(); ++edge) {
        if (!laws[edge].check || std::abs(flows_[edge]) > border) continue;
        parts = parts || holding_[edge] == 0;
        resting.push_back(edge);
    }
    if (!parts) return;
    for (const std::size_t edge : resting) holding_[edge] = 1;
    FindParts(laws);
    const auto pushes = [&](std::size_t edge) { return Difference(edges_[edge]) + laws[edge].lift; };
    for (const int pin : pins_) {
        double least = -std::numeric_limits<double>::infinity();
        double most = std::numeric_limits<double>::infinity();
        for (const std::size_t edge : resting) {
            const bool leaves = At(parts_, edges_[edge].from) == At(parts_, pin);
            const bool enters = At(parts_, edges_[edge].to) == At(parts_, pin);
            if (enters && !leaves) least = std::max(least, pushes(edge));
            if (leaves && !enters) most = std::min(most, -pushes(edge));
        }
        const double shift = std::max(std::min(-At(pressures_, pin), most), least);
        for (std::size_t point = 0; point < pressures_.size(); ++point) {
            if (parts_[point] == At(parts_, pin)) pressures_[point] += shift;
        }
    }
    const double pressureBorder = 1e-9 * std::max(1.0, Largest(pressures_));
    for (const std::size_t edge : resting) holding_[edge] = pushes(edge) < -pressureBorder ? 1 : 0;
    for (const std::size_t edge : resting) flows_[edge] = holding_[edge] != 0 ? 0.0 : flows_[edge];
    FindParts(laws);
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
