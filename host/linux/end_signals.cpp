#include "host/end_signals.h"

#include <pthread.h>
#include <signal.h>

namespace {

sigset_t EndSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int each : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, each);
    return signals;
}

}  // namespace

void EndSignalsHold() {
    // Threads inherit it, so that a signal waits for the one that asks.
    const sigset_t signals = EndSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

bool EndAsked(std::chrono::milliseconds wait) {
    const sigset_t signals = EndSignals();
    const timespec limit{.tv_sec = wait.count() / 1000, .tv_nsec = wait.count() % 1000 * 1000000};
    return sigtimedwait(&signals, nullptr, &limit) > 0;
}
