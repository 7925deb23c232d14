#include "standin/plant/device.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>

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
                                          "BKT_TEMP",
                                          "Glycol",
                                          "Trip",
                                          "Alarm",
                                          "TempLow",
                                          "TempHigh"};
static_assert(std::size(ItemNames) == static_cast<std::size_t>(Item::Count));

}  // namespace

DeviceType DeviceTypeOf(const PlantType& type) {
    DeviceType made{type, {}};
    std::transform(std::begin(ItemNames), std::end(ItemNames), made.rows.begin(), [&](std::string_view name) {
        const auto found = std::find(type.items.begin(), type.items.end(), name);
        return found == type.items.end() ? -1 : static_cast<int>(found - type.items.begin());
    });
    return made;
}

double Within(double value, double low, double high, double fallback) {
    return std::isnan(value) ? fallback : std::clamp(value, low, high);
}

double Positive(double value, double high, double fallback) {
    return value > 0.0 ? std::min(value, high) : fallback;
}

}  // namespace standin
