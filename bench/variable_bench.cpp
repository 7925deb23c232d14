// Reads and writes by name: one at a time, and batches of different names beside what such a batch cannot do
// without: the store's calls with the numbers' formatting or reading, and the JSON library's parse of the
// request. The counter `ratio` is the batch's time over the sum of these two; no more than 2 is expected, and
// `batch_ns`, the time a name, is expected to be that of a small batch in a large one too.
//
// All eight slots hold a project of the full number of modules, and each project variable of clients is
// taken.

#include <benchmark/benchmark.h>
#include <rapidjson/document.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "engine/vorn_core.h"
#include "engine/vorn_var.h"
#include "text/number_text.h"
#include "variables/var_batch.h"
#include "variables/var_read.h"
#include "variables/var_write.h"

namespace {

constexpr int ClientVariables = 250;
constexpr int ValveType = 12;
constexpr const char* ValueText = "21.437500";
constexpr const char* PortWords[] = {"PRE", "TEMP", "FLOW"};

/// A variable in the numbers of the store.
struct Place {
    bool ofProject;
    int slot;
    int module;
    int port;
    int variable;
};

std::string ProjectOf(int slot) {
    return "PLANT" + std::to_string(slot);
}

std::string ClientVariable(int number) {
    return "Reading" + std::to_string(number);
}

void MakeProjects() {
    static bool made = [] {
        for (int slot = 0; slot < SlotCount; ++slot) {
            const std::string project = ProjectOf(slot);
            ProjectJsonAdd(project.c_str());
            for (int number = 0; number < ModuleCapacity; ++number) {
                ProjectAddModule(project.c_str(), number, ValveType, 0, 0, 0);
            }
            for (int number = 0; number < ClientVariables; ++number) {
                ProjectVarAdd(project.c_str(), 0, ClientVariable(number).c_str());
            }
        }
        return true;
    }();
    benchmark::DoNotOptimize(made);
}

/// As many different places, one project after the other: first its variables, then ports all over its
/// modules.
std::vector<Place> Places(int count) {
    constexpr int PortsOfSlot = ModuleCapacity * PortsPerElement;
    std::vector<Place> places;
    for (int slot = 0; slot < SlotCount; ++slot) {
        for (int nth = 0; nth < ClientVariables; ++nth) places.push_back({true, slot, 0, 0, 6 + nth});
        for (int nth = 0; nth < PortsOfSlot * 3 && static_cast<int>(places.size()) < count; ++nth) {
            // A step without a factor in common with the number of ports comes by each of them.
            const int port = static_cast<int>(nth / 3 * 7919LL % PortsOfSlot);
            places.push_back({false, slot, port / PortsPerElement, port % PortsPerElement, nth % 3});
        }
    }
    places.resize(static_cast<std::size_t>(count));
    return places;
}

std::string NameOf(const Place& place) {
    const std::string project = ProjectOf(place.slot) + "_";
    if (place.ofProject) return project + ClientVariable(place.variable - 6);
    return project + "MOD" + std::to_string(place.module) + "_IM" + std::to_string(place.port) + "_" +
           PortWords[place.variable];
}

std::string Request(const std::vector<Place>& places, bool writes) {
    std::string names;
    std::string values;
    for (const Place& place : places) {
        if (!names.empty()) names += ',';
        names += '"' + NameOf(place) + '"';
        if (!values.empty()) values += ',';
        values += '"' + std::string(ValueText) + '"';
    }
    return R"({"VarName":[)" + names + (writes ? R"(],"VarValue":[)" + values : "") + "]}";
}

void BareReads(const std::vector<Place>& places) {
    std::string reply;
    for (const Place& place : places) {
        const double value = place.ofProject
                                 ? GloGet(place.slot, place.variable)
                                 : ModPortGet(place.slot, place.module, place.port, place.variable);
        vorn::AppendReal(reply, value);
    }
    benchmark::DoNotOptimize(reply);
}

void BareWrites(const std::vector<Place>& places) {
    for (const Place& place : places) {
        const double value = vorn::RealFromText(ValueText);
        if (place.ofProject) {
            w_GloSet(place.slot, place.variable, value);
        } else {
            w_ModPortSet(place.slot, place.module, place.port, place.variable, value);
        }
    }
}

template <typename Work>
double Nanoseconds(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double>& values) {
    std::nth_element(values.begin(), values.begin() + static_cast<long>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

/// Times a batch, the bare calls and the bare parse in turn; the counters are nanoseconds for each name.
template <typename Batch, typename Bare>
void Measure(benchmark::State& state, bool writes, Batch batch, Bare bare) {
    MakeProjects();
    const auto count = static_cast<int>(state.range(0));
    const std::vector<Place> places = Places(count);
    BareWrites(places);
    const std::string request = Request(places, writes);
    std::vector<double> batches;
    std::vector<double> bares;
    std::vector<double> parses;
    for (auto step : state) {
        std::string reply;
        batches.push_back(Nanoseconds([&] { batch(request.c_str(), reply); }));
        bares.push_back(Nanoseconds([&] { bare(places); }));
        parses.push_back(Nanoseconds([&] {
            rapidjson::Document document;
            document.Parse(request.c_str());
            benchmark::DoNotOptimize(document);
        }));
        if (reply.find("none") != std::string::npos) state.SkipWithError("a name was not found");
    }
    const double batchTime = Median(batches);
    const double bareTime = Median(bares);
    const double parseTime = Median(parses);
    state.counters["batch_ns"] = batchTime / count;
    state.counters["bare_ns"] = bareTime / count;
    state.counters["parse_ns"] = parseTime / count;
    state.counters["ratio"] = batchTime / (bareTime + parseTime);
}

void BatchReads(benchmark::State& state) {
    Measure(state, false, vorn::VarGetByJson, BareReads);
}

void BatchWrites(benchmark::State& state) {
    Measure(state, true, vorn::VarSetByJson, BareWrites);
}

void OneRead(benchmark::State& state) {
    MakeProjects();
    vorn::VarSetByName("PLANT1_MOD2000_IM0_TEMP", ValueText);
    for (auto step : state) benchmark::DoNotOptimize(vorn::VarGetByName("PLANT1_MOD2000_IM0_TEMP"));
}

void OneWrite(benchmark::State& state) {
    MakeProjects();
    for (auto step : state)
        benchmark::DoNotOptimize(vorn::VarSetByName("PLANT1_MOD2000_IM0_TEMP", ValueText));
}

BENCHMARK(OneRead);
BENCHMARK(OneWrite);
void Sizes(benchmark::internal::Benchmark* bench) {
    for (const int names : {1000, 10000, 1000000}) bench->Arg(names);
    bench->Unit(benchmark::kMillisecond)->MinTime(1);
}

BENCHMARK(BatchReads)->Apply(Sizes);
BENCHMARK(BatchWrites)->Apply(Sizes);

}  // namespace

BENCHMARK_MAIN();
