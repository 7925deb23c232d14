// The module types as the plant sees them, and the items that it reads and writes.

#pragma once

#include <array>

#include "standin/plant/plant.h"

namespace standin {

enum class Item {
    Length,    ///< m
    Elbows,    ///< number of them
    Diameter,  ///< mm
    Width,     ///< mm
    Height,    ///< mm
    Head,      ///< m
    Power,     ///< kW
    Opening,   ///< 0 to 1
    Area,      ///< m2
    Volume,    ///< m3
    Inside,    ///< degrees Celsius
    Outside,   ///< degrees Celsius
    Store,     ///< degrees Celsius
    Glycol,    ///< above 0: the net is brine
    Trip,      ///< see `Trip`
    Alarm,     ///< see `Alarm`
    TempLow,   ///< degrees Celsius
    TempHigh,  ///< degrees Celsius
    Count
};

/// A type of module with the rows of the items that the plant knows.
struct DeviceType : PlantType {
    std::array<int, static_cast<std::size_t>(Item::Count)> rows{};  ///< of each item, -1 where it has none

    int Row(Item item) const { return rows[static_cast<std::size_t>(item)]; }
};

DeviceType DeviceTypeOf(const PlantType& type);

/// A vessel's ports hold a pressure; what stands in it is one content.
constexpr bool IsVessel(Role role) {
    return role == Role::Tank || role == Role::Tower || role == Role::Receiver;
}

constexpr bool IsRoom(Role role) {
    return role == Role::Room || role == Role::ColdStore;
}

/// A value as it can be reckoned with, whatever a client wrote: between `low` and `high`, and `fallback` for
/// what is no number.
double Within(double value, double low, double high, double fallback);

/// A value above 0 and not above `high`; `fallback` for all others.
double Positive(double value, double high, double fallback);

}  // namespace standin
