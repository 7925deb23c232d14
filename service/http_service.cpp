// The HTTP service: two routes over cpp-httplib.

#include <httplib.h>

#include <algorithm>
#include <exception>
#include <string>

#include "include/vorn_contract.h"
#include "include/vorn_server.h"
#include "service/api_envelope.h"
#include "service/service_places.h"
#include "transport/http_server.h"

namespace vorn {

namespace {

void Hi(const httplib::Request& /*request*/, httplib::Response& response) {
    response.set_content("Hello Quelmo!\n", "text/plain");
}

void Api(const httplib::Request& request, const std::string& body, httplib::Response& response) {
    std::string reply;
    ApiEnvelope(body, reply, {.front = Front::Http, .peer = request.remote_addr});
    // A reply ends at its first zero byte.
    reply.resize(std::min(reply.find('\0'), reply.size()));
    response.set_content(reply, "application/json");
}

void Serve() {
    for (int port = VORN_FIRST_PORT; port <= VORN_LAST_PORT; ++port) {
        HttpServer svr;
        svr.Get("/hi", Hi);
        svr.PostWhole("/api", Api);
        if (!svr.Bind("0.0.0.0", port)) continue;
        HttpPort = port;
        svr.listen_after_bind();
        HttpPort = 0;
    }
}

}  // namespace

}  // namespace vorn

void HttpServerThread(const char* const /*unused*/) {
    try {
        vorn::Serve();
    } catch (const std::exception&) {
        // Not even the memory to begin with: no service then, as where no port is free.
    }
}
