#include "standin/notice.h"

#include "transport/line_queue.h"

namespace standin {

void Notice(const std::string& line) {
    // Never destroyed: the engine's threads may speak while the process ends.
    static vorn::LineQueue& queue = *new vorn::LineQueue(vorn::StandardStream::Error);
    queue.Put(line + "\n");
}

}  // namespace standin
