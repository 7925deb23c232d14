// What a step reads of a project's values.

#pragma once

#include <vector>

#include "standin/plant/layout.h"

namespace standin {

/// Any value may stand here, also one that is no number.
struct PlantInputs {
    std::vector<double> items;    ///< the run values of all devices' items
    std::vector<double> vessels;  ///< degrees Celsius in each vessel, by device; not read of other devices

    /// 0 where the device has no such item.
    double Get(const Device& device, Item item) const {
        const int row = device.type->Row(item);
        return row < 0 ? 0.0 : At(items, device.firstValue + row);
    }
};

}  // namespace standin
