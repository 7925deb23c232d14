#include "host/end_signals.h"

#include <pthread.h>
#include <signal.h>

namespace {

/// True for a signal that whoever started the program has it ignore, as `nohup` does.
bool Ignored(int signal) {
    struct sigaction action {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

/// An ignored signal is none of these: held back, it would come all the same.
sigset_t EndSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int each : {SIGINT, SIGTERM, SIGHUP}) {
        if (!Ignored(each)) sigaddset(&signals, each);
    }
    return signals;
}

}  // namespace

void EndSignalsHold() {
    // Threads inherit it, so that a signal waits for the one that asks.
    const sigset_t signals = EndSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    for (const int each : {SIGPIPE, SIGXFSZ}) signal(each, SIG_IGN);
}

bool EndAsked(std::chrono::milliseconds wait) {
    const sigset_t signals = EndSignals();
    const timespec limit{.tv_sec = wait.count() / 1000, .tv_nsec = wait.count() % 1000 * 1000000};
    return sigtimedwait(&signals, nullptr, &limit) > 0;
}
