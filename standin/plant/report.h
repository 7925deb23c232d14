// What a step reports at ports and nodes, and of rooms.

#pragma once

#include "standin/plant/heat_balance.h"

namespace standin {

/// The solved state of a plant, behind a step.
struct PlantState {
    const Layout& layout;
    const Hydraulics& hydraulics;
    const HeatBalance& balance;
};

/// Fills `ports`, `nodes` and `nodePorts`.
void ReportPorts(const PlantState& state, PlantOutputs& outputs);
/// Adds the temperatures of rooms and cold stores, and as `BKT_TEMP` of coolers and evaporators that of what
/// they cool.
void ReportTemperatures(const PlantState& state, PlantOutputs& outputs);
/// Fills what is counted and summed over the plant, the alarms excepted.
void ReportSums(const PlantState& state, const PlantInputs& inputs, PlantOutputs& outputs);

}  // namespace standin
