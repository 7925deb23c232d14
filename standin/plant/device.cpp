#include "standin/plant/device.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

#include "engine/vorn_type_ids.h"

namespace standin {

namespace {

constexpr std::array<std::string_view, static_cast<std::size_t>(Item::Count)> ItemNames{"PL",
                                                                                        "ElbowNb",
                                                                                        "D",
                                                                                        "W",
                                                                                        "H",
                                                                                        "Head",
                                                                                        "Power",
                                                                                        "Opening",
                                                                                        "Area",
                                                                                        "Volume",
                                                                                        "InsideTemperature",
                                                                                        "OutsideTemperature",
                                                                                        "BKT_TEMP"};

struct RoleRow {
    std::int64_t oneId;
    Role role;
    bool reducer = false;
};

constexpr RoleRow Roles[] = {
    {PipeOneID, Role::CastIronPipe},
    {CastIronReducerOneID, Role::CastIronPipe, true},
    {DuctOneID, Role::Duct},
    {DuctReducerOneID, Role::Duct, true},
    {CopperOneID, Role::CopperPipe},
    {CopperReducerOneID, Role::CopperPipe, true},
    {RoomOneID, Role::Room},
    {FanCoilOneID, Role::Terminal},
    {AirCoolerOneID, Role::AirCooler},
    {RadiatorOneID, Role::Terminal},
    {PumpOneID, Role::Pump},
    {ValveOneID, Role::Valve},
    {ExchangerOneID, Role::Exchanger},
    {TankOneID, Role::Tank},
    {CoolingTowerOneID, Role::Tower},
    {CompressorOneID, Role::Compressor},
    {CondenserOneID, Role::Condenser},
    {EvaporatorOneID, Role::Evaporator},
    {ExpansionValveOneID, Role::ExpansionValve},
    {ReceiverOneID, Role::Receiver},
    {ColdStoreOneID, Role::ColdStore},
};

DeviceType Made(const ModuleType& type) {
    DeviceType made{.ports = type.ports, .aisles = type.aisles};
    const auto* found = std::find_if(std::begin(Roles), std::end(Roles),
                                     [&](const RoleRow& row) { return row.oneId == type.oneId; });
    if (found != std::end(Roles)) {
        made.role = found->role;
        made.reducer = found->reducer;
    }
    std::transform(ItemNames.begin(), ItemNames.end(), made.rows.begin(),
                   [&](std::string_view name) { return ItemRow(type.items, name); });
    return made;
}

}  // namespace

const DeviceType& DeviceTypeOf(int type) {
    // Never destroyed: the engine's threads may work while the process ends.
    static const auto& types = *[] {
        auto* made = new std::vector<DeviceType>;
        for (const ModuleType& each : Catalogue()) made->push_back(Made(each));
        return made;
    }();
    return types[static_cast<std::size_t>(type)];
}

double Within(double value, double low, double high, double fallback) {
    return std::isnan(value) ? fallback : std::clamp(value, low, high);
}

double Positive(double value, double high, double fallback) {
    return value > 0.0 ? std::min(value, high) : fallback;
}

}  // namespace standin
