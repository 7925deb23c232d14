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

/// Reads the whole body; false when it did not come whole. The library, left to read by itself, would refuse
/// a body of over 8 KB that is marked as a form, and so each larger document that a plain `curl -d` sends. A
/// multipart body, which has no one text, counts as empty.
bool ReadBody(const httplib::Request& request, const httplib::ContentReader& content, std::string& body) {
    if (request.is_multipart_form_data()) {
        return content([](const auto& /*part*/) { return true; },
                       [](const char*, std::size_t) { return true; });
    }
    return content([&body](const char* data, std::size_t bytes) {
        body.append(data, bytes);
        return true;
    });
}

void Api(const httplib::Request& request, httplib::Response& response,
         const httplib::ContentReader& content) {
    std::string body;
    // Half a request is not carried out: the library then answers with its own error status.
    if (!ReadBody(request, content, body)) return;
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
        svr.Post("/api", Api);
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
