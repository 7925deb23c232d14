#include "host/metrics.h"

#include <httplib.h>

#include <thread>

#include "host/counters.h"
#include "transport/http_server.h"

std::string MetricsStart(const ConsoleAddress& address, std::string& fault) {
    // Never destroyed: the process ends around its threads.
    constexpr int HeadMilliseconds = 5000;
    const int port = address.port == 0 ? MetricsPort : address.port;
    auto& server = *new vorn::HttpServer({
        .bodies = false,
        .headMilliseconds = HeadMilliseconds,
        .admits =
            [host = address.host, port](const httplib::Request& request) {
                return request.get_header_value_count("Host") == 1 &&
                       vorn::HostIsOwn(request.get_header_value("Host"), host, port);
            },
        .refusal = "these counters are served to those who name their host\n",
    });
    server.Get("/metrics", [](const httplib::Request&, httplib::Response& response) {
        response.set_content(CountersText(), "text/plain; version=0.0.4; charset=utf-8");
    });
    const std::string link = LinkTo(address.host, port);
    if (!server.Bind(address.host, port)) {
        fault = link + " is not free";
        return {};
    }
    std::thread([&server] { server.listen_after_bind(); }).detach();
    return link + "/metrics";
}
