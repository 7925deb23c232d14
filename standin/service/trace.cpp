// The trace of an engine in service: for a person to watch.

#include "standin/trace.h"

#include <cstdlib>

#include "platform/notice.h"
#include "platform/visible.h"

namespace standin {

// NOLINTNEXTLINE(performance-unnecessary-value-param): one that collects keeps the line.
void TraceLine(std::string line) {
    static const bool watched = std::getenv("VORN_ENGINE_TRACE") != nullptr;
    if (watched) {
        vorn::Notice(vorn::NoticeKind::Trace, "engine: " + vorn::Visible(line));
    } else {
        traced = false;
    }
}

}  // namespace standin
