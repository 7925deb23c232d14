#include "standin/catalogue.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "engine/vorn_type_ids.h"

namespace standin {

namespace {

using std::string_view;

constexpr PortType ThroughIn{.outlet = false, .through = true, .aisle = 0};
constexpr PortType ThroughOut{.outlet = true, .through = true, .aisle = 0};
constexpr PortType SecondIn{.outlet = false, .through = true, .aisle = 1};
constexpr PortType SecondOut{.outlet = true, .through = true, .aisle = 1};
constexpr PortType EndIn{.outlet = false};
constexpr PortType EndOut{.outlet = true};

constexpr std::array InlinePorts{ThroughIn, ThroughOut};
constexpr std::array DrivenPorts{ThroughIn, ThroughOut, EndIn};  // port 2 takes the power
constexpr std::array ExchangerPorts{ThroughIn, ThroughOut, SecondIn, SecondOut};
constexpr std::array VesselPorts{EndIn, EndOut};
constexpr std::array SourcePorts{EndOut};

constexpr std::array OneAisle{AisleType{0, 1}};
constexpr std::array TwoAisles{AisleType{0, 1}, AisleType{2, 3}};

// A row's number is part of the interface: a new item comes behind those that are there.
constexpr std::array<string_view, 3> PipeItems{"PL", "ElbowNb", "D"};
constexpr std::array<string_view, 4> DuctItems{"PL", "ElbowNb", "W", "H"};
constexpr std::array<string_view, 1> WireItems{"PL"};
constexpr std::array<string_view, 9> RoomItems{"InsideTemperature", "OutsideTemperature", "InsideHumidity",
                                               "OutsideHumidity",   "InsidePm25",         "OutsidePm25",
                                               "TempLow",           "TempHigh",           "Alarm"};
constexpr std::array<string_view, 2> EmitterItems{"Power", "Alarm"};
constexpr std::array<string_view, 3> AirCoolerItems{"Power", "BKT_TEMP", "Alarm"};
constexpr std::array<string_view, 3> PumpItems{"Head", "Power", "Alarm"};
constexpr std::array<string_view, 1> OpeningItems{"Opening"};
constexpr std::array<string_view, 2> AreaItems{"Area", "Alarm"};
constexpr std::array<string_view, 3> TankItems{"Volume", "Glycol", "Alarm"};
constexpr std::array<string_view, 2> TowerItems{"Power", "Alarm"};
constexpr std::array<string_view, 3> CompressorItems{"Power", "Trip", "Alarm"};
constexpr std::array<string_view, 3> EvaporatorItems{"Area", "BKT_TEMP", "Alarm"};
constexpr std::array<string_view, 1> VolumeItems{"Volume"};
constexpr std::array<string_view, 1> VoltageItems{"Voltage"};
constexpr std::array<string_view, 4> StoreItems{"BKT_TEMP", "TempLow", "TempHigh", "Alarm"};

constexpr std::array<string_view, 3> JunctionItems{"Pressure", "Temperature", "Flow"};

constexpr ModuleType Types[] = {
    {{Role::CastIronPipe, InlinePorts, OneAisle, PipeItems}, PipeOneID, "铸铁管道"},
    {{Role::None, InlinePorts, OneAisle, WireItems}, WireOneID, "导线"},
    {{Role::Duct, InlinePorts, OneAisle, DuctItems}, DuctOneID, "矩形风管"},
    {{Role::CopperPipe, InlinePorts, OneAisle, PipeItems}, CopperOneID, "铜管"},
    {{Role::CastIronPipe, InlinePorts, OneAisle, PipeItems, true}, CastIronReducerOneID, "铸铁异径管"},
    {{Role::Duct, InlinePorts, OneAisle, DuctItems, true}, DuctReducerOneID, "风管异径管"},
    {{Role::CopperPipe, InlinePorts, OneAisle, PipeItems, true}, CopperReducerOneID, "铜异径管"},
    {{Role::Room, {}, {}, RoomItems}, RoomOneID, "房间"},
    {{Role::FanCoil, InlinePorts, OneAisle, EmitterItems}, FanCoilOneID, "风机盘管"},
    {{Role::AirCooler, InlinePorts, OneAisle, AirCoolerItems}, AirCoolerOneID, "冷风机"},
    {{Role::Radiator, InlinePorts, OneAisle, EmitterItems}, RadiatorOneID, "散热器"},
    {{Role::Pump, DrivenPorts, OneAisle, PumpItems}, PumpOneID, "水泵"},
    {{Role::Valve, InlinePorts, OneAisle, OpeningItems}, ValveOneID, "阀门"},
    {{Role::Exchanger, ExchangerPorts, TwoAisles, AreaItems}, ExchangerOneID, "板式换热器"},
    {{Role::Tank, VesselPorts, {}, TankItems}, TankOneID, "膨胀水箱"},
    {{Role::Tower, VesselPorts, {}, TowerItems}, CoolingTowerOneID, "冷却塔"},
    {{Role::Compressor, DrivenPorts, OneAisle, CompressorItems}, CompressorOneID, "压缩机"},
    {{Role::Condenser, ExchangerPorts, TwoAisles, AreaItems}, CondenserOneID, "冷凝器"},
    {{Role::Evaporator, ExchangerPorts, TwoAisles, EvaporatorItems}, EvaporatorOneID, "蒸发器"},
    {{Role::ExpansionValve, InlinePorts, OneAisle, OpeningItems}, ExpansionValveOneID, "膨胀阀"},
    {{Role::Receiver, VesselPorts, {}, VolumeItems}, ReceiverOneID, "储液器"},
    {{Role::None, SourcePorts, {}, VoltageItems}, PowerSourceOneID, "电源"},
    {{Role::ColdStore, {}, {}, StoreItems}, ColdStoreOneID, "冷库"},
};

}  // namespace

std::span<const ModuleType> Catalogue() {
    return Types;
}

const ModuleType* ModuleTypeFind(int type) {
    return type >= 0 && type < static_cast<int>(std::size(Types)) ? &Types[type] : nullptr;
}

int ModuleTypeNumber(std::int64_t oneId) {
    const auto* found = std::find_if(std::begin(Types), std::end(Types),
                                     [oneId](const ModuleType& type) { return type.oneId == oneId; });
    return found == std::end(Types) ? -1 : static_cast<int>(found - std::begin(Types));
}

std::span<const std::string_view> NodeItems() {
    return JunctionItems;
}

int ItemRow(std::span<const std::string_view> items, std::string_view item) {
    const auto found = std::find(items.begin(), items.end(), item);
    return found == items.end() ? -1 : static_cast<int>(found - items.begin());
}

}  // namespace standin
