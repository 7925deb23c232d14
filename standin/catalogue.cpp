#include "standin/catalogue.h"

#include <algorithm>
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

constexpr std::array<string_view, 3> PipeItems{"PL", "ElbowNb", "D"};
constexpr std::array<string_view, 4> DuctItems{"PL", "ElbowNb", "W", "H"};
constexpr std::array<string_view, 1> WireItems{"PL"};
constexpr std::array<string_view, 6> RoomItems{"InsideTemperature", "OutsideTemperature", "InsideHumidity",
                                               "OutsideHumidity",   "InsidePm25",         "OutsidePm25"};
constexpr std::array<string_view, 1> PowerItems{"Power"};
constexpr std::array<string_view, 2> AirCoolerItems{"Power", "BKT_TEMP"};
constexpr std::array<string_view, 2> PumpItems{"Head", "Power"};
constexpr std::array<string_view, 1> OpeningItems{"Opening"};
constexpr std::array<string_view, 1> AreaItems{"Area"};
constexpr std::array<string_view, 2> EvaporatorItems{"Area", "BKT_TEMP"};
constexpr std::array<string_view, 1> VolumeItems{"Volume"};
constexpr std::array<string_view, 1> VoltageItems{"Voltage"};
constexpr std::array<string_view, 1> StoreItems{"BKT_TEMP"};

constexpr std::array<string_view, 3> JunctionItems{"Pressure", "Temperature", "Flow"};

constexpr ModuleType Types[] = {
    {PipeOneID, "铸铁管道", Role::CastIronPipe, InlinePorts, OneAisle, PipeItems},
    {WireOneID, "导线", Role::None, InlinePorts, OneAisle, WireItems},
    {DuctOneID, "矩形风管", Role::Duct, InlinePorts, OneAisle, DuctItems},
    {CopperOneID, "铜管", Role::CopperPipe, InlinePorts, OneAisle, PipeItems},
    {CastIronReducerOneID, "铸铁异径管", Role::CastIronPipe, InlinePorts, OneAisle, PipeItems, true},
    {DuctReducerOneID, "风管异径管", Role::Duct, InlinePorts, OneAisle, DuctItems, true},
    {CopperReducerOneID, "铜异径管", Role::CopperPipe, InlinePorts, OneAisle, PipeItems, true},
    {RoomOneID, "房间", Role::Room, {}, {}, RoomItems},
    {FanCoilOneID, "风机盘管", Role::Terminal, InlinePorts, OneAisle, PowerItems},
    {AirCoolerOneID, "冷风机", Role::AirCooler, InlinePorts, OneAisle, AirCoolerItems},
    {RadiatorOneID, "散热器", Role::Terminal, InlinePorts, OneAisle, PowerItems},
    {PumpOneID, "水泵", Role::Pump, DrivenPorts, OneAisle, PumpItems},
    {ValveOneID, "阀门", Role::Valve, InlinePorts, OneAisle, OpeningItems},
    {ExchangerOneID, "板式换热器", Role::Exchanger, ExchangerPorts, TwoAisles, AreaItems},
    {TankOneID, "膨胀水箱", Role::Tank, VesselPorts, {}, VolumeItems},
    {CoolingTowerOneID, "冷却塔", Role::Tower, VesselPorts, {}, PowerItems},
    {CompressorOneID, "压缩机", Role::Compressor, DrivenPorts, OneAisle, PowerItems},
    {CondenserOneID, "冷凝器", Role::Condenser, ExchangerPorts, TwoAisles, AreaItems},
    {EvaporatorOneID, "蒸发器", Role::Evaporator, ExchangerPorts, TwoAisles, EvaporatorItems},
    {ExpansionValveOneID, "膨胀阀", Role::ExpansionValve, InlinePorts, OneAisle, OpeningItems},
    {ReceiverOneID, "储液器", Role::Receiver, VesselPorts, {}, VolumeItems},
    {PowerSourceOneID, "电源", Role::None, SourcePorts, {}, VoltageItems},
    {ColdStoreOneID, "冷库", Role::ColdStore, {}, {}, StoreItems},
};

// The stand-in's own types once had numbers above 2^53, which a client of doubles sends as another type's.
// Stored projects and documents still have them: each was its number of today plus this.
constexpr std::int64_t FormerFirst = 26010100000000011;
constexpr std::int64_t FormerLast = 26010100000000022;
constexpr std::int64_t FormerExcess = FormerFirst - PumpOneID;
static_assert(FormerLast - FormerExcess == ColdStoreOneID);

constexpr std::int64_t CurrentOneID(std::int64_t oneId) {
    return oneId >= FormerFirst && oneId <= FormerLast ? oneId - FormerExcess : oneId;
}

}  // namespace

std::span<const ModuleType> Catalogue() {
    return Types;
}

const ModuleType* ModuleTypeFind(int type) {
    return type >= 0 && type < static_cast<int>(std::size(Types)) ? &Types[type] : nullptr;
}

int ModuleTypeNumber(std::int64_t oneId) {
    const auto* found = std::find_if(
        std::begin(Types), std::end(Types),
        [current = CurrentOneID(oneId)](const ModuleType& type) { return type.oneId == current; });
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
