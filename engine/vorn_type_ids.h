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

// Types that the stand-in's catalogue adds: below 2^53, so that each client of doubles sends them unharmed.
inline constexpr std::int64_t PumpOneID = 2601010000011;
inline constexpr std::int64_t ValveOneID = 2601010000012;
inline constexpr std::int64_t ExchangerOneID = 2601010000013;
inline constexpr std::int64_t TankOneID = 2601010000014;
inline constexpr std::int64_t CoolingTowerOneID = 2601010000015;
inline constexpr std::int64_t CompressorOneID = 2601010000016;
inline constexpr std::int64_t CondenserOneID = 2601010000017;
inline constexpr std::int64_t EvaporatorOneID = 2601010000018;
inline constexpr std::int64_t ExpansionValveOneID = 2601010000019;
inline constexpr std::int64_t ReceiverOneID = 2601010000020;
inline constexpr std::int64_t PowerSourceOneID = 2601010000021;
inline constexpr std::int64_t ColdStoreOneID = 2601010000022;
