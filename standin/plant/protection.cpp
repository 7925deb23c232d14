#include "standin/plant/protection.h"

#include <algorithm>
#include <cmath>

namespace standin {

namespace {

constexpr double MostCondensing = 65.0;  // degrees Celsius
constexpr double LeastEvaporating = -45.0;
constexpr double LeastWater = 0.5;
constexpr double LeastBrine = -13.0;     // ethylene glycol of 30 % freezes at about -15
constexpr double LeastPressure = -80.0;  // kPa

/// True where the second side of a condenser or evaporator of a circuit is linked and does not flow.
bool SecondSideRests(const PlantState& state, const Device& device, int circuitNet) {
    bool driven = false;
    bool rests = false;
    for (const AisleType& type : device.type->aisles) {
        const int aisle = device.aisles[static_cast<std::size_t>(type.inlet)];
        if (aisle < 0) continue;
        const Net& net = At(state.layout.nets, At(state.layout.aisles, aisle).net);
        if (At(state.layout.aisles, aisle).net == circuitNet) {
            driven = driven || state.hydraulics.Driven(aisle);
        } else if (net.fluid != Fluid::Refrigerant) {
            rests = std::abs(At(state.hydraulics.Flows(), aisle)) < LeastFlow;
        }
    }
    return driven && rests;
}

/// What stops a compressor that is on, by the state that a step ended in.
Trip CauseOf(const PlantState& state, int compressorAisle) {
    const int net = At(state.layout.aisles, compressorAisle).net;
    const HeatBalance::CircuitState& circuit = state.balance.CircuitAt(net);
    for (const int aisle : At(state.layout.nets, net).aisles) {
        const Device& device = At(state.layout.devices, At(state.layout.aisles, aisle).device);
        const bool condenser = device.type->role == Role::Condenser;
        if (!condenser && device.type->role != Role::Evaporator) continue;
        if (SecondSideRests(state, device, net))
            return condenser ? Trip::CondenserFlow : Trip::EvaporatorFlow;
    }
    if (!circuit.runs || !state.hydraulics.Driven(compressorAisle)) return Trip::NothingCirculates;
    if (circuit.condensing > MostCondensing) return Trip::HighCondensing;
    return circuit.evaporating < LeastEvaporating ? Trip::LowEvaporating : Trip::None;
}

/// The `Trip` of a compressor: one that is there stays.
double TripBehind(const PlantState& state, const PlantInputs& inputs, const Device& device) {
    const double trip = TripOf(inputs, device);
    const int aisle = device.aisles[0];
    if (trip > 0.0) return trip;
    if (Watts(inputs, device) <= 0.0 || aisle < 0 ||
        !At(state.layout.nets, At(state.layout.aisles, aisle).net).circuit)
        return 0.0;
    return static_cast<double>(CauseOf(state, aisle));
}

bool Freezes(const PlantState& state, const Device& device, const std::array<PortState, PlantPorts>& ports) {
    for (std::size_t port = 0; port < device.points.size(); ++port) {
        if (device.points[port] == NoPoint) continue;
        const Fluid fluid = state.hydraulics.FluidOf(At(state.layout.points, device.points[port]).net);
        const bool water = fluid == Fluid::Water || fluid == Fluid::Brine;
        const double least = fluid == Fluid::Brine ? LeastBrine : LeastWater;
        if (water && ports[port].temperature < least) return true;
    }
    return false;
}

bool MovesNothing(const PlantState& state, const PlantInputs& inputs, const Device& device) {
    const int aisle = device.aisles[0];
    if (device.type->role != Role::Pump || aisle < 0) return false;
    return PumpWatts(inputs, device) > 0.0 && std::abs(At(state.hydraulics.Flows(), aisle)) < LeastFlow;
}

Alarm RoomAlarm(const PlantState& state, const PlantInputs& inputs, int number) {
    const Device& device = At(state.layout.devices, number);
    const double low = Get(inputs, device, Item::TempLow);
    const double high = Get(inputs, device, Item::TempHigh);
    const double temperature = state.balance.RoomTemperature(number);
    if (!(high > low)) return Alarm::None;
    return temperature < low ? Alarm::TooCold : temperature > high ? Alarm::TooWarm : Alarm::None;
}

Alarm AlarmOf(const PlantState& state, const PlantInputs& inputs, const PlantOutputs& outputs, int number) {
    const Device& device = At(state.layout.devices, number);
    const auto& ports = At(outputs.ports, number);
    if (IsRoom(device.type->role)) return RoomAlarm(state, inputs, number);
    if (Freezes(state, device, ports)) return Alarm::Freezing;
    const auto draws = [](const PortState& port) { return port.pressure < LeastPressure; };
    if (std::any_of(ports.begin(), ports.end(), draws)) return Alarm::Suction;
    return MovesNothing(state, inputs, device) ? Alarm::NoFlow : Alarm::None;
}

}  // namespace

void ReportProtection(const PlantState& state, const PlantInputs& inputs, PlantOutputs& outputs) {
    for (int number = 0; number < static_cast<int>(state.layout.devices.size()); ++number) {
        const Device& device = At(state.layout.devices, number);
        const int row = device.type->Row(Item::Alarm);
        if (row < 0) continue;
        Alarm alarm = AlarmOf(state, inputs, outputs, number);
        if (device.type->role == Role::Compressor) {
            const double trip = TripBehind(state, inputs, device);
            outputs.items.push_back({number, device.type->Row(Item::Trip), trip});
            if (trip != 0.0) alarm = Alarm::Tripped;
        }
        outputs.items.push_back({number, row, static_cast<double>(alarm)});
        outputs.alarms += alarm != Alarm::None ? 1 : 0;
    }
}

}  // namespace standin
