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

void TellFault(std::string_view fault) {
    Faults().Put("vorn-host: " + std::string(fault) + "\n");
}

bool TellRest() {
    const bool outputSent = Output().Send();
    return Faults().Send() && outputSent;
}
