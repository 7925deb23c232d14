// vorn-host: runs VornServer as a program of its own, in the place of the platform's host.

#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <thread>

#include "host/console.h"
#include "host/console_files.h"
#include "host/end_signals.h"
#include "host/event_pump.h"
#include "host/memory.h"
#include "host/metrics.h"
#include "host/options.h"
#include "host/pipe_rows.h"
#include "host/program_start.h"
#include "host/service_manager.h"
#include "host/tell.h"
#include "include/vorn_contract.h"
#include "include/vorn_server.h"
#include "service/exchange.h"
#include "service/exchange_events.h"
#include "service/service_places.h"

namespace {

using namespace std::chrono_literals;

std::atomic<bool> httpEnded{false};

/// The service threads never return, so the process ends around them.
[[noreturn]] void End(int status) {
    TellFinish();
    ProgramEnd(status);
}

/// Lets the request that runs come to its end, a store above all, and its reply go out.
[[noreturn]] void EndAfterRequests() {
    constexpr auto RequestAtMost = 10s;
    constexpr auto ReplyTime = 50ms;
    TellStopping();
    if (!vorn::ExchangesEnd(RequestAtMost)) TellFault("a request still ran when the program ended");
    std::this_thread::sleep_for(ReplyTime);
    EventPumpFinish();
    Tell("VornServer has ended.\n");
    End(0);
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
        const int row = vorn::PipeSlot;
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

void StartConsole(const ConsoleAddress& address) {
    std::string fault;
    const std::string link = ConsoleStart(address, ConsoleFolder(), fault);
    Tell(link.empty() ? "VornServer has no console: " + fault + "\n"
                      : "VornServer shows its plants at " + link + "\n");
}

void StartMetrics(const ConsoleAddress& address) {
    std::string fault;
    const std::string place = MetricsStart(address, fault);
    Tell(place.empty() ? "VornServer serves no counters: " + fault + "\n"
                       : "VornServer counts at " + place + "\n");
}

/// Waits until the service has its port; ends the program where it gets none.
int PortAwait() {
    for (;;) {
        const bool ended = httpEnded;
        if (const int port = vorn::HttpPort; port != 0) return port;
        if (ended) {
            TellFault("no port of " + std::to_string(VORN_FIRST_PORT) + " to " +
                      std::to_string(VORN_LAST_PORT) + " is free");
            End(1);
        }
        if (EndAsked(20ms)) End(0);
    }
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
    vorn::EventsObserve();
    EventPumpStart(options.quiet);

    std::string fault;
    if (options.serial && !SerialStart(*options.serial, fault)) {
        TellFault(fault);
        End(1);
    }
    StartHttp();
    StartPipe();
    const std::string answers =
        "VornServer answers on http://127.0.0.1:" + std::to_string(PortAwait()) + "/api";
    Tell(answers + "\n");
    if (options.console) StartConsole(*options.console);
    if (options.metrics) StartMetrics(*options.metrics);
    TellReady(answers);
    while (!EndAsked(100ms)) MemoryGiveBack();
    EndAfterRequests();
}
