// Installs what happens at a sync point of the library.
#pragma once

#include <functional>
#include <utility>

#include "general/sync_point.h"

namespace QMT {

// Does `action` at the named point for as long as it lives; a result of true forces the point's fault. It
// does nothing in builds without sync points, where a test that needs it skips.
//
//     if (!SyncAction::possible)
//         GTEST_SKIP() << "built without sync points";
//     SyncAction const failingStart("Thread::StartRunning", [] { return true; });
class SyncAction {
public:
#if defined(QMT_SYNC_POINTS)
    static constexpr bool possible = true;

    SyncAction(char const* pointName, std::function<bool()> action) : name(pointName) {
        SetSyncPoint(name, std::move(action));
    }

    ~SyncAction() {
        SetSyncPoint(name, nullptr);
    }
#else
    static constexpr bool possible = false;

    SyncAction(char const* pointName, std::function<bool()>) : name(pointName) {}
#endif

    SyncAction(SyncAction&&) = delete;

private:
    [[maybe_unused]] char const* name;
};

} // namespace QMT
