#include "host/event_pump.h"

#include <atomic>
#include <chrono>
#include <new>
#include <string>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

#include "host/counters.h"
#include "host/event_log.h"
#include "host/event_text.h"
#include "host/tell.h"
#include "service/exchange_events.h"

namespace {

constexpr std::chrono::milliseconds Beat{100};

std::atomic<bool> ends{false};
std::thread pump;

/// Lines of one take, for each of the standard streams.
struct Lines {
    bool quiet = false;
    std::string output{};
    std::string error{};

    void Add(const vorn::ExchangeEvent& event) {
        const bool poll = event.front == vorn::Front::Console && !event.writes;
        if (!quiet && !poll) output += ExchangeLine(event);
    }
    void Add(const vorn::RunStateEvent& event) {
        if (!quiet) output += RunStateLine(event);
    }
    void Add(const vorn::NoticeEvent& event) {
        if (event.kind != vorn::NoticeKind::Stored) error += event.text + "\n";
    }
};

void CountAll(const std::vector<vorn::Event>& events, const vorn::EventLoss& loss) {
    Count(loss);
    EventLossKeep(loss);
    for (const vorn::Event& event : events) {
        std::visit([](const auto& what) { Count(what); }, event.what);
    }
}

void Show(std::vector<vorn::Event>& events, const vorn::EventLoss& loss, bool quiet) {
    Lines lines{.quiet = quiet};
    for (vorn::Event& event : events) {
        std::visit([&lines](const auto& what) { lines.Add(what); }, event.what);
        EventKeep(std::move(event));
    }
    lines.error += LossLines(loss);
    if (!lines.output.empty()) Tell(lines.output);
    if (!lines.error.empty()) TellError(lines.error);
}

/// Hands on what came in that time. Where there is no memory the records are lost, and counted so.
void TakeOnce(std::vector<vorn::Event>& events, std::chrono::milliseconds wait, bool quiet) {
    bool counted = false;
    try {
        const vorn::EventLoss loss = vorn::EventsTake(events, wait);
        CountAll(events, loss);
        counted = true;
        Show(events, loss, quiet);
    } catch (const std::bad_alloc&) {
        if (counted) {
            Count(vorn::EventLoss{.excerpts = events.size()});
        } else {
            Count(vorn::EventLoss{.exchanges = events.size()});
        }
    }
}

void Run(bool quiet) {
    std::vector<vorn::Event> events;
    for (bool last = false; !last;) {
        last = ends;
        TakeOnce(events, last ? std::chrono::milliseconds(0) : Beat, quiet);
        TellRest();
    }
}

}  // namespace

void EventPumpStart(bool quiet) {
    pump = std::thread(Run, quiet);
}

void EventPumpFinish() {
    ends = true;
    pump.join();
}
