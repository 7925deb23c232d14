// The flows and pressures of one net, by Newton's method on pressures and flows at once: the global gradient
// algorithm of E. Todini and S. Pilati (1988), which water networks are solved with.

#pragma once

#include <Eigen/SparseCholesky>
#include <span>
#include <vector>

#include "standin/plant/law.h"
#include "standin/plant/layout.h"

namespace standin {

/// What is kept of a net from solution to solution: the last one is where the next begins, and the order in
/// which its equations are solved stays.
class NetSolver {
  public:
    /// `held` is the pressure at each mouth of the net, in kPa, in the net's order: of two at one point the
    /// first holds.
    NetSolver(const Layout& layout, const Net& net, std::span<const double> held);

    /// Solves the net under `laws`, of each of its aisles in its order. False, with the last solution left as
    /// it is, when 50 steps of Newton's method do not lead to one.
    bool Solve(std::span<const Law> laws);

    const std::vector<double>& Flows() const { return flows_; }          ///< kg/s, by the net's aisles
    const std::vector<double>& Pressures() const { return pressures_; }  ///< kPa, by the net's points
    /// kg/s into each vessel, by the net's mouths. Of several mouths at one point each takes its share.
    std::vector<double> MouthFlows() const;

  private:
    struct Edge {
        int from;  ///< the net's points
        int to;
    };

    /// The largest size, 0 of none.
    static double Largest(const std::vector<double>& values);
    /// kg/s by which a flow may be wrong.
    double LeastAccepted() const;
    double Difference(const Edge& edge) const { return At(pressures_, edge.from) - At(pressures_, edge.to); }
    bool Carries(std::size_t edge, std::span<const Law> laws) const;
    void Begin(std::span<const Law> laws);
    void BeginFar(std::span<const Law> laws);
    void FindParts(std::span<const Law> laws);
    Drop DropOf(const Law& law, double flow) const;
    double Measure(std::span<const Law> laws);
    void Ease(std::span<const Law> laws);
    Eigen::VectorXd Assemble(std::span<const Law> laws);
    bool Step(std::span<const Law> laws);
    double ShareOfStep(std::span<const Law> laws) const;
    void Soften(std::span<const Law> laws);
    bool TurnChecks(std::span<const Law> laws);
    void Rest(std::span<const Law> laws);
    void Settle(std::span<const Law> laws);

    std::vector<Edge> edges_;
    std::vector<int> mouthPoints_;
    std::vector<std::int64_t> ranks_;
    std::vector<int> unknowns_;  ///< by point: its row, -1 where its pressure is held
    int unknownCount_ = 0;

    std::vector<double> flows_;
    std::vector<double> pressures_;
    std::vector<char> holding_;  ///< by edge: a check that is shut
    bool soft_ = false;          ///< checks let a little flow back
    bool softened_ = false;      ///< they were soft in this solution
    std::vector<char> carried_;  ///< by edge: at the last solution
    bool partsKnown_ = false;    ///< of the last solution
    std::vector<int> pins_;      ///< points on which parts rest that nothing holds
    std::vector<int> parts_;     ///< by point

    std::vector<Drop> drops_;
    std::vector<double> driving_;  ///< by edge: kPa between its ends behind a step
    std::vector<double> changes_;  ///< by edge: of the flow, in a step
    bool massKept_ = false;
    std::vector<double> surplus_;  ///< by point: kg/s that come in and do not go out
    Eigen::SparseMatrix<double> matrix_;
    struct Places {
        double* from;
        double* to;
        double* across;
    };
    std::vector<Places> places_;     ///< by edge: where it stands in the matrix; null where it does not
    std::vector<double*> diagonal_;  ///< by row
    bool factored_ = false;
    Eigen::SimplicialLDLT<Eigen::SparseMatrix<double>> factors_;
};

}  // namespace standin
