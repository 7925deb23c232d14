#include "platform/notice.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <string>
#include <thread>

#include "platform/line_queue.h"

namespace vorn {

namespace {

constexpr std::chrono::milliseconds Pause{20};

// Never destroyed: the engine's threads may report while the process ends.
LineQueue& ErrorLines() {
    static LineQueue& queue = *new LineQueue(StandardStream::Error);
    return queue;
}

/// True while a thread writes what is left.
std::atomic<bool> sends{false};

void SendUntilEmpty() {
    do {
        while (!ErrorLines().Send()) std::this_thread::sleep_for(Pause);
        sends = false;
        // What was kept since the last look found `sends` still set.
    } while (!ErrorLines().Send() && !sends.exchange(true));
}

/// Sees to it that what was kept is written without another notice.
void SendLater() {
    static const int registered = std::atexit([] { ErrorLines().Finish(); });
    static_cast<void>(registered);
    if (sends.exchange(true)) return;
    try {
        std::thread(SendUntilEmpty).detach();
    } catch (const std::exception&) {
        sends = false;  // it goes with the next notice, or at the end
    }
}

void WriteToError(NoticeKind kind, std::string_view line) {
    if (kind == NoticeKind::Stored) return;
    if (!ErrorLines().Put(std::string(line) + "\n")) SendLater();
}

std::atomic<NoticeSink> sink{WriteToError};

}  // namespace

void Notice(NoticeKind kind, std::string_view line) {
    sink.load()(kind, line);
}

void NoticeSinkSet(NoticeSink next) {
    sink = next;
}

}  // namespace vorn
