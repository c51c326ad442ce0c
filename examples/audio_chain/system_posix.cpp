#include "system.h"

#include <unistd.h>

#include <atomic>
#include <csignal>

#include "failure.h"

namespace Audio {

namespace {

std::atomic<int> stopSignal{0};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler must not lock");

extern "C" void NoteStopSignal(int number) {
    stopSignal = number;
}

} // namespace

// Shells start background jobs with the interrupt ignored; it is wanted there too.
void CatchSignals() {
    for (int const number : {SIGINT, SIGTERM, SIGHUP})
        std::signal(number, &NoteStopSignal);
    std::signal(SIGXFSZ, SIG_IGN);
}

int StopSignal() {
    return stopSignal;
}

void ThrowIfInterrupted() {
    if (int const number = StopSignal())
        throw Interrupted(number);
}

bool ErrorOutputIsTerminal() {
    return isatty(STDERR_FILENO) != 0;
}

} // namespace Audio
