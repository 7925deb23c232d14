#include "standin/plant/hydraulics.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace standin {

namespace {

// Values that are reckoned with, however large a client writes them: what no plant has, and what the squares
// and quotients of still fit a double.
constexpr double MostLength = 1e6;  // m
constexpr double MostSize = 1e5;    // mm
constexpr double LeastSize = 1.0;   // mm
constexpr double MostElbows = 1e4;
constexpr double MostHead = 1e4;        // m
constexpr double LeastPumpItem = 1e-6;  // m or kW, below which a pump is off

constexpr double UsualLength = 1.0;  // m
constexpr double UsualSize = 50.0;   // mm
constexpr double MetrePerMillimetre = 1e-3;

constexpr double CastIronWall = 0.25e-3;  // m
constexpr double CopperWall = 0.0015e-3;
constexpr double DuctWall = 0.09e-3;

constexpr double TankPressure = 150.0;      // kPa
constexpr double ReceiverPressure = 600.0;  // kPa, in refrigerant

/// The resistances of a circuit, which is one lump, only tell how flow is spread: evaporators as they take
/// heat, compressors as they have power, and all else far below them.
constexpr double SmallResistance = 1e-5;
constexpr double SourceResistance = 1e6;
constexpr double LeastShare = 1e-6;

double HeldBy(Role role, Fluid fluid) {
    if (role == Role::Tank) return TankPressure;
    return role == Role::Receiver && fluid == Fluid::Refrigerant ? ReceiverPressure : 0.0;
}

double SizeOf(double item) {
    return std::max(Positive(item, MostSize, UsualSize), LeastSize) * MetrePerMillimetre;
}

double PumpItem(double item, double most) {
    const double value = Positive(item, most, 0.0);
    return value < LeastPumpItem ? 0.0 : value;
}

std::vector<double> HeldPressures(const Layout& layout, const Net& net) {
    std::vector<double> held;
    for (const int mouth : net.mouths) {
        const Device& device = At(layout.devices, At(layout.mouths, mouth).device);
        held.push_back(HeldBy(device.type->role, net.fluid));
    }
    return held;
}

}  // namespace

double PumpWatts(const PlantInputs& inputs, const Device& pump) {
    const bool on = PumpItem(Get(inputs, pump, Item::Head), MostHead) > 0.0;
    return on ? PumpItem(Get(inputs, pump, Item::Power), MostPower) * WattPerKilo : 0.0;
}

Hydraulics::Hydraulics(const Layout& layout)
    : layout_(layout),
      nets_(layout.nets.size()),
      flows_(layout.aisles.size()),
      mouthFlows_(layout.mouths.size()),
      pressures_(layout.points.size()),
      volumes_(layout.aisles.size()),
      driven_(layout.aisles.size()),
      wetted_(layout.aisles.size(), 1.0) {
    for (const Net& net : layout.nets) fluids_.push_back(net.fluid);
    for (std::size_t number = 0; number < nets_.size(); ++number) {
        const Net& net = layout.nets[number];
        const std::vector<double> held = HeldPressures(layout, net);
        if (net.fluid == Fluid::Refrigerant) {
            // The lump has one pressure; its flows are found from another scale than pressure.
            for (const int point : net.points) At(pressures_, point) = held.empty() ? 0.0 : held[0];
            if (!net.circuit) continue;
            const std::vector<double> level(net.mouths.size(), 0.0);
            nets_[number].solver = std::make_unique<NetSolver>(layout, net, level);
            nets_[number].probe = std::make_unique<NetSolver>(layout, net, level);
        } else {
            nets_[number].solver = std::make_unique<NetSolver>(layout, net, held);
        }
        nets_[number].laws.resize(net.aisles.size());
    }
}

