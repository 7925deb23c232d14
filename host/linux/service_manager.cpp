#include "host/service_manager.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

/// One datagram of NAME=VALUE lines to the socket that the manager named in the environment, as sd_notify(3)
/// tells. A name that begins with `@` is abstract. What cannot be sent is not missed: the manager then acts
/// as with a program that says nothing.
void Tell(const std::string& lines) {
    const char* const name = std::getenv("NOTIFY_SOCKET");
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (name == nullptr || std::strlen(name) >= sizeof address.sun_path) return;
    std::memcpy(address.sun_path, name, std::strlen(name));
    if (name[0] == '@') address.sun_path[0] = '\0';
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + std::strlen(name));
    const int sender = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (sender < 0) return;
    sendto(sender, lines.data(), lines.size(), MSG_NOSIGNAL | MSG_DONTWAIT,
           reinterpret_cast<const sockaddr*>(&address), length);
    close(sender);
}

}  // namespace

void TellReady(std::string_view status) {
    Tell("READY=1\nSTATUS=" + std::string(status) + "\n");
}

void TellStopping() {
    Tell("STOPPING=1\n");
}
