#include "standin/plant/report.h"

#include <algorithm>
#include <cmath>

#include "standin/plant/refrigerant.h"

namespace standin {

namespace {

/// What rounding leaves of nothing, and the sign of a zero, are not shown.
double Shown(double value) {
    constexpr double Nothing = 1e-13;
    return std::abs(value) < Nothing ? 0.0 : value;
}

double CircuitTemperature(const PlantState& state, int point) {
    const HeatBalance::CircuitState& circuit = state.balance.CircuitAt(At(state.layout.points, point).net);
    return state.balance.LowSide(point) ? circuit.evaporating : circuit.condensing;
}

bool InCircuit(const PlantState& state, int point) {
    return At(state.layout.nets, At(state.layout.points, point).net).circuit;
}

double PointTemperature(const PlantState& state, int point) {
    return InCircuit(state, point) ? CircuitTemperature(state, point) : state.balance.PointTemperature(point);
}

/// Suction and discharge pressure are those of saturation.
double PointPressure(const PlantState& state, int point) {
    if (InCircuit(state, point))
        return SaturationAt(CircuitTemperature(state, point)).pressure.value - Atmosphere;
    return Shown(At(state.hydraulics.Pressures(), point));
}

double PortFlow(const PlantState& state, const Device& device, std::size_t port) {
    if (device.aisles[port] >= 0) return Shown(At(state.hydraulics.Flows(), device.aisles[port]));
    if (device.mouths[port] < 0) return 0.0;
    const double into = Shown(At(state.hydraulics.MouthFlows(), device.mouths[port]));
    return device.type->ports[port].outlet ? 0.0 - into : into;
}

/// Of what leaves the device at the port, else of what comes to it.
double PortTemperature(const PlantState& state, const Device& device, std::size_t port) {
    const int point = device.points[port];
    if (InCircuit(state, point)) return CircuitTemperature(state, point);
    const bool outlet = device.type->ports[port].outlet;
    if (const int aisle = device.aisles[port]; aisle >= 0) {
        const double flow = At(state.hydraulics.Flows(), aisle);
        const bool leaves = outlet ? flow > 0.0 : flow < 0.0;
        return leaves ? state.balance.LeavingTemperature(aisle, state.hydraulics)
                      : state.balance.PointTemperature(point);
    }
    if (const int mouth = device.mouths[port]; mouth >= 0) {
        // The outlet always reports the content, which the next step reads there.
        const bool enters = !outlet && At(state.hydraulics.MouthFlows(), mouth) > 0.0;
        if (!enters) return state.balance.ContentTemperature(At(state.layout.mouths, mouth).content);
    }
    return state.balance.PointTemperature(point);
}

void ReportModules(const PlantState& state, PlantOutputs& outputs) {
    outputs.ports.resize(state.layout.devices.size());
    for (std::size_t number = 0; number < state.layout.devices.size(); ++number) {
        const Device& device = state.layout.devices[number];
        int content = -1;
        for (std::size_t port = 0; port < device.type->ports.size(); ++port) {
            const int point = device.points[port];
            if (device.mouths[port] >= 0) content = At(state.layout.mouths, device.mouths[port]).content;
            if (point == NoPoint) continue;
            outputs.ports[number][port] = {PointPressure(state, point), PortTemperature(state, device, port),
                                           PortFlow(state, device, port)};
        }
        // Also where nothing is linked to the outlet.
        if (content >= 0) outputs.ports[number][1].temperature = state.balance.ContentTemperature(content);
    }
}

void ReportNodes(const PlantState& state, PlantOutputs& outputs) {
    std::vector<double> incoming(state.layout.points.size());
    for (std::size_t number = 0; number < state.layout.aisles.size(); ++number) {
        const Aisle& aisle = state.layout.aisles[number];
        const double flow = state.hydraulics.Flows()[number];
        At(incoming, flow < 0.0 ? aisle.inlet : aisle.outlet) += std::abs(flow);
    }
    for (std::size_t number = 0; number < state.layout.mouths.size(); ++number) {
        At(incoming, state.layout.mouths[number].point) +=
            std::max(-state.hydraulics.MouthFlows()[number], 0.0);
    }
    outputs.nodes.reserve(state.layout.nodePoints.size());
    for (const int point : state.layout.nodePoints) {
        outputs.nodes.push_back(
            {PointPressure(state, point), PointTemperature(state, point), Shown(At(incoming, point))});
    }
}

void ReportNodePorts(const PlantState& state, PlantOutputs& outputs) {
    outputs.nodePorts.reserve(state.layout.nodePorts.size());
    for (const NodePort& port : state.layout.nodePorts) {
        const PortState& node = At(outputs.nodes, port.node);
        NodePortState reported{port.node, port.port, {node.pressure, node.temperature, 0.0}};
        if (port.device >= 0) {
            const Device& device = At(state.layout.devices, port.device);
            const auto far = static_cast<std::size_t>(port.devicePort);
            const PortState& there = At(outputs.ports, port.device)[far];
            const bool leavesNode = port.port >= FirstNodeOutlet;
            const bool entersDevice = !device.type->ports[far].outlet;
            reported.state.flow = leavesNode == entersDevice ? there.flow : 0.0 - there.flow;
            reported.state.temperature = there.temperature;
        }
        outputs.nodePorts.push_back(reported);
    }
}

}  // namespace

void ReportPorts(const PlantState& state, PlantOutputs& outputs) {
    ReportModules(state, outputs);
    ReportNodes(state, outputs);
    ReportNodePorts(state, outputs);
}

void ReportTemperatures(const PlantState& state, PlantOutputs& outputs) {
    const Layout& layout = state.layout;
    for (int number = 0; number < static_cast<int>(layout.devices.size()); ++number) {
        const Device& device = At(layout.devices, number);
        const Role role = device.type->role;
        if (role == Role::Room) {
            outputs.items.push_back(
                {number, device.type->Row(Item::Inside), state.balance.RoomTemperature(number)});
            continue;
        }
        const int row = device.type->Row(Item::Store);
        if (row < 0) continue;
        const bool placed = device.room >= 0 && IsRoom(At(layout.devices, device.room).type->role);
        if (role == Role::ColdStore || placed) {
            const int room = role == Role::ColdStore ? number : device.room;
            outputs.items.push_back({number, row, state.balance.RoomTemperature(room)});
            continue;
        }
        for (const AisleType& type : device.type->aisles) {
            const int aisle = device.aisles[static_cast<std::size_t>(type.inlet)];
            if (aisle < 0 || At(layout.nets, At(layout.aisles, aisle).net).circuit) continue;
            outputs.items.push_back({number, row, state.balance.LeavingTemperature(aisle, state.hydraulics)});
        }
    }
}

void ReportSums(const PlantState& state, const PlantInputs& inputs, PlantOutputs& outputs) {
    double evaporating = 0.0;
    double water = 0.0;
    int waterPoints = 0;
    for (int number = 0; number < static_cast<int>(state.layout.nets.size()); ++number) {
        const Net& net = At(state.layout.nets, number);
        outputs.nets += net.linked ? 1 : 0;
        if (net.circuit) {
            const HeatBalance::CircuitState& circuit = state.balance.CircuitAt(number);
            ++outputs.circuits;
            evaporating += circuit.evaporating;
            outputs.heatTaken += circuit.taken;
            outputs.power += circuit.power;
        } else if (net.linked && net.fluid == Fluid::Water) {
            for (const int point : net.points) water += state.balance.PointTemperature(point);
            waterPoints += static_cast<int>(net.points.size());
        }
    }
    outputs.power += state.hydraulics.PumpPower(inputs);
    outputs.hasMeanTemperature = outputs.circuits > 0 || waterPoints > 0;
    if (outputs.circuits > 0) {
        outputs.meanTemperature = evaporating / outputs.circuits;
    } else if (waterPoints > 0) {
        outputs.meanTemperature = water / waterPoints;
    }
}

}  // namespace standin
