// The trace of an engine in service: for a person to watch.

#include "standin/trace.h"

#include <cstdlib>

#include "platform/visible.h"
#include "standin/notice.h"

namespace standin {

// NOLINTNEXTLINE(performance-unnecessary-value-param): one that collects keeps the line.
void TraceLine(std::string line) {
    static const bool watched = std::getenv("VORN_ENGINE_TRACE") != nullptr;
    if (watched) {
        Notice("engine: " + vorn::Visible(line));
    } else {
        traced = false;
    }
}

}  // namespace standin
