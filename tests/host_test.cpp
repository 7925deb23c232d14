// The host program around the library: what it tells, how it ends, what holds it up.

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "include/vorn_contract.h"
#include "tests/support/host_process.h"
#include "tests/support/service_test.h"

namespace {

using std::string;

/// A socket on the first port from `port` on that is free for it, and nobody behind it. A host that is
/// started meanwhile has it among its descriptors too.
class IdleSocket {
  public:
    IdleSocket(int family, in_addr_t address, int port, bool listens)
        : socket_(socket(family, SOCK_STREAM, 0)) {
        sockaddr_in6 wide{};
        wide.sin6_family = AF_INET6;
        sockaddr_in narrow{};
        narrow.sin_family = AF_INET;
        narrow.sin_addr.s_addr = htonl(address);
        for (bool bound = false; !bound; ++port) {
            narrow.sin_port = wide.sin6_port = htons(static_cast<in_port_t>(port));
            const bool six = family == AF_INET6;
            const auto* const at =
                six ? reinterpret_cast<const sockaddr*>(&wide) : reinterpret_cast<const sockaddr*>(&narrow);
            bound = bind(socket_, at, six ? sizeof wide : sizeof narrow) == 0 &&
                    (!listens || listen(socket_, 1) == 0);
        }
    }
    ~IdleSocket() { close(socket_); }
    IdleSocket(const IdleSocket&) = delete;
    IdleSocket& operator=(const IdleSocket&) = delete;

    bool Asked() const {
        pollfd readable{.fd = socket_, .events = POLLIN, .revents = 0};
        return poll(&readable, 1, 0) > 0 && (readable.revents & POLLIN) != 0;
    }

  private:
    int socket_;
};

TEST(HostThreadsTest, TellsItsOwnPortAndAsksNoNeighbour) {
    const IdleSocket local(AF_INET, INADDR_LOOPBACK, VORN_FIRST_PORT, true);
    const IdleSocket wide(AF_INET6, 0, VORN_FIRST_PORT, true);
    const IdleSocket silent(AF_INET, INADDR_ANY, VORN_FIRST_PORT, false);
    const IdleSocket alike(AF_INET, INADDR_ANY, VORN_FIRST_PORT, true);
    const IdleSocket beyond(AF_INET, INADDR_ANY, VORN_LAST_PORT + 1, true);
    HostProcess host;
    const auto hi = host.Client().Get("/hi");
    EXPECT_TRUE(hi && hi->body == "Hello Quelmo!\n") << host.Output();
    for (const IdleSocket* each : {&local, &wide, &alike, &beyond}) EXPECT_FALSE(each->Asked());
}

}  // namespace
