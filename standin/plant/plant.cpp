#include "standin/plant/plant.h"

#include <algorithm>
#include <cmath>

namespace standin {

namespace {

/// What rounding leaves of nothing, and the sign of a zero, are not shown.
double Shown(double value) {
    constexpr double Nothing = 1e-13;
    return std::abs(value) < Nothing ? 0.0 : value;
}

}  // namespace

double Plant::PortFlow(const Device& device, std::size_t port) const {
    if (device.aisles[port] >= 0) return Shown(At(hydraulics_.Flows(), device.aisles[port]));
    if (device.mouths[port] < 0) return 0.0;
    const double into = Shown(At(hydraulics_.MouthFlows(), device.mouths[port]));
    return device.type->ports[port].outlet ? 0.0 - into : into;
}

/// Of what leaves the device at the port, else of what comes to it.
double Plant::PortTemperature(const Device& device, std::size_t port) const {
    const int point = device.points[port];
    const int net = At(layout_.points, point).net;
    if (At(layout_.nets, net).circuit) {
        const HeatBalance::CircuitState& circuit = balance_.CircuitAt(net);
        return balance_.LowSide(point) ? circuit.evaporating : circuit.condensing;
    }
    const bool outlet = device.type->ports[port].outlet;
    if (const int aisle = device.aisles[port]; aisle >= 0) {
        const double flow = At(hydraulics_.Flows(), aisle);
        const bool leaves = outlet ? flow > 0.0 : flow < 0.0;
        return leaves ? balance_.LeavingTemperature(aisle, hydraulics_) : balance_.PointTemperature(point);
    }
    if (const int mouth = device.mouths[port]; mouth >= 0) {
        // The outlet always tells the content, which the next step reads there.
        const bool enters = !outlet && At(hydraulics_.MouthFlows(), mouth) > 0.0;
        if (!enters) return balance_.ContentTemperature(At(layout_.mouths, mouth).content);
    }
    return balance_.PointTemperature(point);
}

void Plant::TellPorts(PlantOutputs& outputs) const {
    outputs.ports.resize(layout_.devices.size());
    for (std::size_t number = 0; number < layout_.devices.size(); ++number) {
        const Device& device = layout_.devices[number];
        int content = -1;
        for (std::size_t port = 0; port < device.type->ports.size(); ++port) {
            const int point = device.points[port];
            if (device.mouths[port] >= 0) content = At(layout_.mouths, device.mouths[port]).content;
            if (point == NoPoint) continue;
            outputs.ports[number][port] = {Shown(At(hydraulics_.Pressures(), point)),
                                           PortTemperature(device, port), PortFlow(device, port)};
        }
        // Also where nothing is linked to the outlet.
        if (content >= 0) outputs.ports[number][1].temperature = balance_.ContentTemperature(content);
    }
}

void Plant::TellNodes(PlantOutputs& outputs) const {
    std::vector<double> incoming(layout_.points.size());
    for (std::size_t number = 0; number < layout_.aisles.size(); ++number) {
        const Aisle& aisle = layout_.aisles[number];
        const double flow = hydraulics_.Flows()[number];
        At(incoming, flow < 0.0 ? aisle.inlet : aisle.outlet) += std::abs(flow);
    }
    for (std::size_t number = 0; number < layout_.mouths.size(); ++number) {
        At(incoming, layout_.mouths[number].point) += std::max(-hydraulics_.MouthFlows()[number], 0.0);
    }
    for (const int point : layout_.nodePoints) {
        const int net = At(layout_.points, point).net;
        const HeatBalance::CircuitState& circuit = balance_.CircuitAt(net);
        const double temperature = !At(layout_.nets, net).circuit ? balance_.PointTemperature(point)
                                   : balance_.LowSide(point)      ? circuit.evaporating
                                                                  : circuit.condensing;
        outputs.nodes.push_back(
            {Shown(At(hydraulics_.Pressures(), point)), temperature, Shown(At(incoming, point))});
    }
    for (const NodePort& port : layout_.nodePorts) {
        const PortState& node = At(outputs.nodes, port.node);
        PortState state{node.pressure, node.temperature, 0.0};
        if (port.device >= 0) {
            const Device& device = At(layout_.devices, port.device);
            const auto far = static_cast<std::size_t>(port.devicePort);
            const PortState& there = At(outputs.ports, port.device)[far];
            const bool leavesNode = port.port >= NodeInletCount;
            const bool entersDevice = !device.type->ports[far].outlet;
            state.flow = leavesNode == entersDevice ? there.flow : 0.0 - there.flow;
            state.temperature = there.temperature;
        }
        outputs.nodePorts.push_back(state);
    }
}

/// Rooms and cold stores, and what coolers and evaporators bear as BKT_TEMP: the temperature of what they
/// cool.
void Plant::TellItems(PlantOutputs& outputs) const {
    for (int number = 0; number < static_cast<int>(layout_.devices.size()); ++number) {
        const Device& device = At(layout_.devices, number);
        const Role role = device.type->role;
        if (role == Role::Room) {
            outputs.items.push_back(
                {number, device.type->Row(Item::Inside), balance_.RoomTemperature(number)});
            continue;
        }
        const int row = device.type->Row(Item::Store);
        if (row < 0) continue;
        const bool stands = device.room >= 0 && IsRoom(At(layout_.devices, device.room).type->role);
        if (role == Role::ColdStore || stands) {
            const int room = role == Role::ColdStore ? number : device.room;
            outputs.items.push_back({number, row, balance_.RoomTemperature(room)});
            continue;
        }
        for (const AisleType& type : device.type->aisles) {
            const int aisle = device.aisles[static_cast<std::size_t>(type.inlet)];
            if (aisle < 0 || At(layout_.nets, At(layout_.aisles, aisle).net).circuit) continue;
            outputs.items.push_back({number, row, balance_.LeavingTemperature(aisle, hydraulics_)});
        }
    }
}

void Plant::TellProject(const PlantInputs& inputs, PlantOutputs& outputs) const {
    double evaporating = 0.0;
    double water = 0.0;
    int waterPoints = 0;
    for (int number = 0; number < static_cast<int>(layout_.nets.size()); ++number) {
        const Net& net = At(layout_.nets, number);
        outputs.nets += net.linked ? 1 : 0;
        if (net.circuit) {
            const HeatBalance::CircuitState& circuit = balance_.CircuitAt(number);
            ++outputs.circuits;
            evaporating += circuit.evaporating;
            outputs.heatTaken += circuit.taken;
            outputs.power += circuit.power;
        } else if (net.linked && net.fluid == Fluid::Water) {
            for (const int point : net.points) water += balance_.PointTemperature(point);
            waterPoints += static_cast<int>(net.points.size());
        }
    }
    outputs.power += hydraulics_.PumpPower(inputs);
    outputs.hasMeanTemperature = outputs.circuits > 0 || waterPoints > 0;
    if (outputs.circuits > 0) {
        outputs.meanTemperature = evaporating / outputs.circuits;
    } else if (waterPoints > 0) {
        outputs.meanTemperature = water / waterPoints;
    }
}

PlantOutputs Plant::Step(const PlantInputs& inputs, double seconds) {
    PlantOutputs outputs;
    hydraulics_.Solve(inputs);
    const bool heatSolved = balance_.Step(inputs, hydraulics_, seconds);
    for (int net = 0; net < static_cast<int>(layout_.nets.size()); ++net) {
        if (!At(layout_.nets, net).circuit) continue;
        hydraulics_.Circulate(net, balance_.CircuitAt(net).taken, balance_.Taken());
    }
    outputs.faults = hydraulics_.TakeFaults();
    if (!heatSolved && !heatTold_) {
        heatTold_ = true;
        outputs.faults.emplace_back(
            "its heat is not balanced within 100 steps of one step; the next go on with it");
    }
    outputs.unsolvedNets = hydraulics_.UnsolvedNets();
    outputs.converged = outputs.unsolvedNets == 0 && heatSolved;
    TellPorts(outputs);
    TellNodes(outputs);
    TellItems(outputs);
    TellProject(inputs, outputs);
    return outputs;
}

}  // namespace standin
