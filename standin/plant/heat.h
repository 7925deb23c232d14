// The temperatures at the end of a step, from the heat that streams carry, that is exchanged and that is
// stored.

#pragma once

#include <Eigen/SparseLU>
#include <vector>

#include "standin/plant/circuit.h"

namespace standin {

/// What heat is reckoned for: a place has one temperature and one balance.
struct Place {
    double start = 0.0;     ///< degrees Celsius before the step
    double capacity = 0.0;  ///< J/K
    bool pinned = false;    ///< keeps its temperature, whatever heat it gets
};

/// A flow that brings one place's temperature to another place.
struct Stream {
    int from;
    int to;
    double rate;  ///< W/K
};

/// All that a step asks of heat. Units: W, J, K, degrees Celsius.
struct HeatTask {
    double seconds = 0.0;
    std::vector<Place> places{};
    std::vector<Stream> streams{};
    std::vector<Exchange> exchanges{};
    std::vector<Circuit> circuits{};
};

/// Solves all balances at once and implicitly, so that no step length makes them unstable:
///   capacity dT/dt = sum of rate (T upstream - T) + heat got - heat given
/// A place that nothing flows into and that stores nothing keeps its temperature; so does, as a whole, a ring
/// of streams that nothing ties to anything.
class HeatSolver {
  public:
    /// Leaves the temperatures of all places, and in the circuits theirs. False where the balances cannot be
    /// met; then they are as they were.
    bool Solve(HeatTask& task, std::vector<double>& temperatures);

  private:
    double Measure(const HeatTask& task, const std::vector<double>& temperatures);
    bool Factor(const HeatTask& task, const std::vector<double>& temperatures, double ease);

    std::vector<double> lack_;      ///< W that each balance is short of
    std::vector<double> turnover_;  ///< W/K by place: what streams bring it
    std::vector<double> traffic_;   ///< W by place: what it exchanges
    bool factored_ = false;
    /// Of an earlier step perhaps: good as long as corrections made with it shrink.
    Eigen::SparseLU<Eigen::SparseMatrix<double>> factors_;
};

}  // namespace standin
