// The catalogue of module types that the stand-in offers. A type's number is its row.

#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace standin {

/// One port of a module type. The through ports of a module are flagged: a chain goes on inside the module.
struct PortType {
    bool outlet = false;
    bool through = false;
    int aisle = -1;  ///< the aisle that the port belongs to; -1 for an end port
};

/// The path through a module from an inlet to an outlet.
struct AisleType {
    int inlet = -1;
    int outlet = -1;
};

/// What modules of a type do in the plant.
enum class Role {
    None,  ///< carries what flows through it and does nothing else
    CastIronPipe,
    CopperPipe,
    Duct,
    Pump,
    Valve,
    ExpansionValve,
    Exchanger,
    Condenser,
    Evaporator,
    Terminal,  ///< fan coil, radiator
    AirCooler,
    Compressor,
    Tank,
    Tower,
    Receiver,
    Room,
    ColdStore
};

struct ModuleType {
    std::int64_t oneId;
    std::string_view name;  ///< UTF-8
    Role role;
    std::span<const PortType> ports;
    std::span<const AisleType> aisles;
    std::span<const std::string_view> items;  ///< the rows of the type's table of items, all reals
    bool reducer = false;                     ///< a pipe or duct with a reducer's loss
};

/// All types, by type number.
std::span<const ModuleType> Catalogue();

/// The type of that number, null when there is none.
const ModuleType* ModuleTypeFind(int type);

/// The number of the type with that identity, or with that former identity of one of the stand-in's own types;
/// -1 when there is none.
int ModuleTypeNumber(std::int64_t oneId);

/// The items of every node, all reals: what flows through a junction.
std::span<const std::string_view> NodeItems();

/// The row of `item` in `items`, -1 when it is not there.
int ItemRow(std::span<const std::string_view> items, std::string_view item);

}  // namespace standin
