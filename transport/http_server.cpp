#include "transport/http_server.h"

#include <exception>

#include "platform/listen_socket.h"
#include "platform/stream_socket.h"
#include "transport/http_workers.h"

namespace vorn {

namespace {

/// This thread's request has a body that was not read whole: what follows it on the connection is no request.
thread_local bool bodyLeft = false;

int Milliseconds(time_t seconds) {
    return static_cast<int>(seconds * 1000);
}

}  // namespace

HttpServer::HttpServer() {
    new_task_queue = [] { return new HttpWorkers; };
    set_socket_options([](socket_t socket) { ListenSocketOptions(static_cast<std::intptr_t>(socket)); });
}

bool HttpServer::HasBody(const httplib::Request& request) {
    return request.has_header("Content-Length") || request.has_header("Transfer-Encoding");
}

void HttpServer::BodyTaken() {
    bodyLeft = false;
}

bool HttpServer::process_and_close_socket(socket_t socket) {
    HttpConnection connection(socket, Milliseconds(read_timeout_sec_), Milliseconds(write_timeout_sec_));
    try {
        for (std::size_t left = keep_alive_max_count_; left > 0; --left) {
            if (!connection.AwaitRequest(Milliseconds(keep_alive_timeout_sec_))) break;
            if (!Serve(connection, left == 1)) break;
        }
    } catch (const std::exception&) {
        // There was not memory enough: this connection ends.
    }
    SocketEnd(static_cast<std::intptr_t>(socket));
    return true;
}

/// True when the connection may bring another request.
bool HttpServer::Serve(HttpConnection& connection, bool last) {
    bool closes = false;
    bodyLeft = true;
    const auto headRead = [&connection](httplib::Request& request) {
        connection.HeadEnded();
        bodyLeft = HasBody(request);
        // Replies go out as they are: to pack a large one takes the library seconds for each megabyte.
        request.headers.erase("Accept-Encoding");
    };
    return process_request(connection, last, closes, headRead) && !closes && !bodyLeft;
}

}  // namespace vorn
