// Identities of module types, which clients send as `VornModuleID` or `DeviceID`.

#pragma once

#include <cstdint>

// Types that the system itself places, or treats apart from others.
inline constexpr std::int64_t PipeOneID = 24032022192805856;  // of cast iron
inline constexpr std::int64_t WireOneID = 25032321491014823;
inline constexpr std::int64_t DuctOneID = 25082921244318233;
inline constexpr std::int64_t CopperOneID = 25083017561574261;
inline constexpr std::int64_t CastIronReducerOneID = 24032321240010392;
inline constexpr std::int64_t DuctReducerOneID = 25082923170872582;
inline constexpr std::int64_t CopperReducerOneID = 25083018524631661;
inline constexpr std::int64_t RoomOneID = 25092208120526336;
inline constexpr std::int64_t FanCoilOneID = 25092117291321127;
inline constexpr std::int64_t AirCoolerOneID = 25092119192771617;
inline constexpr std::int64_t RadiatorOneID = 25092119192766817;

// Types that the stand-in's catalogue adds.
inline constexpr std::int64_t PumpOneID = 26010100000000011;
inline constexpr std::int64_t ValveOneID = 26010100000000012;
inline constexpr std::int64_t ExchangerOneID = 26010100000000013;
inline constexpr std::int64_t TankOneID = 26010100000000014;
inline constexpr std::int64_t CoolingTowerOneID = 26010100000000015;
inline constexpr std::int64_t CompressorOneID = 26010100000000016;
inline constexpr std::int64_t CondenserOneID = 26010100000000017;
inline constexpr std::int64_t EvaporatorOneID = 26010100000000018;
inline constexpr std::int64_t ExpansionValveOneID = 26010100000000019;
inline constexpr std::int64_t ReceiverOneID = 26010100000000020;
inline constexpr std::int64_t PowerSourceOneID = 26010100000000021;
inline constexpr std::int64_t ColdStoreOneID = 26010100000000022;
