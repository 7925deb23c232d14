// What a step reads.

#pragma once

#include "standin/plant/layout.h"

namespace standin {

/// 0 where the device has no such item.
inline double Get(const PlantInputs& inputs, const Device& device, Item item) {
    const int row = device.type->Row(item);
    return row < 0 ? 0.0 : At(inputs.items, device.firstValue + row);
}

inline constexpr double MostPower = 1e6;  // kW, of what a client writes

/// W; 0 where the item is not above 0.
inline double Watts(const PlantInputs& inputs, const Device& device) {
    return Positive(Get(inputs, device, Item::Power), MostPower, 0.0) * WattPerKilo;
}

/// The `Trip` of a compressor, finite; 0 where it is free to run.
inline double TripOf(const PlantInputs& inputs, const Device& compressor) {
    constexpr double MostTrip = 99.0;
    return Within(Get(inputs, compressor, Item::Trip), 0.0, MostTrip, 0.0);
}

/// W that a compressor can draw; 0 while it is tripped.
inline double CompressorWatts(const PlantInputs& inputs, const Device& compressor) {
    return TripOf(inputs, compressor) > 0.0 ? 0.0 : Watts(inputs, compressor);
}

/// W that a pump or fan draws, whatever it moves; 0 where it is off.
double PumpWatts(const PlantInputs& inputs, const Device& pump);

}  // namespace standin
