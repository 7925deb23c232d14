// vorn-host: runs VornServer as a program of its own, in the place of the platform's host.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "host/console.h"
#include "host/end_signals.h"
#include "host/exchange_print.h"
#include "host/listening_ports.h"
#include "host/memory.h"
#include "host/metrics.h"
#include "host/options.h"
#include "host/pipe_rows.h"
#include "host/program_start.h"
#include "host/service_manager.h"
#include "host/tell.h"
#include "include/vorn_contract.h"
#include "include/vorn_server.h"

namespace {

using namespace std::chrono_literals;

std::atomic<bool> httpEnded{false};

/// The service threads never return, so the process ends around them.
[[noreturn]] void End(int status) {
    const auto latest = std::chrono::steady_clock::now() + 500ms;
    while (!TellRest() && std::chrono::steady_clock::now() < latest) std::this_thread::sleep_for(10ms);
    ProgramEnd(status);
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
            Tell("VornServer holds the pipe " + PipeNameOf(row) + "\n");
        } else if (last) {
            Tell("VornServer holds no pipe: a server of this directory has one already\n");
        }
        if (row >= 0 || last) return;
        std::this_thread::sleep_for(50ms);
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

void StartConsole(const ConsoleAddress& address, int port) {
    std::string fault;
    const std::string link = ConsoleStart(address, ConsoleFolder(), port, fault);
    Tell(link.empty() ? "VornServer has no console: " + fault + "\n"
                      : "VornServer shows its plants at " + link + "\n");
}

void StartMetrics(const ConsoleAddress& address) {
    std::string fault;
    const std::string place = MetricsStart(address, fault);
    Tell(place.empty() ? "VornServer serves no counters: " + fault + "\n"
                       : "VornServer counts at " + place + "\n");
}

}  // namespace

int main(int count, char** arguments) {
    MemorySetUp();
    char** const words = ProgramStart(count, arguments);
    Options options;
    const std::optional<int> ended = OptionsRead(count, words, options);
    if (ended) return *ended;
    if (options.trace) EnvironmentSet("VORN_ENGINE_TRACE", "1");
    EndSignalsHold();

    std::string fault;
    if (options.serial && !SerialStart(*options.serial, fault)) {
        TellFault(fault);
        return 1;
    }
    const std::vector<int> before = ListeningPorts(VORN_FIRST_PORT, VORN_LAST_PORT);
    StartHttp();
    StartPipe();
    int port = 0;
    while ((port = OwnPort(before)) == 0 && !httpEnded) {
        if (EndAsked(20ms)) End(0);
    }
    if (port == 0) {
        TellFault("no port of " + std::to_string(VORN_FIRST_PORT) + " to " + std::to_string(VORN_LAST_PORT) +
                  " is free");
        End(1);
    }
    const std::string answers = "VornServer answers on http://127.0.0.1:" + std::to_string(port) + "/api";
    Tell(answers + "\n");
    if (options.console) StartConsole(*options.console, port);
    if (options.metrics) StartMetrics(*options.metrics);
    TellReady(answers);

    ExchangePrinter printer([&options](const std::string& lines) {
        if (!options.quiet) Tell(lines);
        ConsoleLog(lines);
        MetricsCount(lines);
    });
    do {
        printer.Poll();
        TellRest();
        MemoryGiveBack();
    } while (!EndAsked(100ms));
    TellStopping();
    printer.Poll();
    Tell("VornServer has ended.\n");
    End(0);
}
