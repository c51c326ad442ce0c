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

    bool HasComeBack() const { return hasComeBack; }

private:
    void const* stopped;
    StopScope* outer;
    bool hasComeBack;
};

} // namespace QMT
