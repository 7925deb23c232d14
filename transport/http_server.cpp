#include "transport/http_server.h"

#include <utility>

#include "platform/listen_socket.h"

namespace vorn {

namespace {

/// Reads the whole body; false when it did not come whole. The library, left to read by itself, would refuse
/// a body of over 8 KB that is marked as a form, and so each larger document that a plain `curl -d` sends.
bool BodyRead(const httplib::Request& request, const httplib::ContentReader& content, std::string& body) {
    if (request.is_multipart_form_data()) {
        return content([](const auto& /*part*/) { return true; },
                       [](const char*, std::size_t) { return true; });
    }
    return content([&body](const char* data, std::size_t bytes) {
        body.append(data, bytes);
        return true;
    });
}

}  // namespace

HttpServer::HttpServer(HttpRules rules) : rules_(std::move(rules)) {
    set_socket_options([this](socket_t socket) {
        listening_ = socket;
        ListenSocketOptions(static_cast<std::intptr_t>(socket));
    });
    set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
        return Admits(request, response) ? HandlerResponse::Unhandled : HandlerResponse::Handled;
    });
    Prepare();
}

bool HttpServer::Bind(const std::string& host, int port) {
    if (!bind_to_port(host, port, AI_PASSIVE)) return false;
    ListenLonger(static_cast<std::intptr_t>(listening_));
    return true;
}

void HttpServer::PostWhole(const std::string& path, BodyHandler handler) {
    Post(path, [run = std::move(handler)](const httplib::Request& request, httplib::Response& response,
                                          const httplib::ContentReader& content) {
        constexpr int BadRequest = 400;
        std::string body;
        // Half a request is not carried out: the library then answers with its own error status.
        if (!BodyRead(request, content, body)) return;
        // Some versions of the library pass over a fault behind the last chunk.
        if (BodyEnded()) {
            run(request, body, response);
        } else {
            response.status = BadRequest;
        }
    });
}

}  // namespace vorn
