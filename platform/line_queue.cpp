#include "transport/line_queue.h"

#include <algorithm>

namespace vorn {

void LineQueue::Put(std::string_view lines) {
    const std::lock_guard guard(lock_);
    SendKept();
    if (!kept_.empty() && kept_.size() + lines.size() > limit_) {
        dropped_ += static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n'));
        return;
    }
    TellDropped();
    kept_ += lines;
    SendKept();
}

bool LineQueue::Send() {
    const std::lock_guard guard(lock_);
    SendKept();
    if (kept_.empty() && dropped_ > 0) {
        TellDropped();
        SendKept();
    }
    return kept_.empty();
}

void LineQueue::TellDropped() {
    if (dropped_ == 0) return;
    kept_ += "(" + std::to_string(dropped_) + " lines were dropped here: nobody read them)\n";
    dropped_ = 0;
}

void LineQueue::SendKept() {
    kept_.erase(0, WriteNow(stream_, kept_));
}

}  // namespace vorn
