// The service's requests a second on one kept-alive connection, beside those of a bare server with the same
// socket options in the same process, and the median time of a request.
//
// `/hi` is all transport; the `/api` word fails early, so that it shows the envelope, the dispatcher and the
// log.

#include <benchmark/benchmark.h>
#include <httplib.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "include/vorn_server.h"
#include "platform/listen_socket.h"

namespace {

constexpr int BarePort = 33559;
constexpr int FirstPort = 33360;
constexpr int LastPort = 33459;
const std::string EarlyFailure = R"({"command":"nothing","name":"NOPROJECT","messages":{}})";
const std::string EarlyReply = "项目名称找不到(project Char error)";

void BareServer() {
    httplib::Server server;
    server.set_socket_options([](socket_t socket) { vorn::ListenSocketOptions(socket); });
    server.set_keep_alive_max_count(100);
    server.Get("/hi", [](const httplib::Request&, httplib::Response& response) {
        response.set_content("Hello Quelmo!\n", "text/plain");
    });
    server.Post("/api", [](const httplib::Request&, httplib::Response& response) {
        response.set_content(EarlyReply, "application/json");
    });
    server.listen("127.0.0.1", BarePort, AI_PASSIVE);
}

/// The port on which the service of this process stands: the first that was free before it started.
int ServicePort() {
    static const int found = [] {
        int port = FirstPort;
        while (port <= LastPort && httplib::Client("127.0.0.1", port).Get("/hi")) ++port;
        std::thread([] { HttpServerThread(nullptr); }).detach();
        std::thread(BareServer).detach();
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        return port;
    }();
    return found;
}

/// Runs `request` over and over on one connection; reports the median beside the rate.
template <typename Ask>
void Measure(benchmark::State& state, int port, Ask ask) {
    httplib::Client client("127.0.0.1", port);
    client.set_keep_alive(true);
    client.set_tcp_nodelay(true);
    std::vector<double> microseconds;
    for (auto step : state) {
        const auto start = std::chrono::steady_clock::now();
        if (!ask(client)) {
            state.SkipWithError("no reply");
            return;
        }
        microseconds.push_back(
            std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
    }
    const auto middle = microseconds.begin() + static_cast<std::ptrdiff_t>(microseconds.size() / 2);
    std::nth_element(microseconds.begin(), middle, microseconds.end());
    state.counters["median_us"] = *middle;
    state.counters["requests_per_s"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

bool Hi(httplib::Client& client) {
    return bool{client.Get("/hi")};
}

bool Api(httplib::Client& client) {
    const auto result = client.Post("/api", EarlyFailure, "application/json");
    return result && result->body == EarlyReply;
}

void BM_HiBare(benchmark::State& state) {
    ServicePort();
    Measure(state, BarePort, Hi);
}
void BM_HiService(benchmark::State& state) {
    Measure(state, ServicePort(), Hi);
}
void BM_ApiBare(benchmark::State& state) {
    ServicePort();
    Measure(state, BarePort, Api);
}
void BM_ApiService(benchmark::State& state) {
    Measure(state, ServicePort(), Api);
}

BENCHMARK(BM_HiBare)->UseRealTime();
BENCHMARK(BM_HiService)->UseRealTime();
BENCHMARK(BM_ApiBare)->UseRealTime();
BENCHMARK(BM_ApiService)->UseRealTime();

}  // namespace

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    std::fflush(nullptr);
    // The servers' threads do not end.
    std::_Exit(0);
}
