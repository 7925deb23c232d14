// What shuts the aisles of a net: its checks, and the parts that they and closed valves make of it.

#include <algorithm>
#include <cmath>
#include <limits>

#include "standin/plant/net_solver.h"

namespace standin {

/// Parts the net at what carries nothing, and chooses the points on which parts rest that no vessel holds.
void NetSolver::FindParts(std::span<const Law> laws) {
    partsKnown_ = true;
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

/// Opens all checks, but steep to what flows back.
void NetSolver::Soften(std::span<const Law> laws) {
    for (std::size_t edge = 0; edge < edges_.size(); ++edge) {
        if (laws[edge].check) holding_[edge] = 0;
    }
    soft_ = softened_ = true;
    FindParts(laws);
}

/// Shuts the checks that something flows back through and opens those that are pushed. True when one turned:
/// the first time all are soft until the flows are found again.
bool NetSolver::TurnChecks(std::span<const Law> laws) {
    const double flowBorder = soft_ ? 0.0 : 10.0 * LeastAccepted();
    const double pressureBorder = 1e-9 * std::max(1.0, Largest(pressures_));
    bool turned = false;
    for (std::size_t edge = 0; edge < edges_.size(); ++edge) {
        if (!laws[edge].check || laws[edge].closed) continue;
        const bool back = holding_[edge] == 0 && flows_[edge] < -flowBorder;
        const bool pushed =
            holding_[edge] != 0 && Difference(edges_[edge]) + laws[edge].lift > pressureBorder;
        if (!back && !pushed) continue;
        holding_[edge] = back ? 1 : 0;
        flows_[edge] = 0.0;
        turned = true;
    }
    soft_ = false;
    if (turned && !softened_) Soften(laws);
    return turned;
}

/// A part that only pumps at rest tie to others rests on 0 as well, as far as their checks let it: a pump
/// pushes it no lower than its own pressure at no flow, and draws it no higher. A check that then has more
/// behind it than before it is shut.
void NetSolver::Rest(std::span<const Law> laws) {
    const double border = 10.0 * LeastAccepted();
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

}  // namespace standin
