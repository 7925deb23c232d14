// The server over inner parts of the HTTP library.

#include <algorithm>
#include <array>
#include <chrono>
#include <exception>

#include "platform/stream_socket.h"
#include "transport/http_connection.h"
#include "transport/http_server.h"
#include "transport/http_workers.h"

namespace vorn {

namespace {

constexpr std::size_t RequestsPerConnection = 100;
/// For a client that still sends what nobody reads: it could else lose its answer.
constexpr int LingerMilliseconds = 1000;

/// What this thread serves, while it serves one.
thread_local const HttpConnection* served = nullptr;

/// Ends a connection. What came and was not read is taken out first: left there, it would cost the client the
/// end of its reply. The client has so long to send more of it and to end.
void LetGo(std::intptr_t socket, int milliseconds) {
    using Clock = std::chrono::steady_clock;
    constexpr int PiecesAtMost = 64;  // without a time of its own
    SocketEndSending(socket);
    const Clock::time_point until = Clock::now() + std::chrono::milliseconds(milliseconds);
    std::array<char, 65536> rest;
    for (int piece = 0; piece < PiecesAtMost || Clock::now() < until; ++piece) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now()).count();
        const int wait = static_cast<int>(std::max<std::int64_t>(left, 0));
        if (!SocketAwait(socket, wait) || SocketRead(socket, rest.data(), rest.size()) <= 0) break;
    }
    SocketClose(socket);
}

}  // namespace

void HttpServer::Prepare() {
    new_task_queue = [] { return new HttpWorkers; };
    set_keep_alive_max_count(RequestsPerConnection);
}

bool HttpServer::Admits(const httplib::Request& request, httplib::Response& response) const {
    if (!rules_.admits || rules_.admits(request)) return true;
    constexpr int Forbidden = 403;
    response.status = Forbidden;
    response.set_content(rules_.refusal, "text/plain");
    return false;
}

bool HttpServer::BodyEnded() {
    return served != nullptr && served->RequestTaken();
}

void HttpServer::ServeConnection(socket_t socket) {
    int linger = 0;
    try {
        HttpConnection connection(socket, rules_);
        for (std::size_t left = RequestsPerConnection; left > 0; --left) {
            if (!connection.TakeHead() || !Serve(connection, left == 1)) break;
        }
        if (!connection.RequestTaken()) linger = LingerMilliseconds;
    } catch (const std::exception&) {
        // Out of memory: this connection ends.
    }
    LetGo(static_cast<std::intptr_t>(socket), linger);
}

/// True when the connection may bring another request.
bool HttpServer::Serve(HttpConnection& connection, bool last) {
    bool closes = false;
    served = &connection;
    const bool usable = ServeRequest(connection, connection.Ends(), last, closes);
    return connection.Flush() && usable && !closes && connection.RequestTaken();
}

}  // namespace vorn
