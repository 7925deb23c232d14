// vorn-host: runs VornServer as a program of its own, in the place of the platform's host.

#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>

#include "host/exchange_print.h"
#include "host/options.h"
#include "host/own_port.h"
#include "host/pipe_rows.h"
#include "include/vorn_contract.h"
#include "include/vorn_server.h"

namespace {

std::atomic<bool> httpEnded{false};

/// The signals that end the program. They are blocked in all threads and fetched by the main thread.
sigset_t EndSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    return signals;
}

/// True when an end signal has come, which this call may wait for.
bool EndAsked(const sigset_t& signals, long waitMilliseconds) {
    const timespec wait{.tv_sec = waitMilliseconds / 1000, .tv_nsec = waitMilliseconds % 1000 * 1000000};
    return sigtimedwait(&signals, nullptr, &wait) > 0;
}

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

}  // namespace

int main(int count, char** arguments) {
    Options options;
    const std::optional<int> ended = OptionsRead(count, arguments, options);
    if (ended) return *ended;
    if (options.trace) setenv("VORN_ENGINE_TRACE", "1", 1);
    const sigset_t endSignals = EndSignals();
    pthread_sigmask(SIG_BLOCK, &endSignals, nullptr);

    std::string fault;
    if (options.serial && !SerialStart(*options.serial, fault)) {
        std::fprintf(stderr, "vorn-host: %s\n", fault.c_str());
        return 1;
    }
    StartHttp();
    StartPipe();
    ExchangePrinter printer;
    bool endAsked = false;
    const int port = OwnPortFind(
        [&] {
            endAsked = EndAsked(endSignals, 0);
            return !endAsked && !httpEnded;
        },
        [&](const std::string& log) {
            if (!options.quiet) printer.Reads(log);
        });
    if (endAsked) End(0);
    if (port == 0) {
        std::fprintf(stderr, "vorn-host: no port of %d to %d is free\n", VORN_FIRST_PORT, VORN_LAST_PORT);
        End(1);
    }
    std::printf("VornServer answers on http://127.0.0.1:%d/api\n", port);
    std::fflush(stdout);

    do {
        if (!options.quiet) printer.Poll();
    } while (!EndAsked(endSignals, 100));
    if (!options.quiet) printer.Poll();
    std::puts("VornServer has ended.");
    End(0);
}
