#include "host/tell.h"

#include <string>

#include "platform/line_queue.h"

namespace {

/// Never destroyed: threads may speak while the process ends.
vorn::LineQueue& Output() {
    static vorn::LineQueue& queue = *new vorn::LineQueue(vorn::StandardStream::Output);
    return queue;
}

vorn::LineQueue& Faults() {
    static vorn::LineQueue& queue = *new vorn::LineQueue(vorn::StandardStream::Error);
    return queue;
}

}  // namespace

void Tell(std::string_view lines) {
    Output().Put(lines);
}

void TellError(std::string_view lines) {
    Faults().Put(lines);
}

void TellFault(std::string_view fault) {
    Faults().Put("vorn-host: " + std::string(fault) + "\n");
}

void TellRest() {
    Output().Send();
    Faults().Send();
}

void TellFinish() {
    const std::size_t dropped = Output().Finish();
    if (dropped > 0)
        TellFault(std::to_string(dropped) + " lines of standard output were dropped: nobody read them");
    Faults().Finish();
}
