#include "transport/http_server.h"

#include <utility>

#include "platform/listen_socket.h"

namespace vorn {

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

}  // namespace vorn
