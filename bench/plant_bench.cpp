// The steps of the stand-in's plant: in a plant of 50, 500 and 5,000 pipes where little changes from step to
// step, where the pump or one valve is turned each time, and where the structure is new; and the waits of a
// client that reads while eight such plants make ten steps a second. Times are of the processor.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <thread>

#include "engine/vorn_var.h"
#include "standin/plant_step.h"
#include "standin/simulation.h"
#include "tests/support/made_plant.h"

namespace {

constexpr double Seconds = standin::StepSeconds;

void CloseAll() {
    for (int slot = 0; slot < SlotCount; ++slot) ProjectInfoRemove(ProjectNameGet(slot));
}

/// Turns something in the plant a little, or structure by a link that is made and taken away.
enum class Change { None, Little, Much, Valve, Structure };

void Steps(benchmark::State& state, Change change) {
    CloseAll();
    const Drawing drawing = Mesh(static_cast<int>(state.range(0)));
    MadePlant plant("BENCH", drawing);
    int turned = static_cast<int>(drawing.pieces.size()) / 2;  // a pipe in the middle, in place of a valve
    while (drawing.pieces[static_cast<std::size_t>(turned)].type != Pipe) ++turned;
    constexpr int PumpModule = 1;
    for (int step = 0; step < 3; ++step) standin::PlantStep(plant.Slot(), Seconds);
    int round = 0;
    for (auto each : state) {
        ++round;
        if (change == Change::Little) plant.Item(PumpModule, 0) = 20.0 + 0.01 * (round % 2);
        if (change == Change::Much) plant.Item(PumpModule, 0) = round % 2 == 0 ? 20.0 : 5.0;
        if (change == Change::Valve) plant.Item(turned, 0) = round % 2 == 0 ? 10.0 : 1000.0;
        if (change == Change::Structure) plant.Records().structure = standin::NextRevision();
        benchmark::DoNotOptimize(standin::PlantStep(plant.Slot(), Seconds));
    }
}

BENCHMARK_CAPTURE(Steps, NothingChanges, Change::None)
    ->Arg(50)
    ->Arg(500)
    ->Arg(5000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Steps, LittleChanges, Change::Little)
    ->Arg(50)
    ->Arg(500)
    ->Arg(5000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Steps, MuchChanges, Change::Much)
    ->Arg(50)
    ->Arg(500)
    ->Arg(5000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Steps, OneValveTurns, Change::Valve)
    ->Arg(100)
    ->Arg(500)
    ->Arg(1000)
    ->Arg(5000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Steps, StructureChanges, Change::Structure)
    ->Arg(50)
    ->Arg(500)
    ->Arg(5000)
    ->Unit(benchmark::kMillisecond);

/// Reads beside so many running plants of 5,000 pipes: the 99th percentile and the longest of a read in
/// microseconds, and the part of a core that the steps take.
void ReadsBeside(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    CloseAll();
    for (int number = 0; number < static_cast<int>(state.range(0)); ++number) {
        const MadePlant plant("BENCH" + std::to_string(number), Mesh(5000, static_cast<unsigned>(number)));
        PjtStartSet(plant.Slot(), true);
    }
    ProjectJsonAdd("READ");
    ProjectControllerRun();
    std::this_thread::sleep_for(std::chrono::seconds(3));
    std::vector<double> waits;
    const std::clock_t before = std::clock();
    const int steps = GloIntGet(0, 3);
    const auto begin = Clock::now();
    for (auto each : state) {
        const auto start = Clock::now();
        benchmark::DoNotOptimize(GloGet(0, 0));
        waits.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    std::sort(waits.begin(), waits.end());
    state.counters["p99_us"] = waits[waits.size() * 99 / 100];
    state.counters["max_us"] = waits.back();
    state.counters["cores"] = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC / seconds;
    state.counters["steps_per_s"] = (GloIntGet(0, 3) - steps) / seconds;
    CloseAll();
}
BENCHMARK(ReadsBeside)->Arg(0)->Arg(1)->Arg(8)->Iterations(20000)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
