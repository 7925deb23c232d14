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
    {PipeOneID, "铸铁管道", InlinePorts, OneAisle, PipeItems},
    {WireOneID, "导线", InlinePorts, OneAisle, WireItems},
    {DuctOneID, "矩形风管", InlinePorts, OneAisle, DuctItems},
    {CopperOneID, "铜管", InlinePorts, OneAisle, PipeItems},
    {CastIronReducerOneID, "铸铁异径管", InlinePorts, OneAisle, PipeItems},
    {DuctReducerOneID, "风管异径管", InlinePorts, OneAisle, DuctItems},
    {CopperReducerOneID, "铜异径管", InlinePorts, OneAisle, PipeItems},
    {RoomOneID, "房间", {}, {}, RoomItems},
    {FanCoilOneID, "风机盘管", InlinePorts, OneAisle, PowerItems},
    {AirCoolerOneID, "冷风机", InlinePorts, OneAisle, AirCoolerItems},
    {RadiatorOneID, "散热器", InlinePorts, OneAisle, PowerItems},
    {PumpOneID, "水泵", DrivenPorts, OneAisle, PumpItems},
    {ValveOneID, "阀门", InlinePorts, OneAisle, OpeningItems},
    {ExchangerOneID, "板式换热器", ExchangerPorts, TwoAisles, AreaItems},
    {TankOneID, "膨胀水箱", VesselPorts, {}, VolumeItems},
    {CoolingTowerOneID, "冷却塔", VesselPorts, {}, PowerItems},
    {CompressorOneID, "压缩机", DrivenPorts, OneAisle, PowerItems},
    {CondenserOneID, "冷凝器", ExchangerPorts, TwoAisles, AreaItems},
    {EvaporatorOneID, "蒸发器", ExchangerPorts, TwoAisles, EvaporatorItems},
    {ExpansionValveOneID, "膨胀阀", InlinePorts, OneAisle, OpeningItems},
    {ReceiverOneID, "储液器", VesselPorts, {}, VolumeItems},
    {PowerSourceOneID, "电源", SourcePorts, {}, VoltageItems},
    {ColdStoreOneID, "冷库", {}, {}, StoreItems},
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
