// What the analysis of a project and its report cost: against a bare union-find over the same rows, and full
// against a tenth. Each benchmark takes both in turn and prints the ratio of the best times as `ratio`.

#include <benchmark/benchmark.h>

#include <memory>
#include <numeric>
#include <vector>

#include "bench/best.h"
#include "bench/plant_rows.h"
#include "engine/vorn_core.h"
#include "include/vorn_server.h"
#include "network/net_access.h"

namespace {

using namespace bench;

int Root(std::vector<int>& parents, int element) {
    while (parents[element] != element) {
        parents[element] = parents[parents[element]];
        element = parents[element];
    }
    return element;
}

/// Joins what the rows link and counts what is not joined.
int UnionFind(const ProjectCheckCache& check) {
    std::vector<int> parents(check.ModuleNb + check.NodeNb);
    std::iota(parents.begin(), parents.end(), 0);
    int sets = check.ModuleNb + check.NodeNb;
    const auto element = [&check](int kind, int number) {
        return kind == ModuleKind ? number : check.ModuleNb + number;
    };
    for (int row = 0; row < check.LinkNb; ++row) {
        const LinkSxCache& link = check.LinkSx[row];
        const int upstream = Root(parents, element(link.F_Sx, link.F_Nb));
        const int downstream = Root(parents, element(link.S_Sx, link.S_Nb));
        if (upstream == downstream) continue;
        parents[upstream] = downstream;
        --sets;
    }
    return sets;
}

/// `ratio` is that of the analysis of a loaded snapshot, `with_snapshot` that of `Net_Access`, for which the
/// engine copies the project's tables first.
void AgainstUnionFind(benchmark::State& state) {
    PlantBuild("BENCH", PipeChains(static_cast<int>(state.range(0))), static_cast<Order>(state.range(1)));
    const auto analysis = std::make_unique<vorn::Analysis>();
    vorn::SnapshotLoad(*analysis, 0);
    const int runs = 1 + 100000 / static_cast<int>(state.range(0));
    Best whole{runs};
    Best snapshot{runs};
    Best unionFind{runs};
    while (state.KeepRunning()) {
        bool complete = false;
        whole.Take([&complete] { complete = Net_Access(0); });
        snapshot.Take([&] { complete = vorn::SnapshotAnalyse(*analysis, 0) && complete; });
        unionFind.Take([&] { complete = UnionFind(analysis->ProjectCheck) == 1 && complete; });
        if (!complete) state.SkipWithError("the network is not complete");
    }
    state.counters["union_find_us"] = unionFind.time;
    state.counters["ratio"] = snapshot.time / unionFind.time;
    state.counters["with_snapshot"] = whole.time / unionFind.time;
}

BENCHMARK(AgainstUnionFind)
    ->ArgNames({"links", "order"})
    ->ArgsProduct({{50, 500, 5858, 15000, 48600}, {FlowOrder, Reversed, Shuffled}});

/// As above, but each run finds the caches cold, as an analysis between other work does. `ratio` is that of
/// `Net_Access` of a project that has not changed since the last one, `changed` of one that has.
void ColdAgainstUnionFind(benchmark::State& state) {
    PlantBuild("BENCH", PipeChains(static_cast<int>(state.range(0))), static_cast<Order>(state.range(1)));
    const auto analysis = std::make_unique<vorn::Analysis>();
    vorn::SnapshotLoad(*analysis, 0);
    bool complete = Net_Access(0);
    Cold whole;
    Cold changed;
    Cold unionFind;
    while (state.KeepRunning()) {
        whole.Take([&complete] { complete = Net_Access(0) && complete; });
        unionFind.Take([&] { complete = UnionFind(analysis->ProjectCheck) == 1 && complete; });
        ProjectModuleXYSet("BENCH", 0, 0, 0);
        changed.Take([&complete] { complete = Net_Access(0) && complete; });
    }
    if (!complete) state.SkipWithError("the network is not complete");
    state.counters["union_find_us"] = unionFind.Median();
    state.counters["ratio"] = whole.Median() / unionFind.Median();
    state.counters["changed"] = changed.Median() / unionFind.Median();
}

BENCHMARK(ColdAgainstUnionFind)
    ->ArgNames({"links", "order"})
    ->ArgsProduct({{500, 5858, 48600}, {FlowOrder, Reversed, Shuffled}})
    ->Iterations(60);

/// `ratio` is what ten times the plant costs.
template <typename Run>
void Growth(benchmark::State& state, Run run) {
    PlantBuild("BENCH", PartOfFull(10), static_cast<Order>(state.range(0)));
    PlantBuild("TENTH", PartOfFull(1), static_cast<Order>(state.range(0)));
    Best full;
    Best tenth;
    bool complete = true;
    while (state.KeepRunning()) {
        full.Take([&] { complete = run(0) && complete; });
        tenth.Take([&] { complete = run(1) && complete; });
    }
    if (!complete) state.SkipWithError("the network is not complete");
    state.counters["full_us"] = full.time;
    state.counters["ratio"] = full.time / tenth.time;
}

void GrowthOfAnalysis(benchmark::State& state) {
    Growth(state, Net_Access);
}

/// A report with the analysis before it, which each report uses up.
void GrowthOfReport(benchmark::State& state) {
    Growth(state, [](int slot) { return Net_InfoToAI(slot) != nullptr; });
}

BENCHMARK(GrowthOfAnalysis)->ArgName("order")->DenseRange(FlowOrder, Shuffled);
BENCHMARK(GrowthOfReport)->ArgName("order")->DenseRange(FlowOrder, Shuffled)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
