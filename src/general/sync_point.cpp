#include "general/sync_point.h"

#if defined(QMT_SYNC_POINTS)

#include <map>
#include <mutex>
#include <string>

#include "general/never_destroyed.h"

namespace QMT {

namespace {

struct SyncPointTable {
    std::mutex mutex;
    std::map<std::string, std::function<bool()>, std::less<>> actions;
};

SyncPointTable& Table() {
    static NeverDestroyed<SyncPointTable> table;
    return *table;
}

} // namespace

bool ReachSyncPoint(char const* name) {
    std::function<bool()> action;
    {
        std::scoped_lock const lock(Table().mutex);
        auto const found = Table().actions.find(name);
        if (found == Table().actions.end())
            return false;
        action = found->second;
    }
    return action();
}

void SetSyncPoint(char const* name, std::function<bool()> action) {
    std::scoped_lock const lock(Table().mutex);
    if (action)
        Table().actions[name] = std::move(action);
    else
        Table().actions.erase(name);
}

} // namespace QMT

#endif
