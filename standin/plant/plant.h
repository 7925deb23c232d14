// The plant of one project: what a step computes from the project's values. It knows nothing of the project's
// records and takes no lock.

#pragma once

#include <array>
#include <string>
#include <vector>

#include "standin/plant/heat_balance.h"
#include "standin/plant/hydraulics.h"
#include "standin/plant/inputs.h"
#include "standin/plant/layout.h"

namespace standin {

struct PortState {
    double pressure = 0.0;     ///< kPa
    double temperature = 0.0;  ///< degrees Celsius
    double flow = 0.0;         ///< kg/s
};

/// An item that a step gives a new value.
struct ItemState {
    int device;
    int row;
    double value;
};

/// What a step gives: finite throughout, whatever it read.
struct PlantOutputs {
    std::vector<std::array<PortState, 4>> ports;  ///< by device; zero at ports to which nothing is linked
    std::vector<PortState> nodes;                 ///< by node; the flow is the sum of what comes in
    std::vector<PortState> nodePorts;             ///< by the layout's node ports
    std::vector<ItemState> items;
    bool hasMeanTemperature = false;  ///< there is a circuit or water
    double meanTemperature = 0.0;     ///< evaporating, or of the water where there is no circuit
    double heatTaken = 0.0;           ///< by the circuits, W
    double power = 0.0;               ///< drawn by pumps and compressors, W
    int nets = 0;
    int circuits = 0;
    int unsolvedNets = 0;
    bool converged = true;
    std::vector<std::string> faults;  ///< those that were not told before
};

class Plant {
  public:
    explicit Plant(const PlantRows& rows)
        : layout_(LayoutMake(rows)), hydraulics_(layout_), balance_(layout_) {}
    Plant(const Plant&) = delete;
    Plant& operator=(const Plant&) = delete;

    const Layout& GetLayout() const { return layout_; }
    /// Computes one step of that many seconds, above 0.
    PlantOutputs Step(const PlantInputs& inputs, double seconds);

  private:
    double PortTemperature(const Device& device, std::size_t port) const;
    double PortFlow(const Device& device, std::size_t port) const;
    void TellPorts(PlantOutputs& outputs) const;
    void TellNodes(PlantOutputs& outputs) const;
    void TellItems(PlantOutputs& outputs) const;
    void TellProject(const PlantInputs& inputs, PlantOutputs& outputs) const;

    Layout layout_;
    Hydraulics hydraulics_;
    HeatBalance balance_;
    bool heatTold_ = false;
};

}  // namespace standin