Law Hydraulics::LawOf(const PlantInputs& inputs, const Aisle& aisle, Fluid fluid) const {
    const Device& device = At(layout_.devices, aisle.device);
    const auto item = [&](Item name) { return Get(inputs, device, name); };
    const double length = Positive(item(Item::Length), MostLength, UsualLength);
    const double elbows = Positive(item(Item::Elbows), MostElbows, 0.0);
    switch (device.type->role) {
        case Role::CastIronPipe:
        case Role::CopperPipe: {
            const double diameter = SizeOf(item(Item::Diameter));
            const double wall = device.type->role == Role::CopperPipe ? CopperWall : CastIronWall;
            const double area = std::numbers::pi / 4.0 * diameter * diameter;
            return PipeLaw(fluid, length, diameter, area, wall, elbows, device.type->reducer);
        }
        case Role::Duct: {
            const double width = SizeOf(item(Item::Width));
            const double height = SizeOf(item(Item::Height));
            return PipeLaw(fluid, length, 2.0 * width * height / (width + height), width * height, DuctWall,
                           elbows, device.type->reducer);
        }
        case Role::Valve:
            return ValveLaw(fluid, Within(item(Item::Opening), 0.0, 1.0, 0.0));
        case Role::Pump:
            return PumpLaw(fluid, PumpItem(item(Item::Head), MostHead),
                           PumpItem(item(Item::Power), MostPower));
        default:
            break;
    }
    Law law = ElementLaw(fluid);
    // An expansion valve outside a circuit is no valve but for being shut.
    if (device.type->role == Role::ExpansionValve) law.closed = !(item(Item::Opening) > 0.0);
    return law;
}

void Hydraulics::TakeFlows(int net) {
    const Net& is = At(layout_.nets, net);
    const NetSolver& solver = *At(nets_, net).solver;
    std::size_t row = 0;
    for (const int aisle : is.aisles) At(flows_, aisle) = solver.Flows()[row++];
    const std::vector<double> mouths = solver.MouthFlows();
    row = 0;
    for (const int mouth : is.mouths) At(mouthFlows_, mouth) = mouths[row++];
    if (is.fluid == Fluid::Refrigerant) return;
    row = 0;
    for (const int point : is.points) At(pressures_, point) = solver.Pressures()[row++];
}

/// A tank with `Glycol` makes its net of water one of brine.
void Hydraulics::FindFluids(const PlantInputs& inputs) {
    for (std::size_t net = 0; net < fluids_.size(); ++net) fluids_[net] = layout_.nets[net].fluid;
    for (const Mouth& mouth : layout_.mouths) {
        Fluid& fluid = At(fluids_, At(layout_.points, mouth.point).net);
        const bool glycol = Get(inputs, At(layout_.devices, mouth.device), Item::Glycol) > 0.0;
        if (glycol && fluid == Fluid::Water) fluid = Fluid::Brine;
    }
}

/// Makes the laws anew of those devices whose items are others than before. True when a law changed.
bool Hydraulics::UpdateLaws(const PlantInputs& inputs, int net) {
    NetState& state = At(nets_, net);
    const bool first = lastItems_.size() != inputs.items.size() || state.fluid != At(fluids_, net);
    state.fluid = At(fluids_, net);
    bool changed = first;
    std::size_t row = 0;
    for (const int number : At(layout_.nets, net).aisles) {
        Law& law = state.laws[row++];
        const Aisle& aisle = At(layout_.aisles, number);
        const Device& device = At(layout_.devices, aisle.device);
        const auto items = inputs.items.begin() + device.firstValue;
        const auto count = static_cast<std::ptrdiff_t>(device.type->items.size());
        if (!first && std::equal(items, items + count, lastItems_.begin() + device.firstValue)) continue;
        const Law found = LawOf(inputs, aisle, state.fluid);
        changed = changed || !(found == law);
        law = found;
        At(volumes_, number) = law.volume;
    }
    return changed;
}

void Hydraulics::Solve(const PlantInputs& inputs) {
    unsolved_ = 0;
    FindFluids(inputs);
    for (int number = 0; number < static_cast<int>(nets_.size()); ++number) {
        const Net& net = At(layout_.nets, number);
        NetState& state = At(nets_, number);
        if (net.circuit) Probe(inputs, number);
        if (net.fluid == Fluid::Refrigerant) continue;
        const bool changed = UpdateLaws(inputs, number);
        if (state.solved && !changed) continue;
        state.solved = state.solver->Solve(state.laws);
        if (state.solved) {
            TakeFlows(number);
            continue;
        }
        ++unsolved_;
        if (state.reported) continue;
        state.reported = true;
        const int module = At(layout_.devices, At(layout_.aisles, net.aisles.front()).device).number;
        faults_.push_back("the net of MOD" + std::to_string(module) +
                          " has no solution that 50 steps lead to; it keeps its last values");
    }
    lastItems_ = inputs.items;
}

