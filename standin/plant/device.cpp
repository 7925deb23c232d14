#include "standin/plant/device.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

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
    {24032022192805856, Role::CastIronPipe},   {24032321240010392, Role::CastIronPipe, true},
    {25082921244318233, Role::Duct},           {25082923170872582, Role::Duct, true},
    {25083017561574261, Role::CopperPipe},     {25083018524631661, Role::CopperPipe, true},
    {25092208120526336, Role::Room},           {25092117291321127, Role::Terminal},
    {25092119192771617, Role::AirCooler},      {25092119192766817, Role::Terminal},
    {26010100000000011, Role::Pump},           {26010100000000012, Role::Valve},
    {26010100000000013, Role::Exchanger},      {26010100000000014, Role::Tank},
    {26010100000000015, Role::Tower},          {26010100000000016, Role::Compressor},
    {26010100000000017, Role::Condenser},      {26010100000000018, Role::Evaporator},
    {26010100000000019, Role::ExpansionValve}, {26010100000000020, Role::Receiver},
    {26010100000000022, Role::ColdStore},
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
