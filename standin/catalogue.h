// The catalogue of module types that the stand-in offers. A type's number is its row.

#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "standin/plant/plant.h"

namespace standin {

/// A type of module: what the plant reads of it, and how clients know it.
struct ModuleType : PlantType {
    std::int64_t oneId;
    std::string_view name;  ///< UTF-8
};

/// All types, by type number.
std::span<const ModuleType> Catalogue();

/// The type of that number, null when there is none.
const ModuleType* ModuleTypeFind(int type);

/// The number of the type with that identity, or with that former identity of one of the stand-in's own
/// types; -1 when there is none.
int ModuleTypeNumber(std::int64_t oneId);

/// The items of every node, all reals: what flows through a junction.
std::span<const std::string_view> NodeItems();

/// The row of `item` in `items`, -1 when it is not there.
int ItemRow(std::span<const std::string_view> items, std::string_view item);

}  // namespace standin
