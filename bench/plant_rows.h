// Plants of any size for the benchmarks of the analysis: chains of modules between the nodes of one net.

#pragma once

#include <algorithm>
#include <random>
#include <vector>

#include "engine/vorn_core.h"

namespace bench {

enum Order { FlowOrder, Reversed, Shuffled };

/// What a plant is made of. Module 0 is the tank that holds the pressure; the chains take the aisles of all
/// others, half of the aisles in chains of `longChain` modules, half in chains of `shortChain`. Information
/// links fill the table up to `links`.
struct Plant {
    int type;    ///< of the modules
    int aisles;  ///< of one of them, each with an inlet and an outlet
    int modules;
    int nodes;
    int links;
    int longChain;
    int shortChain;
};

/// `tenths` tenths of all capacities. No chain is longer than the passes allow in reverse.
inline Plant PartOfFull(int tenths) {
    constexpr int ExchangerType = 13;
    constexpr int Full = 10;
    return {ExchangerType,
            2,
            ModuleCapacity * tenths / Full,
            NodeCapacity * tenths / Full,
            LinkCapacity * tenths / Full,
            250,
            1};
}

/// So many links, with chains of 14 pipes as long as there are modules.
inline Plant PipeChains(int links) {
    constexpr int PipeType = 0;
    constexpr int Chain = 14;
    const int chains = std::min(links / (Chain + 1), ModuleCapacity / Chain);
    return {PipeType, 1,    std::min(1 + chains * Chain, ModuleCapacity), std::max(chains, 1), links,
            Chain,    Chain};
}

namespace detail {

inline LinkSxCache From(ElementKind kind, int number, int port, bool flag) {
    return {.InUse = true, .F_Sx = kind, .F_Nb = number, .F_PortNb = port, .F_Type2 = flag};
}

inline LinkSxCache To(LinkSxCache row, ElementKind kind, int number, int port, bool flag) {
    row.S_Sx = kind;
    row.S_Nb = number;
    row.S_PortNb = port;
    row.S_Type2 = flag;
    return row;
}

/// The rows of a plant under construction. Node ports are given out one after the other.
struct PlantRows {
    const Plant& plant;
    std::vector<LinkSxCache> rows{};
    int outlets = 0;
    int inlets = 0;
};

inline LinkSxCache FromNode(PlantRows& made) {
    const int outlet = made.outlets++;
    const int nodes = made.plant.nodes;
    return From(NodeKind, outlet % nodes, NodeInletCount + outlet / nodes % NodeInletCount, false);
}

/// The first inlet is the tank's; from there on each chain leads to the node behind its own, so that all make
/// one net.
inline LinkSxCache ToNode(PlantRows& made, const LinkSxCache& row) {
    const int inlet = made.inlets++;
    return To(row, NodeKind, inlet % made.plant.nodes, inlet / made.plant.nodes % NodeInletCount, false);
}

inline void ChainAdd(PlantRows& made, int& aisle, int length, LinkSxCache row) {
    for (int left = length; left > 0; --left, ++aisle) {
        const int module = 1 + aisle / made.plant.aisles;
        const int inlet = aisle % made.plant.aisles * 2;
        made.rows.push_back(To(row, ModuleKind, module, inlet, true));
        row = From(ModuleKind, module, inlet + 1, true);
    }
    made.rows.push_back(ToNode(made, row));
}

}  // namespace detail

/// The link rows of a plant, in that order.
inline std::vector<LinkSxCache> RowsOf(const Plant& plant, Order order) {
    detail::PlantRows made{plant};
    const int aisles = plant.aisles * (plant.modules - 1);
    int aisle = 0;
    detail::ChainAdd(made, aisle, 1, detail::From(ModuleKind, 0, 1, false));
    while (aisle < aisles) {
        const int length = aisle < aisles / 2 ? plant.longChain : plant.shortChain;
        detail::ChainAdd(made, aisle, std::min(length, aisles - aisle), detail::FromNode(made));
    }
    while (static_cast<int>(made.rows.size()) < plant.links) {
        LinkSxCache row = detail::ToNode(made, detail::FromNode(made));
        row.Type = InformationLink;
        made.rows.push_back(row);
    }
    if (order == Reversed) std::reverse(made.rows.begin(), made.rows.end());
    if (order == Shuffled) std::shuffle(made.rows.begin(), made.rows.end(), std::mt19937(1));
    return std::move(made.rows);
}

/// Builds a plant as project `name`, in the place of one that has the name.
inline void PlantBuild(const char* name, const Plant& plant, Order order) {
    constexpr int TankType = 14;
    ProjectInfoRemove(name);
    ProjectJsonAdd(name);
    for (int module = 0; module < plant.modules; ++module) {
        ProjectAddModule(name, module, module == 0 ? TankType : plant.type, 0, module, 0);
    }
    for (int node = 0; node < plant.nodes; ++node) ProjectAddNode(name, node, FluidNode, 0, node, 0);
    int number = 0;
    for (const LinkSxCache& row : RowsOf(plant, order)) ProjectAddLink(name, number++, row);
}

}  // namespace bench
