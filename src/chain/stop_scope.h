// Which links the stop on this thread is passing through.
#pragma once

namespace QMT {

// Marks a link as being stopped by this thread for as long as it lives. A stop that comes back to a marked
// link has gone round in a circle and goes no further. Lives on the stack; allocates nothing.
class StopScope {
public:
    // `link` tells the link from all others, and from the other part of a link that has two.
    explicit StopScope(void const* link);
    ~StopScope();
    StopScope(StopScope const&) = delete;
    StopScope& operator=(StopScope const&) = delete;

    bool HasComeBack() const { return earlier != nullptr; }

    // Where the stop has come back: tells the earlier mark that the link had been started again meanwhile.
    void TellRestart() { earlier->restarted = true; }

    bool WasRestarted() const { return restarted; }

private:
    void const* stopped;
    StopScope* outer;
    StopScope* earlier = nullptr; // the mark of the same link
    bool restarted = false;
};

} // namespace QMT