/// Sends a flow of about 1 through a circuit, to see where it goes.
void Hydraulics::Probe(const PlantInputs& inputs, int net) {
    const Net& is = At(layout_.nets, net);
    NetState& state = At(nets_, net);
    std::size_t row = 0;
    for (const int number : is.aisles) {
        const Device& device = At(layout_.devices, At(layout_.aisles, number).device);
        Law law{.linear = 1.0};
        if (device.type->role == Role::Compressor) {
            law = {.closed = CompressorWatts(inputs, device) <= 0.0,
                   .lift = SourceResistance,
                   .linear = SourceResistance};
        }
        if (device.type->role == Role::Valve || device.type->role == Role::ExpansionValve) {
            law.closed = ValveLaw(is.fluid, Within(Get(inputs, device, Item::Opening), 0.0, 1.0, 0.0)).closed;
        }
        state.laws[row++] = law;
    }
    if (!state.probe->Solve(state.laws)) return;
    row = 0;
    for (const int aisle : is.aisles) {
        At(driven_, aisle) = std::abs(state.probe->Flows()[row++]) > LeastShare ? 1 : 0;
    }
    FindWetted(inputs, net);
}

/// An evaporator is wetted as far as the expansion valves before it are open: goes from the valves along the
/// flow that the probe found. A point has the mean of what comes to it.
void Hydraulics::FindWetted(const PlantInputs& inputs, int net) {
    const Net& is = At(layout_.nets, net);
    const std::vector<double>& probed = At(nets_, net).probe->Flows();
    std::vector<double> points(layout_.points.size(), 1.0);
    // As many rounds as a chain can be long; few are needed.
    for (std::size_t round = 0; round < is.aisles.size(); ++round) {
        std::vector<double> comes(points.size());
        std::vector<double> carries(points.size());
        for (std::size_t row = 0; row < is.aisles.size(); ++row) {
            const Aisle& aisle = At(layout_.aisles, is.aisles[row]);
            if (!Driven(is.aisles[row])) continue;
            const double flow = std::abs(probed[row]);
            const int from = probed[row] < 0.0 ? aisle.outlet : aisle.inlet;
            const int to = probed[row] < 0.0 ? aisle.inlet : aisle.outlet;
            const Device& device = At(layout_.devices, aisle.device);
            const Role role = device.type->role;
            double open = role == Role::Compressor ? 1.0 : At(points, from);
            if (role == Role::ExpansionValve)
                open = Within(Get(inputs, device, Item::Opening), 0.0, 1.0, 0.0);
            At(wetted_, is.aisles[row]) = open;
            At(comes, to) += flow;
            At(carries, to) += flow * open;
        }
        bool changed = false;
        for (const int point : is.points) {
            const double open = At(comes, point) > 0.0 ? At(carries, point) / At(comes, point) : 1.0;
            changed = changed || std::abs(open - At(points, point)) > 1e-12;
            At(points, point) = open;
        }
        if (!changed) return;
    }
}

void Hydraulics::Circulate(int net, double flow, const std::vector<double>& taken) {
    const Net& is = At(layout_.nets, net);
    NetState& state = At(nets_, net);
    int compressors = 0;
    for (const int aisle : is.aisles) {
        const Device& device = At(layout_.devices, At(layout_.aisles, aisle).device);
        if (device.type->role == Role::Compressor && Driven(aisle)) ++compressors;
    }
    double heat = 0.0;
    for (const int aisle : is.aisles) heat += At(taken, aisle);
    std::size_t row = 0;
    for (const int aisle : is.aisles) {
        Law& law = state.laws[row++];
        if (!Driven(aisle)) law.closed = true;
        const Device& device = At(layout_.devices, At(layout_.aisles, aisle).device);
        if (device.type->role == Role::Compressor) {
            law.lift = SourceResistance * flow / std::max(compressors, 1);
        } else if (device.type->role == Role::Evaporator || device.type->role == Role::AirCooler) {
            const double share = heat > 0.0 ? At(taken, aisle) / heat : 0.0;
            law.linear = 1.0 / std::max(share, LeastShare);
        } else {
            law.linear = SmallResistance;
        }
    }
    if (state.solver->Solve(state.laws)) TakeFlows(net);
}

double Hydraulics::PumpPower(const PlantInputs& inputs) const {
    double watts = 0.0;
    for (const Aisle& aisle : layout_.aisles) {
        const Device& device = At(layout_.devices, aisle.device);
        if (device.type->role != Role::Pump || At(layout_.nets, aisle.net).fluid == Fluid::Refrigerant)
            continue;
        watts += PumpWatts(inputs, device);
    }
    return watts;
}

std::vector<std::string> Hydraulics::TakeFaults() {
    return std::exchange(faults_, {});
}

}  // namespace standin
