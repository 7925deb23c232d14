#include "standin/plant/heat_balance.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace standin {

namespace {

constexpr double ColdestStart = -200.0;  // degrees Celsius that a client's value counts for at most
constexpr double HottestStart = 2000.0;
constexpr double MostArea = 1e6;    // m2
constexpr double MostVolume = 1e9;  // m3

constexpr double PlateTransfer = 500.0;        // W/(m2 K)
constexpr double RefrigerantTransfer = 300.0;  // W/(m2 K)
/// The difference to its room at which an air cooler in a circuit takes its power: standard condition 1 of EN
/// 328.
constexpr double CoolerDifference = 10.0;  // K

constexpr double RoomCapacity = 500e3;   // J/K
constexpr double DeviceCapacity = 50e3;  // J/K, of each device in a room
constexpr double RoomLeak = 100.0;       // W/K
constexpr double StoreLeak = 30.0;

/// A pump gives its stream its power as heat, at most what warms it by so much, and less where it comes near
/// the temperature at which water boils in a pump's casing: there it gives none.
constexpr double MostPumpRise = 80.0;   // K
constexpr double PumpLimit = 110.0;     // degrees Celsius
constexpr double PumpLimitBand = 10.0;  // K below the limit in which the heat falls to none

constexpr double NoLimit = std::numeric_limits<double>::infinity();

double Temperature(double value) {
    return Within(value, ColdestStart, HottestStart, StartTemperature);
}

}  // namespace

HeatBalance::HeatBalance(const Layout& layout)
    : layout_(layout),
      roomPlaces_(layout.devices.size(), -1),
      circuitPlaces_(layout.nets.size(), -1),
      deviceCounts_(layout.devices.size()),
      lowSide_(layout.points.size()),
      circuits_(layout.nets.size()) {
    placeCount_ = FirstContent() + static_cast<int>(layout.contents.size());
    ambient_ = placeCount_++;
    pumpLimit_ = placeCount_++;
    for (std::size_t device = 0; device < layout.devices.size(); ++device) {
        const Device& each = layout.devices[device];
        if (each.room >= 0) ++At(deviceCounts_, each.room);
        if (!IsRoom(each.type->role)) continue;
        roomPlaces_[device] = placeCount_;
        placeCount_ += 2;
    }
    for (std::size_t net = 0; net < layout.nets.size(); ++net) {
        if (!layout.nets[net].circuit) continue;
        circuitPlaces_[net] = placeCount_;
        placeCount_ += 2;
    }
    temperatures_.assign(static_cast<std::size_t>(placeCount_), StartTemperature);
    FindLowSides();
}

/// From the compressors' inlets against the flow as far as the expansion valves.
void HeatBalance::FindLowSides() {
    Joined joined(static_cast<int>(layout_.points.size()));
    const auto role = [&](const Aisle& aisle) { return At(layout_.devices, aisle.device).type->role; };
    for (const Aisle& aisle : layout_.aisles) {
        const bool divides = role(aisle) == Role::Compressor || role(aisle) == Role::ExpansionValve;
        if (!divides && At(layout_.nets, aisle.net).circuit) joined.Join(aisle.inlet, aisle.outlet);
    }
    std::vector<char> low(layout_.points.size());
    for (const Aisle& aisle : layout_.aisles) {
        if (role(aisle) == Role::Compressor) At(low, joined.Of(aisle.inlet)) = 1;
    }
    for (std::size_t point = 0; point < lowSide_.size(); ++point) {
        lowSide_[point] = At(low, joined.Of(static_cast<int>(point)));
    }
}

HeatBalance::Ends HeatBalance::EndsOf(int aisle, const Hydraulics& hydraulics) const {
    const Aisle& is = At(layout_.aisles, aisle);
    const double flow = At(hydraulics.Flows(), aisle);
    const double rate = std::abs(flow) < LeastFlow
                            ? 0.0
                            : std::abs(flow) * PropertiesOf(hydraulics.FluidOf(is.net)).heatCapacity;
    return flow < 0.0 ? Ends{is.outlet, is.inlet, rate} : Ends{is.inlet, is.outlet, rate};
}

/// What is in a pipe keeps its heat, half of it at each end.
void HeatBalance::AddStreams(const Hydraulics& hydraulics) {
    for (int number = 0; number < static_cast<int>(layout_.aisles.size()); ++number) {
        if (At(layout_.nets, At(layout_.aisles, number).net).fluid == Fluid::Refrigerant) continue;
        const Aisle& aisle = At(layout_.aisles, number);
        const FluidProperties is = PropertiesOf(hydraulics.FluidOf(aisle.net));
        const double half = 0.5 * hydraulics.Volume(number) * is.density * is.heatCapacity;
        At(task_.places, aisle.inlet).capacity += half;
        At(task_.places, aisle.outlet).capacity += half;
        const Ends ends = EndsOf(number, hydraulics);
        if (ends.rate > 0.0 && ends.upstream != ends.downstream) {
            task_.streams.push_back({ends.upstream, ends.downstream, ends.rate});
        }
    }
}

