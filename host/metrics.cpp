#include "host/metrics.h"

#include <httplib.h>

#include <thread>

#include "host/counters.h"
#include "transport/http_server.h"

std::string MetricsStart(const ConsoleAddress& address, std::string& fault) {
    // Never destroyed: the process ends around its threads.
    auto& server = *new vorn::HttpServer;
    server.Get("/metrics", [](const httplib::Request&, httplib::Response& response) {
        response.set_content(CountersText(), "text/plain; version=0.0.4; charset=utf-8");
    });
    const int port = address.port == 0 ? MetricsPort : address.port;
    const std::string link = LinkTo(address.host, port);
    if (!server.bind_to_port(address.host, port)) {
        fault = link + " is not free";
        return {};
    }
    std::thread([&server] { server.listen_after_bind(); }).detach();
    return link + "/metrics";
}
