#include "standin/plant/device.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>
#include <vector>

namespace standin {

namespace {

constexpr std::string_view ItemNames[] = {"PL",
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
static_assert(std::size(ItemNames) == static_cast<std::size_t>(Item::Count));

DeviceType Made(const ModuleType& type) {
    DeviceType made{type};
    std::transform(std::begin(ItemNames), std::end(ItemNames), made.rows.begin(),
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
