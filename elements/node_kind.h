// The kinds of node.

#pragma once

#include <array>
#include <string_view>

#include "engine/vorn_records.h"

namespace vorn {

/// Names of the node kinds, by kind.
inline constexpr std::array<std::string_view, NodeKindCount> NodeTypeTable{"FLUID", "INFO", "POWER", "MECH"};
static_assert(NodeTypeTable[FluidNode] == "FLUID" && NodeTypeTable[InfoNode] == "INFO" &&
              NodeTypeTable[PowerNode] == "POWER" && NodeTypeTable[MechNode] == "MECH");

/// What is added to a node kind to make its `VornModuleID`.
inline constexpr int NodeIdBase = 3000;

/// The name of a node kind, empty for any other number.
constexpr std::string_view NodeTypeName(int kind) {
    return kind >= 0 && kind < NodeKindCount ? NodeTypeTable[static_cast<std::size_t>(kind)]
                                             : std::string_view();
}

/// The node kind of a `VornModuleID`, -1 for an id that is none.
constexpr int NodeKindFromId(int id) {
    return id >= NodeIdBase && !NodeTypeName(id - NodeIdBase).empty() ? id - NodeIdBase : -1;
}

}  // namespace vorn