/// Tanks and receivers are mixed volumes; one without a volume stores nothing. A tower gives off heat as the
/// water comes in.
void HeatBalance::AddContents(const PlantInputs& inputs, const Hydraulics& hydraulics) {
    for (std::size_t number = 0; number < layout_.contents.size(); ++number) {
        const Content& content = layout_.contents[number];
        double volume = 0.0;
        double warmth = 0.0;
        double mean = 0.0;
        for (const int device : content.devices) {
            const double temperature = Temperature(At(inputs.vessels, device));
            const double part =
                Positive(Get(inputs, At(layout_.devices, device), Item::Volume), MostVolume, 0.0);
            volume += part;
            warmth += part * temperature;
            mean += temperature / static_cast<double>(content.devices.size());
        }
        const FluidProperties is = PropertiesOf(hydraulics.FluidOf(content.net));
        Place& place = At(task_.places, FirstContent() + static_cast<int>(number));
        place.start = volume > 0.0 ? warmth / volume : mean;
        place.capacity = volume * is.density * is.heatCapacity;
    }
    std::vector<double> inflow(layout_.devices.size());
    for (std::size_t mouth = 0; mouth < layout_.mouths.size(); ++mouth) {
        At(inflow, layout_.mouths[mouth].device) += std::max(hydraulics.MouthFlows()[mouth], 0.0);
    }
    for (std::size_t number = 0; number < layout_.mouths.size(); ++number) {
        const Mouth& mouth = layout_.mouths[number];
        const int net = At(layout_.points, mouth.point).net;
        const double flow = hydraulics.MouthFlows()[number];
        if (std::abs(flow) < LeastFlow || At(layout_.nets, net).fluid == Fluid::Refrigerant) continue;
        const int content = FirstContent() + mouth.content;
        const double rate = std::abs(flow) * PropertiesOf(hydraulics.FluidOf(net)).heatCapacity;
        if (flow > 0.0) {
            task_.streams.push_back({mouth.point, content, rate});
        } else {
            task_.streams.push_back({content, mouth.point, rate});
        }
        const Device& device = At(layout_.devices, mouth.device);
        if (flow < 0.0 || device.type->role != Role::Tower) continue;
        const double part = flow / At(inflow, mouth.device);
        const double transfer = TransferAt(TowerRating, Watts(inputs, device)) * part;
        Add({mouth.point, content, ambient_, ambient_, ToConstant(transfer, rate), 0.0, NoLimit});
    }
}

void HeatBalance::AddRooms(const PlantInputs& inputs) {
    for (std::size_t number = 0; number < layout_.devices.size(); ++number) {
        const Device& device = layout_.devices[number];
        const int inside = roomPlaces_[number];
        if (inside < 0) continue;
        const bool store = device.type->role == Role::ColdStore;
        const double outside = store ? StoreOutside : Temperature(Get(inputs, device, Item::Outside));
        At(task_.places, inside) = {
            .start = Temperature(Get(inputs, device, store ? Item::Store : Item::Inside)),
            .capacity = RoomCapacity + DeviceCapacity * deviceCounts_[number]};
        At(task_.places, inside + 1) = {.start = outside, .pinned = true};
        const double leak = store ? StoreLeak : RoomLeak;
        Add({inside, inside, inside + 1, inside + 1, leak, -NoLimit, NoLimit});
    }
}

int HeatBalance::Add(const Exchange& exchange) {
    task_.exchanges.push_back(exchange);
    evaporatorAisles_.push_back(-1);
    return static_cast<int>(task_.exchanges.size()) - 1;
}

