// The records that cross to the closed libraries, field by field in their order.

#pragma once

#include <cstddef>
#include <cstdint>

/// Projects that can be open at once, each in a slot of its own, from 0.
inline constexpr int SlotCount = 8;

/// Kinds of element, as they stand in link rows and cross in arguments.
enum ElementKind { NoKind = 0, ModuleKind = 1, NodeKind = 2, JumpKind = 3, LinkKind = 4 };

/// What a link carries.
enum LinkType { PipeLink = 0, InformationLink = 1, WireLink = 2, MechanicalLink = 3 };

/// Ports of each element, from 0. The lower half of a node's are its inlets, the upper half its outlets.
inline constexpr int PortsPerElement = 16;
inline constexpr int NodeInletCount = PortsPerElement / 2;

/// Kinds of node, by what flows through them.
enum NodeFlow { FluidNode = 0, InfoNode = 1, PowerNode = 2, MechNode = 3 };
inline constexpr int NodeKindCount = 4;

/// Module types that the system has room for in its own tables, from 0.
inline constexpr int ModuleTypeCount = 600;

/// Cache sets of values that each element has, from 0.
inline constexpr int CacheSetCount = 3;

/// One link between two element ports. A caller writes it to add a link; a snapshot shows it as a row.
/// `F_` is the upstream end, `S_` the downstream end.
struct LinkSxCache {
    bool InUse = false;       ///< true in each record that a caller writes; marks a row that exists
    std::int32_t Type = 0;    ///< a `LinkType`
    std::int32_t PageNb = 0;  ///< page of the drawing
    std::int32_t F_Sx = 0;    ///< the `ElementKind` of the upstream end
    std::int32_t F_Nb = 0;    ///< its element number
    std::int32_t F_PortNb = 0;
    bool F_Type2 = false;  ///< the port's flag: true for a through port; false for a node
    std::int32_t S_Sx = 0;
    std::int32_t S_Nb = 0;
    std::int32_t S_PortNb = 0;
    bool S_Type2 = false;
};

/// Bytes of an identity or model name with its terminator: at most 37 bytes of UTF-8.
inline constexpr std::size_t IdentityBytes = 38;

/// A module's row in a snapshot; the row's index is the module number.
struct ModuleRow {
    bool InUse = false;
    std::int32_t TypeNb = 0;  ///< module type number
    std::int32_t EngineOwn = 0;
    std::int32_t PositionX = 0;  ///< grid units
    std::int32_t PositionZ = 0;
    std::int64_t VornModuleOneID = 0;
    char ModelID[IdentityBytes] = {};
    char InstanceID[IdentityBytes] = {};  ///< may be empty
};

/// A node's row in a snapshot; the row's index is the node number.
struct NodeRow {
    bool InUse = false;
    std::int32_t Kind = 0;  ///< a `NodeFlow`
    std::int32_t EngineOwn = 0;
    std::int32_t PositionX = 0;  ///< grid units
    std::int32_t PositionZ = 0;
    char InstanceID[IdentityBytes] = {};  ///< may be empty
};

/// Rows that the tables of one project have room for.
inline constexpr std::int32_t ModuleCapacity = 5485;
inline constexpr std::int32_t NodeCapacity = 2900;
inline constexpr std::int32_t LinkCapacity = 48600;
inline constexpr std::int32_t PageLinkCapacity = 16900;

/// A snapshot of one project, about 4 MB. Each count bounds a walk over its rows and is no larger than the
/// array; rows within the count may be vacant, with `InUse` false. Rows beyond a count hold anything.
struct ProjectCheckCache {
    std::byte EngineOwn[64] = {};  ///< the engine's; nobody else reads it
    std::int32_t ModuleNb = 0;
    ModuleRow ModuleSx[ModuleCapacity];
    std::int32_t NodeNb = 0;
    NodeRow NodeSx[NodeCapacity];
    std::int32_t LinkNb = 0;
    LinkSxCache LinkSx[LinkCapacity];
    std::int32_t PageLinkNb = 0;
    LinkSxCache PageLinkSx[PageLinkCapacity];  ///< connections that lead over jumps
};

/// The facts of one port of one module, eight 32-bit words, of which callers read the fifth.
struct ModulePortInfoCache {
    std::int32_t EngineOwn[4] = {};
    std::int32_t AisleNb = -1;  ///< the aisle, the path through the module, that the port belongs to
    std::int32_t EngineOwnMore[3] = {};
};

/// The facts of one aisle of one module, four 32-bit words, of which callers read the third.
struct AisleSxCache {
    std::int32_t EngineOwn[2] = {};
    std::int32_t OutPortNb = -1;  ///< the port at which the aisle leaves the module
    std::int32_t EngineOwnMore = 0;
};
