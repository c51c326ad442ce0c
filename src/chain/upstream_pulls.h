// Keeps a pull link's task from pulling at a predecessor that is being stopped.
#pragma once

#include <atomic>
#include <cstdint>

#include "qmt/general/events.h"
#include "qmt/general/threads.h"

namespace QMT {

// The task makes its pulls through `Pull`; a stop closes the way before it passes upstream. Closing waits for
// a pull under way, so that afterwards nothing is pulled. Several stops may have it closed at a time. While
// it is open a pull costs two atomic operations and no lock.
class UpstreamPulls {
public:
    UpstreamPulls() { pullHasEndedOnly.Add(&pullHasEnded); }

    // The task's thread: runs `pull()` unless the way is closed.
    template <typename PullFunction>
    void Pull(PullFunction pull) {
        bool const isOpen = state.fetch_or(inside) < oneClosing;
        if (isOpen)
            pull();
        if (state.fetch_and(~inside) >= oneClosing + inside)
            pullHasEnded.Signal();
    }

    // The way is closed for as long as this lives.
    class Closing {
    public:
        explicit Closing(UpstreamPulls& upstreamPulls) : pulls(upstreamPulls) { pulls.Close(); }

        ~Closing() { pulls.state.fetch_sub(oneClosing); }

        Closing(Closing const&) = delete;
        Closing& operator=(Closing const&) = delete;

    private:
        UpstreamPulls& pulls;
    };

private:
    // Bit 0: a pull is under way, or has found the way closed. Above: how many stops have closed it.
    static constexpr std::uint32_t inside = 1;
    static constexpr std::uint32_t oneClosing = 2;

    void Close() {
        pullHasEnded.Reset();
        if ((state.fetch_add(oneClosing) & inside) == 0)
            return;
        while ((state.load() & inside) != 0)
            WaitOnEvents(pullHasEndedOnly, longestWait);
    }

    // Another stop may reset the event that this one waits for; then it looks again.
    static constexpr int longestWait = 1;

    std::atomic<std::uint32_t> state{0};
    Event pullHasEnded{true};
    SVArray<Event*, Event*> pullHasEndedOnly;
};

} // namespace QMT