/// What a device of a circuit takes from or gives to: its other aisle, else the room in which it stands,
/// else, for a condenser, the air outside.
void HeatBalance::AddCoupled(const PlantInputs& inputs, const Hydraulics& hydraulics, int number) {
    const Device& device = At(layout_.devices, number);
    int own = -1;
    int other = -1;
    for (const AisleType& type : device.type->aisles) {
        const int aisle = device.aisles[static_cast<std::size_t>(type.inlet)];
        if (aisle >= 0) (IsCircuit(aisle) && own < 0 ? own : other) = aisle;
    }
    if (own < 0 || !hydraulics.Driven(own)) return;
    const int net = At(layout_.aisles, own).net;
    const int circuit = CircuitPlace(net);
    const bool condenser = device.type->role == Role::Condenser;
    const double area = Positive(Get(inputs, device, Item::Area), MostArea, 0.0);
    const double transfer = RefrigerantTransfer * area * (condenser ? 1.0 : hydraulics.Wetted(own));
    const int room = device.room < 0 ? -1 : RoomPlace(device.room);
    Exchange exchange{.conductance = transfer, .least = 0.0, .most = NoLimit};
    int sense = room >= 0 ? room : condenser ? ambient_ : -1;
    int feel = sense;
    if (device.type->role == Role::AirCooler) {
        exchange.conductance = Watts(inputs, device) / CoolerDifference * hydraulics.Wetted(own);
        sense = feel = room;
    } else if (other >= 0) {
        if (At(layout_.nets, At(layout_.aisles, other).net).fluid == Fluid::Refrigerant) return;
        const Ends ends = EndsOf(other, hydraulics);
        exchange.conductance = ToConstant(transfer, ends.rate);
        sense = ends.upstream;
        feel = ends.downstream;
    }
    if (sense < 0 || exchange.conductance <= 0.0) return;
    if (condenser) {
        exchange.senseFrom = exchange.feelFrom = circuit + 1;
        exchange.senseTo = sense;
        exchange.feelTo = feel;
    } else {
        exchange.senseFrom = sense;
        exchange.feelFrom = feel;
        exchange.senseTo = exchange.feelTo = circuit;
    }
    const int added = Add(exchange);
    At(condenser ? condensers_ : evaporators_, net).push_back(added);
    if (!condenser) At(evaporatorAisles_, added) = own;
    if (other >= 0 && device.type->role != Role::AirCooler) {
        At(exchangeOf_, other) = added;
        At(gives_, other) = condenser ? 0 : 1;
    }
}

/// A radiator, a fan coil or a cooler of water, in its room.
void HeatBalance::AddEmitter(const PlantInputs& inputs, const Hydraulics& hydraulics, int number) {
    const Device& device = At(layout_.devices, number);
    const int aisle = device.aisles[0];
    const int room = device.room < 0 ? -1 : RoomPlace(device.room);
    if (room < 0) return;
    const Ends ends = EndsOf(aisle, hydraulics);
    const double watts = Watts(inputs, device);
    if (ends.rate <= 0.0 || watts <= 0.0) return;
    Exchange exchange{.senseFrom = ends.upstream,
                      .feelFrom = ends.downstream,
                      .senseTo = room,
                      .feelTo = room,
                      .least = -NoLimit,
                      .most = NoLimit};
    if (device.type->role == Role::Radiator) {
        exchange.conductance = ends.rate;
        exchange.emission = EmissionAt(RadiatorRating, watts);
    } else {
        const Rating& rating = device.type->role == Role::FanCoil ? FanCoilRating : AirCoolerRating;
        exchange.conductance = ToConstant(TransferAt(rating, watts), ends.rate);
    }
    At(exchangeOf_, aisle) = Add(exchange);
    At(gives_, aisle) = 1;
}

void HeatBalance::AddExchanger(const PlantInputs& inputs, const Hydraulics& hydraulics, int number) {
    const Device& device = At(layout_.devices, number);
    const int first = device.aisles[0];
    const int second = device.aisles[2];
    if (second < 0 || At(layout_.nets, At(layout_.aisles, second).net).fluid == Fluid::Refrigerant) return;
    const Ends one = EndsOf(first, hydraulics);
    const Ends two = EndsOf(second, hydraulics);
    const double area = Positive(Get(inputs, device, Item::Area), MostArea, 0.0);
    const double conductance = CounterFlow(PlateTransfer * area, one.rate, two.rate);
    At(exchangeOf_, first) = At(exchangeOf_, second) =
        Add({one.upstream, one.downstream, two.upstream, two.downstream, conductance, -NoLimit, NoLimit});
    At(gives_, first) = 1;
}

void HeatBalance::AddPump(const PlantInputs& inputs, const Hydraulics& hydraulics, int number) {
    const Device& device = At(layout_.devices, number);
    const Ends ends = EndsOf(device.aisles[0], hydraulics);
    const double heat = std::min(PumpWatts(inputs, device), MostPumpRise * ends.rate);
    if (heat <= 0.0) return;
    At(exchangeOf_, device.aisles[0]) =
        Add({pumpLimit_, pumpLimit_, ends.downstream, ends.downstream, heat / PumpLimitBand, 0.0, heat});
}

void HeatBalance::AddDevice(const PlantInputs& inputs, const Hydraulics& hydraulics, int number) {
    const Device& device = At(layout_.devices, number);
    const Role role = device.type->role;
    const int aisle = device.aisles[0];
    const bool streams =
        aisle >= 0 && At(layout_.nets, At(layout_.aisles, aisle).net).fluid != Fluid::Refrigerant;
    const bool cooler = role == Role::AirCooler;
    if (role == Role::Condenser || role == Role::Evaporator || (cooler && !streams)) {
        AddCoupled(inputs, hydraulics, number);
    } else if (streams && (role == Role::Radiator || role == Role::FanCoil || cooler)) {
        AddEmitter(inputs, hydraulics, number);
    } else if (streams && role == Role::Exchanger) {
        AddExchanger(inputs, hydraulics, number);
    } else if (streams && role == Role::Pump) {
        AddPump(inputs, hydraulics, number);
    }
}

