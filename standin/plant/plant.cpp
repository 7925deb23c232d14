#include "standin/plant/plant.h"

#include "standin/plant/protection.h"
#include "standin/plant/report.h"

namespace standin {

struct Plant::Parts {
    explicit Parts(const PlantRows& rows)
        : layout(LayoutMake(rows)), hydraulics(layout), balance(layout), state{layout, hydraulics, balance} {}

    Layout layout;
    Hydraulics hydraulics;
    HeatBalance balance;
    PlantState state;
    bool heatReported = false;
};

Plant::Plant(const PlantRows& rows) : parts_(std::make_unique<Parts>(rows)) {}
Plant::~Plant() = default;

PlantOutputs Plant::Step(const PlantInputs& inputs, double seconds) {
    Parts& parts = *parts_;
    PlantOutputs outputs;
    parts.hydraulics.Solve(inputs);
    const bool heatSolved = parts.balance.Step(inputs, parts.hydraulics, seconds);
    for (int net = 0; net < static_cast<int>(parts.layout.nets.size()); ++net) {
        if (!At(parts.layout.nets, net).circuit) continue;
        parts.hydraulics.Circulate(net, parts.balance.CircuitAt(net).flow, parts.balance.Taken());
    }
    outputs.faults = parts.hydraulics.TakeFaults();
    if (!heatSolved && !parts.heatReported) {
        parts.heatReported = true;
        outputs.faults.emplace_back(
            "its heat is not balanced within 100 steps of one step; the next go on with it");
    }
    outputs.unsolvedNets = parts.hydraulics.UnsolvedNets();
    outputs.converged = outputs.unsolvedNets == 0 && heatSolved;
    ReportPorts(parts.state, outputs);
    ReportTemperatures(parts.state, outputs);
    ReportSums(parts.state, inputs, outputs);
    ReportProtection(parts.state, inputs, outputs);
    return outputs;
}

}  // namespace standin
