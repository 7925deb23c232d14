// The HTTP service: two routes over cpp-httplib.

#include <httplib.h>

#include <string>

#include "include/vorn_server.h"
#include "platform/listen_socket.h"
#include "service/api_envelope.h"

namespace vorn {

namespace {

constexpr int FirstPort = 33360;
constexpr int LastPort = 33459;
constexpr std::size_t RequestsPerConnection = 100;

/// Replies go out whole and with status 200: the library would cut them by a request's `Range`, and copy them
/// once for each of the thousands of ranges that one header can name. The request is the library's own and
/// changeable; only its handlers see it as constant.
void IgnoreRanges(const httplib::Request& request) {
    const_cast<httplib::Request&>(request).ranges.clear();
}

void Hi(const httplib::Request& request, httplib::Response& response) {
    IgnoreRanges(request);
    response.set_content("Hello Quelmo!\n", "text/plain");
}

/// Reads the body itself: the library would refuse one of over 8 KB that is marked as a form, and so each
/// larger document that a plain `curl -d` sends. A multipart body, which has no one text, counts as empty.
void Api(const httplib::Request& request, httplib::Response& response,
         const httplib::ContentReader& content) {
    IgnoreRanges(request);
    std::string body;
    if (request.is_multipart_form_data()) {
        content([](const httplib::MultipartFormData&) { return true; },
                [](const char*, std::size_t) { return true; });
    } else {
        content([&body](const char* data, std::size_t bytes) {
            body.append(data, bytes);
            return true;
        });
    }
    std::string reply;
    ApiEnvelope(body, reply);
    response.set_content(reply.c_str(), "application/json");
}

}  // namespace

}  // namespace vorn

void HttpServerThread(const char* const /*unused*/) {
    httplib::Server svr;
    svr.set_socket_options([](socket_t socket) { vorn::ListenSocketOptions(socket); });
    svr.set_keep_alive_max_count(vorn::RequestsPerConnection);
    svr.Get("/hi", vorn::Hi);
    svr.Post("/api", vorn::Api);
    for (int port = vorn::FirstPort; port <= vorn::LastPort; ++port) svr.listen("0.0.0.0", port, AI_PASSIVE);
}
