// vorn-host: runs VornServer as a program of its own, in the place of the platform's host.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "host/end_signals.h"
#include "host/exchange_print.h"
#include "host/listening_ports.h"
#include "host/options.h"
#include "host/pipe_rows.h"
#include "include/vorn_contract.h"
#include "include/vorn_server.h"

namespace {

using namespace std::chrono_literals;

std::atomic<bool> httpEnded{false};

/// The service threads never return, so the process ends around them.
[[noreturn]] void End(int status) {
    std::fflush(nullptr);
    std::_Exit(status);
}

void StartHttp() {
    std::thread([] {
        HttpServerThread(nullptr);
        httpEnded = true;
    }).detach();
}

void TellPipe(const std::atomic<bool>& ended) {
    for (;;) {
        const bool last = ended;
        const int row = PipeRowFind(false);
        if (row >= 0) {
            std::printf("VornServer holds the pipe %s\n", PipeNameOf(row).c_str());
        } else if (last) {
            std::puts("VornServer holds no pipe: a server of this directory has one already");
        }
        std::fflush(stdout);
        if (row >= 0 || last) return;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

void StartPipe() {
    static std::atomic<bool> ended{false};
    std::thread([] {
        PipeServerThread(nullptr);
        ended = true;
    }).detach();
    std::thread([] { TellPipe(ended); }).detach();
}

/// The service's port, 0 while it has none. What was listened on before it started is not the service's.
int OwnPort(const std::vector<int>& before) {
    for (const int port : ListeningPorts(VORN_FIRST_PORT, VORN_LAST_PORT)) {
        if (std::find(before.begin(), before.end(), port) == before.end()) return port;
    }
    return 0;
}

}  // namespace

int main(int count, char** arguments) {
    Options options;
    const std::optional<int> ended = OptionsRead(count, arguments, options);
    if (ended) return *ended;
    if (options.trace) setenv("VORN_ENGINE_TRACE", "1", 1);
    EndSignalsHold();

    std::string fault;
    if (options.serial && !SerialStart(*options.serial, fault)) {
        std::fprintf(stderr, "vorn-host: %s\n", fault.c_str());
        return 1;
    }
    const std::vector<int> before = ListeningPorts(VORN_FIRST_PORT, VORN_LAST_PORT);
    StartHttp();
    StartPipe();
    ExchangePrinter printer;
    int port = 0;
    while ((port = OwnPort(before)) == 0 && !httpEnded) {
        if (EndAsked(20ms)) End(0);
    }
    if (port == 0) {
        std::fprintf(stderr, "vorn-host: no port of %d to %d is free\n", VORN_FIRST_PORT, VORN_LAST_PORT);
        End(1);
    }
    std::printf("VornServer answers on http://127.0.0.1:%d/api\n", port);
    std::fflush(stdout);

    do {
        if (!options.quiet) printer.Poll();
    } while (!EndAsked(100ms));
    if (!options.quiet) printer.Poll();
    std::puts("VornServer has ended.");
    End(0);
}
