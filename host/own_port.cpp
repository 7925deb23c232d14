#include "host/own_port.h"

#include <httplib.h>
#include <unistd.h>

#include <chrono>
#include <random>
#include <thread>

#include "include/vorn_contract.h"
#include "include/vorn_server.h"

namespace {

std::string UniqueMark() {
    std::random_device random;
    return "vorn-host-" + std::to_string(getpid()) + "-" + std::to_string(random());
}

/// Sends the mark to a server that may stand on the port. True when one answers.
bool MarkSend(int port, const std::string& mark) {
    httplib::Client client("127.0.0.1", port);
    client.set_connection_timeout(1);
    client.set_read_timeout(1);
    return bool{client.Post("/api", R"({"command":"Fph","messages":")" + mark + "\"}", "application/json")};
}

/// Takes the lines with `mark` out of the log; true when there were any.
bool TakeOutMarked(std::string& log, const std::string& mark) {
    bool found = false;
    for (std::size_t at = log.find(mark); at != std::string::npos; at = log.find(mark)) {
        found = true;
        const std::size_t lineStart = at == 0 ? 0 : log.rfind('\n', at - 1) + 1;
        const std::size_t lineEnd = log.find('\n', at);
        log.erase(lineStart, lineEnd == std::string::npos ? lineEnd : lineEnd + 1 - lineStart);
    }
    return found;
}

}  // namespace

int OwnPortFind(const std::function<bool()>& waiting, const std::function<void(const std::string&)>& reads) {
    const std::string mark = UniqueMark();
    for (int port = VORN_FIRST_PORT; waiting(); port = port == VORN_LAST_PORT ? VORN_FIRST_PORT : port + 1) {
        if (port == VORN_FIRST_PORT) std::this_thread::sleep_for(std::chrono::milliseconds(20));
        if (!MarkSend(port, mark)) continue;
        RtnGet_SxGet();
        std::string log = Rtn_Get_Get();
        const bool own = TakeOutMarked(log, mark);
        if (!log.empty()) reads(log);
        if (own) return port;
    }
    return 0;
}
