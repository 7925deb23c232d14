#include "platform/line_queue.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace vorn {

namespace {

constexpr std::chrono::milliseconds Pause{10};

std::size_t LinesIn(std::string_view text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace

bool LineQueue::Put(std::string_view lines) {
    const std::lock_guard guard(lock_);
    SendKept();
    if (!kept_.empty() && kept_.size() + lines.size() > limit_) {
        dropped_ += LinesIn(lines);
        return false;
    }
    AddDroppedNumber();
    kept_ += lines;
    SendKept();
    return kept_.empty();
}

bool LineQueue::Send() {
    const std::lock_guard guard(lock_);
    SendKept();
    if (kept_.empty() && dropped_ > 0) {
        AddDroppedNumber();
        SendKept();
    }
    return kept_.empty();
}

std::size_t LineQueue::Finish(Patience patience) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point latest = Clock::now() + patience.whole;
    Clock::time_point moved = Clock::now();
    std::size_t left = std::string::npos;
    while (Clock::now() < latest && Clock::now() - moved < patience.still) {
        if (lock_.try_lock()) {
            const std::lock_guard guard(lock_, std::adopt_lock);
            SendKept();
            if (kept_.empty()) AddDroppedNumber();
            if (kept_.empty()) return 0;
            if (kept_.size() < left) moved = Clock::now();
            left = kept_.size();
        }
        std::this_thread::sleep_for(Pause);
    }
    if (!lock_.try_lock()) return 0;
    const std::lock_guard guard(lock_, std::adopt_lock);
    return DropKept();
}

/// Drops what is kept and writes the number of lines, should there be room for that line by now.
std::size_t LineQueue::DropKept() {
    dropped_ += LinesIn(kept_);
    kept_.clear();
    const std::size_t dropped = dropped_;
    AddDroppedNumber();
    SendKept();
    return dropped;
}

void LineQueue::AddDroppedNumber() {
    if (dropped_ == 0) return;
    kept_ +=
        "(" + std::to_string(std::exchange(dropped_, 0)) + " lines were dropped here: nobody read them)\n";
}

void LineQueue::SendKept() {
    kept_.erase(0, WriteNow(stream_, kept_));
}

}  // namespace vorn
