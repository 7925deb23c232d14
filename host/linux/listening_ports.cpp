#include "host/listening_ports.h"

#include <netinet/in.h>
#include <sys/socket.h>

#include <charconv>
#include <filesystem>
#include <string>

namespace {

/// The port on which the descriptor listens at 0.0.0.0; 0 for any other descriptor.
int ListeningPort(int descriptor) {
    int listening = 0;
    socklen_t length = sizeof listening;
    if (getsockopt(descriptor, SOL_SOCKET, SO_ACCEPTCONN, &listening, &length) != 0 || listening == 0)
        return 0;
    sockaddr_in address{};
    length = sizeof address;
    // Of an address of another family only the beginning is given, and its family tells.
    if (getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &length) != 0) return 0;
    const bool everywhere = address.sin_family == AF_INET && address.sin_addr.s_addr == htonl(INADDR_ANY);
    return everywhere ? ntohs(address.sin_port) : 0;
}

}  // namespace

std::vector<int> ListeningPorts(int first, int last) {
    std::vector<int> ports;
    std::error_code error;
    std::filesystem::directory_iterator entry("/proc/self/fd", error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        int descriptor = -1;
        std::from_chars(name.data(), name.data() + name.size(), descriptor);
        const int port = ListeningPort(descriptor);
        if (port >= first && port <= last) ports.push_back(port);
    }
    return ports;
}
