// An HTTP server: the HTTP library's, where it would end the process or hold a worker for long.

#pragma once

#include <httplib.h>

#include "transport/http_connection.h"

namespace vorn {

/// Lets a client go where the library, out of memory, would end the process, and gives back what large
/// requests took. Sends replies whole and as they are, whatever `Range` and `Accept-Encoding` say. Ends a
/// connection behind a request whose body was left in it.
class HttpServer : public httplib::Server {
  public:
    HttpServer();
    /// A request that names no length has no body; the library would wait for one until the connection ends.
    static bool HasBody(const httplib::Request& request);
    /// Called by a handler that has got its request's body whole.
    static void BodyTaken();

  private:
    bool process_and_close_socket(socket_t socket) override;
    bool Serve(HttpConnection& connection, bool last);
};

}  // namespace vorn
