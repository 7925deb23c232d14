// The HTTP service: two routes over cpp-httplib.

#include <httplib.h>

#include <algorithm>
#include <string>

#include "include/vorn_contract.h"
#include "include/vorn_server.h"
#include "platform/listen_socket.h"
#include "service/api_envelope.h"

namespace vorn {

namespace {

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

/// A request that names no length has no body; the library would wait for one until the connection ends.
bool HasBody(const httplib::Request& request) {
    return request.has_header("Content-Length") || request.has_header("Transfer-Encoding");
}

/// Reads the whole body; false when it did not come whole. The library, left to read by itself, would refuse
/// a body of over 8 KB that is marked as a form, and so each larger document that a plain `curl -d` sends. A
/// multipart body, which has no one text, counts as empty.
bool ReadBody(const httplib::Request& request, const httplib::ContentReader& content, std::string& body) {
    if (!HasBody(request)) return true;
    if (request.is_multipart_form_data()) {
        return content([](const httplib::MultipartFormData&) { return true; },
                       [](const char*, std::size_t) { return true; });
    }
    return content([&body](const char* data, std::size_t bytes) {
        body.append(data, bytes);
        return true;
    });
}

void Api(const httplib::Request& request, httplib::Response& response,
         const httplib::ContentReader& content) {
    IgnoreRanges(request);
    std::string body;
    // Half a request is not carried out: the library then answers with its own error status.
    if (!ReadBody(request, content, body)) return;
    std::string reply;
    ApiEnvelope(body, reply);
    // A reply ends at its first zero byte.
    reply.resize(std::min(reply.find('\0'), reply.size()));
    response.set_content(reply, "application/json");
}

}  // namespace

}  // namespace vorn

void HttpServerThread(const char* const /*unused*/) {
    httplib::Server svr;
    svr.set_socket_options([](socket_t socket) { vorn::ListenSocketOptions(socket); });
    svr.set_keep_alive_max_count(vorn::RequestsPerConnection);
    svr.Get("/hi", vorn::Hi);
    svr.Post("/api", vorn::Api);
    for (int port = VORN_FIRST_PORT; port <= VORN_LAST_PORT; ++port) svr.listen("0.0.0.0", port, AI_PASSIVE);
}
