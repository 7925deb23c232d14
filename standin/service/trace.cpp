// The trace of an engine in service: for a person to watch.

#include "standin/trace.h"

#include <cstdlib>

#include "platform/line_queue.h"
#include "platform/visible.h"

namespace standin {

namespace {

/// Never destroyed: the engine's threads may write while the process ends.
vorn::LineQueue& Watched() {
    static vorn::LineQueue& queue = *new vorn::LineQueue(vorn::StandardStream::Error);
    return queue;
}

}  // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): one that collects keeps the line.
void TraceLine(std::string line) {
    static const bool watched = std::getenv("VORN_ENGINE_TRACE") != nullptr;
    if (watched) {
        Watched().Put("engine: " + vorn::Visible(line) + "\n");
    } else {
        traced = false;
    }
}

}  // namespace standin
