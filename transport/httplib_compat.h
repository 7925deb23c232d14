// The one place where versions of the HTTP library differ: what the server uses of the library's inner parts.
// With VORN_HTTPLIB_PUBLIC_ONLY none of it exists, and the server uses the library's public interface alone.

#pragma once

#include <httplib.h>

#include <functional>
#include <string>
#include <utility>

namespace vorn {

#if !VORN_HTTPLIB_PUBLIC_ONLY

/// Both ends of a connection, in numbers.
struct HttpAddresses {
    std::string remoteIp{}, localIp{};
    int remotePort = 0, localPort = 0;
};

/// The library's queue of connections. `Enqueue` must not fail.
class LibraryQueue : public httplib::TaskQueue {
  public:
    // Since 0.15 it returns whether there was room.
    using Queued =
        decltype(std::declval<httplib::TaskQueue&>().enqueue(std::declval<std::function<void()>>()));
    Queued enqueue(std::function<void()> work) final {
        Enqueue(std::move(work));
        return Queued(true);
    }

  private:
    virtual void Enqueue(std::function<void()> work) = 0;
};

/// The library's server, where it gives a connection away and takes requests from a stream.
class LibraryServer : public httplib::Server {
  protected:
    /// Serves the connection and closes its socket. Called by a worker; throws nothing.
    virtual void ServeConnection(socket_t socket) = 0;
    /// Reads one request from the stream, runs its handler and writes the reply. False when the connection
    /// cannot be used any more; `closes` says that the client or `last` ends it.
    bool ServeRequest(httplib::Stream& stream, const HttpAddresses& ends, bool last, bool& closes) {
        return Process(*this, stream, ends, last, closes);
    }

  private:
    bool process_and_close_socket(socket_t socket) final {
        ServeConnection(socket);
        return true;
    }
    // A template, so that the compiler looks only at the call that this version has: since 0.16 it takes the
    // addresses, before it asked the stream for them.
    template <class Server>
    static bool Process(Server& server, httplib::Stream& stream, const HttpAddresses& ends, bool last,
                        bool& closes) {
        if constexpr (requires {
                          server.process_request(stream, ends.remoteIp, ends.remotePort, ends.localIp,
                                                 ends.localPort, last, closes, nullptr);
                      }) {
            return server.process_request(stream, ends.remoteIp, ends.remotePort, ends.localIp,
                                          ends.localPort, last, closes, nullptr);
        } else {
            return server.process_request(stream, last, closes, nullptr);
        }
    }
};

#else

using LibraryServer = httplib::Server;

#endif

}  // namespace vorn