void HeatBalance::AddCircuits(const PlantInputs& inputs, const Hydraulics& hydraulics) {
    for (int net = 0; net < static_cast<int>(layout_.nets.size()); ++net) {
        const int place = CircuitPlace(net);
        if (place < 0) continue;
        double power = 0.0;
        for (const int aisle : At(layout_.nets, net).aisles) {
            const Device& device = At(layout_.devices, At(layout_.aisles, aisle).device);
            if (device.type->role != Role::Compressor || !hydraulics.Driven(aisle)) continue;
            power += CompressorWatts(inputs, device);
        }
        const bool runs = power > 0.0 && !At(evaporators_, net).empty() && !At(condensers_, net).empty();
        if (runs) {
            task_.circuits.push_back({place, place + 1, power, At(evaporators_, net), At(condensers_, net)});
            continue;
        }
        // A circuit at rest has the temperature of what it could take heat from.
        double mean = 0.0;
        for (const int exchange : At(evaporators_, net)) {
            mean += At(temperatures_, At(task_.exchanges, exchange).senseFrom);
        }
        const std::size_t sources = At(evaporators_, net).size();
        mean = sources == 0 ? StartTemperature : mean / static_cast<double>(sources);
        At(temperatures_, place) = At(temperatures_, place + 1) = mean;
        At(task_.places, place) = At(task_.places, place + 1) = {.start = mean, .pinned = true};
        for (const auto* list : {&At(evaporators_, net), &At(condensers_, net)}) {
            for (const int exchange : *list) At(task_.exchanges, exchange).conductance = 0.0;
        }
    }
}

void HeatBalance::TakeResults() {
    taken_.assign(layout_.aisles.size(), 0.0);
    circuits_.assign(circuits_.size(), {});
    for (int net = 0; net < static_cast<int>(layout_.nets.size()); ++net) {
        const int place = CircuitPlace(net);
        if (place < 0) continue;
        CircuitState& state = At(circuits_, net);
        state.evaporating = At(temperatures_, place);
        state.condensing = At(temperatures_, place + 1);
        state.taken = HeatSum(At(evaporators_, net), task_.exchanges, temperatures_);
        state.power = HeatSum(At(condensers_, net), task_.exchanges, temperatures_) - state.taken;
        state.runs = !At(task_.places, place).pinned;
        state.flow = state.taken / EvaporationHeat(state.evaporating, state.condensing);
        for (const int exchange : At(evaporators_, net)) {
            At(taken_, At(evaporatorAisles_, exchange)) +=
                HeatOf(At(task_.exchanges, exchange), temperatures_).watts;
        }
    }
}

bool HeatBalance::Step(const PlantInputs& inputs, const Hydraulics& hydraulics, double seconds) {
    task_ = {.seconds = seconds};
    task_.places.resize(static_cast<std::size_t>(placeCount_));
    for (std::size_t place = 0; place < task_.places.size(); ++place) {
        task_.places[place].start = temperatures_[place];
    }
    evaporatorAisles_.clear();
    exchangeOf_.assign(layout_.aisles.size(), -1);
    gives_.assign(layout_.aisles.size(), 0);
    evaporators_.assign(layout_.nets.size(), {});
    condensers_.assign(layout_.nets.size(), {});
    At(task_.places, ambient_) = {.start = Temperature(inputs.outside), .pinned = true};
    At(task_.places, pumpLimit_) = {.start = PumpLimit, .pinned = true};
    AddStreams(hydraulics);
    AddContents(inputs, hydraulics);
    AddRooms(inputs);
    for (int device = 0; device < static_cast<int>(layout_.devices.size()); ++device) {
        AddDevice(inputs, hydraulics, device);
    }
    for (std::size_t place = 0; place < task_.places.size(); ++place) {
        temperatures_[place] = task_.places[place].start;
    }
    AddCircuits(inputs, hydraulics);
    const bool solved = solver_.Solve(task_, temperatures_);
    TakeResults();
    return solved;
}

double HeatBalance::LeavingTemperature(int aisle, const Hydraulics& hydraulics) const {
    const Ends ends = EndsOf(aisle, hydraulics);
    const double coming = PointTemperature(ends.upstream);
    const int number = At(exchangeOf_, aisle);
    if (number < 0 || ends.rate <= 0.0) return coming;
    const double heat = HeatOf(At(task_.exchanges, number), temperatures_).watts;
    return coming - (At(gives_, aisle) != 0 ? heat : -heat) / ends.rate;
}

}  // namespace standin
