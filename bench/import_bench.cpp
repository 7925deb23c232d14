// How long the import of a project document takes besides its wait of 300 ms, and how that grows with the
// document. The store is part of it, flush to the disk included. Documents come from examples/make_plant.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <string>

#include "engine/vorn_core.h"
#include "import/document.h"
#include "tests/support/working_folder.h"

namespace {

constexpr double WaitSeconds = 0.3;

/// The document that `make_plant` makes with these arguments, empty when it cannot be run.
std::string MadePlant(const std::string& arguments) {
    std::string text;
    FILE* pipe = popen(("python3 " VORN_SOURCE_DIR "/examples/make_plant " + arguments).c_str(), "r");
    if (pipe == nullptr) return text;
    char buffer[65536];
    for (std::size_t count = 0; (count = fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
        text.append(buffer, count);
    }
    return pclose(pipe) == 0 ? text : std::string();
}

void Import(benchmark::State& state, const std::string& shuffled) {
    const std::string document = MadePlant(std::to_string(state.range(0)) + shuffled);
    const WorkingFolder folder;
    ProjectJsonAdd("PLANT");
    const int pjtnb = ProjectNameToID("PLANT");
    if (document.empty() || pjtnb < 0) state.SkipWithError("no document or no project");
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        vorn::ProjectDocumentImport(pjtnb, document.c_str());
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(passed.count() - WaitSeconds);
    }
    state.SetComplexityN(state.range(0));
    state.counters["bytes"] = static_cast<double>(document.size());
    ProjectInfoRemove("PLANT");
}

void ImportInFlowOrder(benchmark::State& state) {
    Import(state, "");
}

void ImportShuffled(benchmark::State& state) {
    Import(state, " 1");
}

void Sizes(benchmark::internal::Benchmark* bench) {
    for (const int elements : {250, 2500, 5000}) bench->Arg(elements);
    bench->Iterations(10)->UseManualTime()->Unit(benchmark::kMillisecond)->Complexity();
}

BENCHMARK(ImportInFlowOrder)->Apply(Sizes);
BENCHMARK(ImportShuffled)->Apply(Sizes);

}  // namespace

BENCHMARK_MAIN();
