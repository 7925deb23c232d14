// The pressures and flows of all nets of a plant.

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "standin/plant/inputs.h"
#include "standin/plant/net_solver.h"

namespace standin {

class Hydraulics {
  public:
    explicit Hydraulics(const Layout& layout);

    /// Solves the nets of water and air, and finds which aisles of the circuits can be driven. A net without
    /// a solution keeps its last values.
    void Solve(const PlantInputs& inputs);
    /// Gives a circuit a flow in kg/s, spread over its evaporators by the heat they take: `taken` in W by
    /// aisle of the layout.
    void Circulate(int net, double flow, const std::vector<double>& taken);

    const std::vector<double>& Flows() const { return flows_; }            ///< kg/s by aisle
    const std::vector<double>& MouthFlows() const { return mouthFlows_; }  ///< kg/s into the vessel
    const std::vector<double>& Pressures() const { return pressures_; }    ///< kPa by point
    /// True where a circuit's compressors can move something through an aisle.
    bool Driven(int aisle) const { return At(driven_, aisle) != 0; }
    /// The part, 0 to 1, of an evaporator's surface that its expansion valve lets refrigerant to, by its
    /// aisle.
    double Wetted(int aisle) const { return At(wetted_, aisle); }
    /// The fluid in a net, which is brine where a tank says so.
    Fluid FluidOf(int net) const { return At(fluids_, net); }
    /// m3 in the aisle of a pipe or duct; 0 of others.
    double Volume(int aisle) const { return At(volumes_, aisle); }
    /// W that the pumps in nets of water and air draw.
    double PumpPower(const PlantInputs& inputs) const;
    int UnsolvedNets() const { return unsolved_; }
    /// Lines on nets that could not be solved, each once; taken away with the call.
    std::vector<std::string> TakeFaults();

  private:
    struct NetState {
        std::unique_ptr<NetSolver> solver;
        std::unique_ptr<NetSolver> probe;  ///< of a circuit
        std::vector<Law> laws;
        Fluid fluid = Fluid::Water;  ///< that `laws` are of
        bool solved = false;         ///< the flows are those of `laws`
        bool reported = false;       ///< that it has no solution
    };

    Law LawOf(const PlantInputs& inputs, const Aisle& aisle, Fluid fluid) const;
    bool UpdateLaws(const PlantInputs& inputs, int net);
    void TakeFlows(int net);
    void FindFluids(const PlantInputs& inputs);
    void Probe(const PlantInputs& inputs, int net);
    void FindWetted(const PlantInputs& inputs, int net);

    const Layout& layout_;
    std::vector<NetState> nets_;
    std::vector<double> flows_;
    std::vector<double> mouthFlows_;
    std::vector<double> pressures_;
    std::vector<Fluid> fluids_;  ///< by net
    std::vector<double> lastItems_;
    std::vector<double> volumes_;
    std::vector<char> driven_;
    std::vector<double> wetted_;
    std::vector<std::string> faults_;
    int unsolved_ = 0;
};

}  // namespace standin
