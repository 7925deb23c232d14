// An HTTP server: the HTTP library's, with a bounded door before it.

#pragma once

#include <functional>
#include <string>

#include "transport/http_rules.h"
#include "transport/httplib_compat.h"

namespace vorn {

#if !VORN_HTTPLIB_PUBLIC_ONLY
class HttpConnection;
#endif

/// Refuses a request whose end is in doubt, or whose body is packed, before anything of it is run, and ends
/// the connection (`transport/http_head.h`). Sends replies whole and as they are, whatever `Range` and
/// `Accept-Encoding` say. Ends a connection behind a request whose body was left in it. Lets a client go
/// where the library, out of memory, would end the process.
class HttpServer : public LibraryServer {
  public:
    explicit HttpServer(HttpRules rules = {});
    /// Takes the port; `listen_after_bind` then serves it. False when it is not free: an object that has
    /// failed takes no further port, so that each is tried with a fresh one.
    bool Bind(const std::string& host, int port);

    /// Answers a request with its whole body; a multipart body, which has no one text, counts as empty.
    using BodyHandler =
        std::function<void(const httplib::Request&, const std::string& body, httplib::Response&)>;
    /// Runs `handler` for each `POST` to `path`, a regular expression. A request whose body did not end as it
    /// must is not run: the library's status answers it, or 400 where the library saw no fault.
    void PostWhole(const std::string& path, BodyHandler handler);

#if !VORN_HTTPLIB_PUBLIC_ONLY
  protected:
    void ServeConnection(socket_t socket) override;
#endif

  private:
    /// What depends on how much of the library is used.
    void Prepare();
    bool Admits(const httplib::Request& request, httplib::Response& response) const;
    /// The body of the request that this thread serves was read up to its correct end, as far as this build
    /// can see it.
    static bool BodyEnded();
#if !VORN_HTTPLIB_PUBLIC_ONLY
    bool Serve(HttpConnection& connection, bool last);
#endif

    HttpRules rules_;
    socket_t listening_{};
};

}  // namespace vorn
