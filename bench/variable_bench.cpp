// Reads and writes by name: one at a time, and batches of different names beside what such a batch cannot do
// without: the store's calls with the numbers' formatting or reading, and the JSON library's parse of the
// request. The counter `ratio` is the batch's time over the sum of these two. No more than 1 is expected of
// 1,000 names, envelope and log included. `batch_ns`, the time a name, is expected to be that of a small
// batch in a large one too.
//
// All eight slots hold a project of the full number of modules, and each project variable of clients is
// taken.

#include <benchmark/benchmark.h>
#include <rapidjson/document.h>

#include <charconv>
#include <iterator>
#include <string>
#include <vector>

#include "bench/best.h"
#include "engine/vorn_core.h"
#include "engine/vorn_var.h"
#include "service/api_envelope.h"
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

void ProjectMake(int slot) {
    const std::string project = ProjectOf(slot);
    ProjectJsonAdd(project.c_str());
    for (int number = 0; number < ModuleCapacity; ++number) {
        ProjectAddModule(project.c_str(), number, ValveType, 0, 0, 0);
    }
    for (int number = 0; number < ClientVariables; ++number) {
        ProjectVarAdd(project.c_str(), 0, ClientVariable(number).c_str());
    }
}

void MakeProjects() {
    for (static int slot = 0; slot < SlotCount; ++slot) ProjectMake(slot);
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

/// The numbers as the C++ library writes them.
void BareReads(const std::vector<Place>& places) {
    std::string reply;
    char text[400];
    for (const Place& place : places) {
        const double value = place.ofProject
                                 ? GloGet(place.slot, place.variable)
                                 : ModPortGet(place.slot, place.module, place.port, place.variable);
        reply.append(text, std::to_chars(text, std::end(text), value, std::chars_format::fixed, 6).ptr);
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

/// Takes a batch, the bare calls and the bare parse in turn; the counters are nanoseconds for each name.
template <typename Batch, typename Bare>
void Measure(benchmark::State& state, bool writes, const std::string& before, const std::string& behind,
             Batch batch, Bare bare) {
    MakeProjects();
    const auto count = static_cast<int>(state.range(0));
    const std::vector<Place> places = Places(count);
    BareWrites(places);
    const std::string request = Request(places, writes);
    const std::string body = before + request + behind;
    const int runs = 1 + 20000 / count;
    bench::Best batches{runs};
    bench::Best bares{runs};
    bench::Best parses{runs};
    std::string reply;
    for (auto step : state) {
        batches.Take([&] { batch(body, reply); });
        bares.Take([&] { bare(places); });
        parses.Take([&] {
            rapidjson::Document document;
            document.Parse(request.c_str());
            benchmark::ClobberMemory();
        });
        if (reply.size() < 2 || reply.find("none") != std::string::npos) {
            state.SkipWithError("a name was not found");
        }
    }
    constexpr double Nanoseconds = 1000;
    state.counters["batch_ns"] = batches.time * Nanoseconds / count;
    state.counters["bare_ns"] = bares.time * Nanoseconds / count;
    state.counters["parse_ns"] = parses.time * Nanoseconds / count;
    state.counters["ratio"] = batches.time / (bares.time + parses.time);
}

void BatchReads(benchmark::State& state) {
    const auto batch = [](const std::string& body, std::string& reply) {
        vorn::VarGetByJson(body.c_str(), reply);
    };
    Measure(state, false, "", "", batch, BareReads);
}

void BatchWrites(benchmark::State& state) {
    const auto batch = [](const std::string& body, std::string& reply) {
        vorn::VarSetByJson(body.c_str(), reply);
    };
    Measure(state, true, "", "", batch, BareWrites);
}

void Ask(const std::string& body, std::string& reply) {
    vorn::ApiEnvelope(body, reply);
}

/// The batch as clients send it: in an envelope, logged, under the lock of the dispatcher.
void EnvelopeReads(benchmark::State& state) {
    Measure(state, false, R"({"command":"Get","name":"json","messages":)", "}", Ask, BareReads);
}

void EnvelopeWrites(benchmark::State& state) {
    Measure(state, true, R"({"command":"Set","name":"json","messages":)", "}", Ask, BareWrites);
}

void OneRead(benchmark::State& state) {
    MakeProjects();
    vorn::VarSetByName("PLANT1_MOD2000_IM0_TEMP", ValueText);
    for (auto step : state) {
        std::string value = vorn::VarGetByName("PLANT1_MOD2000_IM0_TEMP");
        benchmark::DoNotOptimize(value);
    }
}

void OneWrite(benchmark::State& state) {
    MakeProjects();
    for (auto step : state) {
        const char* answer = vorn::VarSetByName("PLANT1_MOD2000_IM0_TEMP", ValueText);
        benchmark::DoNotOptimize(answer);
    }
}

BENCHMARK(OneRead);
BENCHMARK(OneWrite);
void Sizes(benchmark::internal::Benchmark* bench) {
    for (const int names : {1000, 10000, 1000000}) bench->Arg(names);
    bench->Unit(benchmark::kMillisecond)->MinTime(1);
}

BENCHMARK(EnvelopeReads)->Apply(Sizes);
BENCHMARK(EnvelopeWrites)->Apply(Sizes);
BENCHMARK(BatchReads)->Apply(Sizes);
BENCHMARK(BatchWrites)->Apply(Sizes);

}  // namespace

BENCHMARK_MAIN();
