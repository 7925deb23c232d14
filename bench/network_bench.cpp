// How the analysis of a project and its report grow with the project, and with the order of its link rows.
//
// The full project has every module and node, half of the aisles in chains of about 250 modules and half in
// chains of one, each between two ports of one net, and information links up to the last row. No chain is
// longer than the passes allow in reverse.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

#include "engine/vorn_core.h"
#include "include/vorn_server.h"

namespace {

constexpr int TankType = 14;
constexpr int ExchangerType = 13;
constexpr int LongChain = 250;
constexpr int NodeOutlets = 8;
constexpr int Full = 10;  // tenths

enum Order { FlowOrder, Reversed, Shuffled };

/// A project under construction, in tables of these sizes. Its node ports are given out one after the other.
struct Plant {
    int modules;
    int nodes;
    int capacity;
    std::vector<LinkSxCache> rows{};
    int outlets = 0;
    int inlets = 0;
};

LinkSxCache From(int kind, int number, int port, bool flag) {
    return {.InUse = true, .F_Sx = kind, .F_Nb = number, .F_PortNb = port, .F_Type2 = flag};
}

LinkSxCache To(LinkSxCache row, int kind, int number, int port, bool flag) {
    row.S_Sx = kind;
    row.S_Nb = number;
    row.S_PortNb = port;
    row.S_Type2 = flag;
    return row;
}

LinkSxCache FromNode(Plant& plant) {
    const int outlet = plant.outlets++;
    return From(2, outlet % plant.nodes, 8 + outlet / plant.nodes % NodeOutlets, false);
}

/// The first inlet is the tank's; from there on each chain leads to the node behind its own, so that all make
/// one net.
LinkSxCache ToNode(Plant& plant, const LinkSxCache& row) {
    const int inlet = plant.inlets++;
    return To(row, 2, inlet % plant.nodes, inlet / plant.nodes % NodeOutlets, false);
}

void AddChain(Plant& plant, int& aisle, int length, LinkSxCache row) {
    for (int left = length; left > 0; --left, ++aisle) {
        const int module = 1 + aisle / 2;
        const int inlet = aisle % 2 * 2;
        plant.rows.push_back(To(row, 1, module, inlet, true));
        row = From(1, module, inlet + 1, true);
    }
    plant.rows.push_back(ToNode(plant, row));
}

/// The project of `tenths` tenths of the capacities, in slot 0: module 0 is the tank that holds the pressure,
/// all others are exchangers.
void Build(int tenths, Order order) {
    ProjectInfoRemove("BENCH");
    ProjectJsonAdd("BENCH");
    Plant plant{ModuleCapacity * tenths / Full, NodeCapacity * tenths / Full, LinkCapacity * tenths / Full};
    for (int module = 0; module < plant.modules; ++module) {
        ProjectAddModule("BENCH", module, module == 0 ? TankType : ExchangerType, 0, module, 0);
    }
    for (int node = 0; node < plant.nodes; ++node) ProjectAddNode("BENCH", node, 0, 0, node, 0);

    const int aisles = 2 * (plant.modules - 1);
    int aisle = 0;
    AddChain(plant, aisle, 1, From(1, 0, 1, false));
    while (aisle < aisles) {
        const int length = aisle < aisles / 2 ? LongChain : 1;
        AddChain(plant, aisle, std::min(length, aisles - aisle), FromNode(plant));
    }
    while (static_cast<int>(plant.rows.size()) < plant.capacity) {
        LinkSxCache row = ToNode(plant, FromNode(plant));
        row.Type = 1;
        plant.rows.push_back(row);
    }
    if (order == Reversed) std::reverse(plant.rows.begin(), plant.rows.end());
    if (order == Shuffled) std::shuffle(plant.rows.begin(), plant.rows.end(), std::mt19937(1));
    for (int row = 0; row < plant.capacity; ++row) {
        ProjectAddLink("BENCH", row, plant.rows[static_cast<std::size_t>(row)]);
    }
}

void Analysis(benchmark::State& state) {
    Build(static_cast<int>(state.range(0)), static_cast<Order>(state.range(1)));
    while (state.KeepRunning()) {
        if (!Net_Access(0)) state.SkipWithError("the network is not complete");
    }
}

/// A report with the analysis before it, which each report uses up.
void AnalysisAndReport(benchmark::State& state) {
    Build(static_cast<int>(state.range(0)), static_cast<Order>(state.range(1)));
    std::size_t bytes = 0;
    while (state.KeepRunning()) bytes = std::char_traits<char>::length(Net_InfoToAI(0));
    state.counters["bytes"] = static_cast<double>(bytes);
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"tenths", "order"})->Unit(benchmark::kMillisecond);
    for (int order : {FlowOrder, Reversed, Shuffled}) benchmark->Args({1, order})->Args({Full, order});
}

BENCHMARK(Analysis)->Apply(Sizes);
BENCHMARK(AnalysisAndReport)->Apply(Sizes);

}  // namespace

BENCHMARK_MAIN();
