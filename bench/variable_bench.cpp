// Reads and writes by name: one at a time, and batches of 10,000 beside what such a batch cannot do without:
// the store's calls with the numbers' formatting or reading, and the JSON library's parse of the request. The
// counter `ratio` is the batch's time over the sum of these two; no more than 2 is expected.
//
// The project is at full capacity: all its modules are there, and all its rows of project variables taken.

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

constexpr int BatchNames = 10000;
constexpr int ClientVariables = 250;
constexpr int ValveType = 12;
constexpr const char* ValueText = "21.437500";
constexpr const char* PortWords[] = {"PRE", "TEMP", "FLOW"};

/// A variable in the numbers of the store.
struct Place {
    bool ofProject;
    int module;
    int port;
    int variable;
};

std::string ClientVariable(int number) {
    return "Reading" + std::to_string(number);
}

void MakeProject() {
    static const bool made = [] {
        ProjectJsonAdd("PLANT1");
        for (int number = 0; number < ModuleCapacity; ++number) {
            ProjectAddModule("PLANT1", number, ValveType, 0, 0, 0);
        }
        for (int number = 0; number < ClientVariables; ++number) {
            ProjectVarAdd("PLANT1", 0, ClientVariable(number).c_str());
        }
        return true;
    }();
    benchmark::DoNotOptimize(made);
}

/// The places of a batch. Every fourth is a variable of the project, the others are of ports all over it.
const std::vector<Place>& Places() {
    static const std::vector<Place> places = [] {
        std::vector<Place> made;
        for (int position = 0; position < BatchNames; ++position) {
            const int scattered = static_cast<int>(position * 7919LL % ModuleCapacity);
            made.push_back(position % 4 == 0 ? Place{true, 0, 0, 6 + position / 4 % ClientVariables}
                                             : Place{false, scattered, position / 4 % 2, position % 3});
        }
        return made;
    }();
    return places;
}

std::string NameOf(const Place& place) {
    if (place.ofProject) return "PLANT1_" + ClientVariable(place.variable - 6);
    return "PLANT1_MOD" + std::to_string(place.module) + "_IM" + std::to_string(place.port) + "_" +
           PortWords[place.variable];
}

std::string Request(bool writes) {
    std::string names;
    std::string values;
    for (const Place& place : Places()) {
        if (!names.empty()) names += ',';
        names += '"' + NameOf(place) + '"';
        if (!values.empty()) values += ',';
        values += '"' + std::string(ValueText) + '"';
    }
    return R"({"VarName":[)" + names + (writes ? R"(],"VarValue":[)" + values : "") + "]}";
}

void BareReads() {
    std::string reply;
    for (const Place& place : Places()) {
        const double value = place.ofProject ? GloGet(0, place.variable)
                                             : ModPortGet(0, place.module, place.port, place.variable);
        vorn::AppendReal(reply, value);
    }
    benchmark::DoNotOptimize(reply);
}

void BareWrites() {
    for (const Place& place : Places()) {
        const double value = vorn::RealFromText(ValueText);
        if (place.ofProject) {
            w_GloSet(0, place.variable, value);
        } else {
            w_ModPortSet(0, place.module, place.port, place.variable, value);
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
    MakeProject();
    BareWrites();
    const std::string request = Request(writes);
    std::vector<double> batches;
    std::vector<double> bares;
    std::vector<double> parses;
    for (auto step : state) {
        std::string reply;
        batches.push_back(Nanoseconds([&] { batch(request.c_str(), reply); }));
        bares.push_back(Nanoseconds(bare));
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
    state.counters["batch_ns"] = batchTime / BatchNames;
    state.counters["bare_ns"] = bareTime / BatchNames;
    state.counters["parse_ns"] = parseTime / BatchNames;
    state.counters["ratio"] = batchTime / (bareTime + parseTime);
}

void BatchReads(benchmark::State& state) {
    Measure(state, false, vorn::VarGetByJson, BareReads);
}

void BatchWrites(benchmark::State& state) {
    Measure(state, true, vorn::VarSetByJson, BareWrites);
}

void OneRead(benchmark::State& state) {
    MakeProject();
    vorn::VarSetByName("PLANT1_MOD2000_IM0_TEMP", ValueText);
    for (auto step : state) benchmark::DoNotOptimize(vorn::VarGetByName("PLANT1_MOD2000_IM0_TEMP"));
}

void OneWrite(benchmark::State& state) {
    MakeProject();
    for (auto step : state)
        benchmark::DoNotOptimize(vorn::VarSetByName("PLANT1_MOD2000_IM0_TEMP", ValueText));
}

BENCHMARK(OneRead);
BENCHMARK(OneWrite);
BENCHMARK(BatchReads)->Unit(benchmark::kMillisecond)->MinTime(1);
BENCHMARK(BatchWrites)->Unit(benchmark::kMillisecond)->MinTime(1);

}  // namespace

BENCHMARK_MAIN();
