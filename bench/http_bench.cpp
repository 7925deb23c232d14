// The service over HTTP beside a bare server with the same socket options, in one process and in turn, each
// on one kept-alive connection: requests a second of both, their ratio, the median time of a request to the
// service, and the same in processor time of
// the servers.
//
// `/hi` is all transport; an `/api` word that fails early shows the envelope, the dispatcher and the log; a
// single read shows the variables too. A batch of 10,000 names has no bare counterpart but the time of its
// transport.

#include <benchmark/benchmark.h>
#include <httplib.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

#include "include/vorn_contract.h"
#include "include/vorn_server.h"
#include "platform/listen_socket.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int BarePort = 33559;
/// Requests to one server before the other has its turn; a connection serves a hundred.
constexpr int Block = 100;
constexpr int BatchNames = 10000;

struct Case {
    const char* name;
    std::string body;   ///< of a POST to `/api`; empty for a GET of `/hi`
    std::string reply;  ///< what the bare server answers to all; the service answers the same
};

std::string BatchBody() {
    std::string body = R"({"command":"Get","name":"json","messages":{"VarName":["BENCH_GTemp")";
    for (int name = 1; name < BatchNames; ++name) body += R"(,"BENCH_GTemp")";
    return body + "]}}";
}

std::string BatchReply() {
    std::string reply = R"(["0.000000")";
    for (int name = 1; name < BatchNames; ++name) reply += R"(,"0.000000")";
    return reply + "]";
}

const Case Cases[] = {
    {"Hi", "", "Hello Quelmo!\n"},
    {"ApiEarlyFailure", R"({"command":"nothing","name":"NOPROJECT"})", "项目名称找不到(project Char error)"},
    {"Read", R"({"command":"Get","name":"BENCH_GTemp"})", "0.000000"},
    {"ReadBatch10000", BatchBody(), BatchReply()},
};

/// The reply of the bare server, set before each case; nobody asks it meanwhile.
std::string bareReply;

void BareServer() {
    httplib::Server server;
    server.set_socket_options([](socket_t socket) { vorn::ListenSocketOptions(socket); });
    server.set_keep_alive_max_count(Block);
    server.Get("/hi", [](const httplib::Request&, httplib::Response& response) {
        response.set_content(bareReply, "text/plain");
    });
    server.Post("/api", [](const httplib::Request&, httplib::Response& response) {
        response.set_content(bareReply, "application/json");
    });
    server.listen("127.0.0.1", BarePort, AI_PASSIVE);
}

/// Starts both servers; gives the port of the service, the first that was free.
int ServicePort() {
    static const int found = [] {
        int port = VORN_FIRST_PORT;
        while (port <= VORN_LAST_PORT && httplib::Client("127.0.0.1", port).Get("/hi")) ++port;
        std::thread([] { HttpServerThread(nullptr); }).detach();
        std::thread(BareServer).detach();
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        httplib::Client("127.0.0.1", port)
            .Post("/api", R"({"command":"Create","name":"BENCH"})", "application/json");
        return port;
    }();
    return found;
}

bool Ask(httplib::Client& client, const Case& each) {
    const auto result =
        each.body.empty() ? client.Get("/hi") : client.Post("/api", each.body, "application/json");
    return result && result->body == each.reply;
}

/// What requests to one server took, in microseconds.
struct Times {
    std::vector<double> each{};
    double processor = 0;  ///< of the server
};

/// What all threads but this one, the client's, have used.
double ProcessorMicroseconds() {
    constexpr double MicrosecondsPerSecond = 1e6;
    timespec client{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &client);
    const double clientMicroseconds = static_cast<double>(client.tv_sec) * MicrosecondsPerSecond +
                                      static_cast<double>(client.tv_nsec) / 1e3;
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC * MicrosecondsPerSecond - clientMicroseconds;
}

/// Sends one block of requests on a connection of its own and adds their times. False when one fails.
bool RunBlock(int port, const Case& each, Times& times) {
    const double processor = ProcessorMicroseconds();
    httplib::Client client("127.0.0.1", port);
    client.set_keep_alive(true);
    client.set_tcp_nodelay(true);
    for (int request = 0; request < Block; ++request) {
        const auto start = Clock::now();
        if (!Ask(client, each)) return false;
        times.each.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
    }
    times.processor += ProcessorMicroseconds() - processor;
    return true;
}

double Median(std::vector<double>& values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

void BesideBare(benchmark::State& state, const Case& each) {
    const int port = ServicePort();
    bareReply = each.reply;
    Times bare;
    Times service;
    for (auto step : state) {
        if (RunBlock(BarePort, each, bare) && RunBlock(port, each, service)) continue;
        state.SkipWithError("no reply, or another one");
        return;
    }
    const double bareMedian = Median(bare.each);
    const double serviceMedian = Median(service.each);
    constexpr double MicrosecondsPerSecond = 1e6;
    state.counters["service_us"] = serviceMedian;
    state.counters["service_per_s"] = MicrosecondsPerSecond / serviceMedian;
    state.counters["bare_per_s"] = MicrosecondsPerSecond / bareMedian;
    state.counters["ratio"] = bareMedian / serviceMedian;
    state.counters["processor_us"] = service.processor / static_cast<double>(service.each.size());
    state.counters["processor_ratio"] = bare.processor / service.processor;
}

}  // namespace

int main(int count, char** arguments) {
    for (const Case& each : Cases) {
        benchmark::RegisterBenchmark(each.name, [&each](benchmark::State& state) { BesideBare(state, each); })
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    std::fflush(nullptr);
    // The servers' threads do not end.
    std::_Exit(0);
}
