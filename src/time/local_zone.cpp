#include "time/local_zone.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "general/never_destroyed.h"
#include "platform/local_time.h"
#include "qmt/general/events.h"
#include "qmt/time/portable_time.h"
#include "qmt/time/utc_local_time.h"
#include "time/time_access.h"
#include "time/zone_search.h"

namespace QMT {

namespace {

struct ZoneStore {
    CritSection section{"zone"};
    std::vector<std::unique_ptr<ZoneRecords const>> records QMT_GUARDED_BY(section); // those in force last
    PortableTime::YearSource yearSource QMT_GUARDED_BY(section) = PortableTime::YearSource::SystemClock;
    std::uint64_t lastTurn QMT_GUARDED_BY(section) = 0;    // of the calls that have begun
    std::uint64_t turnInForce QMT_GUARDED_BY(section) = 0; // whose records are in force
};

ZoneStore& Store() {
    static NeverDestroyed<ZoneStore> store;
    return *store;
}

ZoneRecords FindRecords(std::int64_t now) {
    platform::ReadLocalZone();
    int const year = LocalYear(now);
    std::int64_t const wideYear = year;
    return {year, {FindZoneFacts(wideYear - 1), FindZoneFacts(wideYear), FindZoneFacts(wideYear + 1)}};
}

// What has not changed is not replaced, so that refreshing again and again takes no memory.
void PutInForce(ZoneStore& store, ZoneRecords const& found) QMT_REQUIRES(store.section) {
    ZoneRecords const* const former = recordsInForce.load(std::memory_order_relaxed);
    if (former != nullptr && *former == found)
        return;
    store.records.push_back(std::make_unique<ZoneRecords const>(found));
    recordsInForce.store(store.records.back().get(), std::memory_order_release);
}

// Of calls beside each other the one that began last decides, whichever ends last. The time is fetched
// outside the section, because a modifier may do what it likes, conversions included.
void FindAnew(ZoneStore& store, PortableTime::YearSource source, std::uint64_t turn) {
    bool const followsModifiers = source == PortableTime::YearSource::CurrentTime;
    UTCTime const now = followsModifiers ? UTCTime::GetTimeNow() : UTCTime::GetSystemTimeNow();
    CritSectionLock const lock(&store.section);
    if (turn < store.turnInForce)
        return;
    store.turnInForce = turn;
    PutInForce(store, FindRecords(TimeAccess::Seconds(now)));
}

} // namespace

constinit std::atomic<ZoneRecords const*> recordsInForce{nullptr};

ZoneRecords const& FindAtFirstUse() {
    ZoneStore& store = Store();
    CritSectionLock const lock(&store.section);
    // Takes no turn: a modifier that converts must not get ahead of the call that asked it.
    if (recordsInForce.load(std::memory_order_relaxed) == nullptr)
        PutInForce(store, FindRecords(TimeAccess::Seconds(UTCTime::GetSystemTimeNow())));
    return *recordsInForce.load(std::memory_order_relaxed);
}

void PortableTime::InitialiseZone() {
    InitialiseZone(YearSource::SystemClock);
}

void PortableTime::InitialiseZone(YearSource source) {
    ZoneStore& store = Store();
    std::uint64_t turn = 0;
    {
        CritSectionLock const lock(&store.section);
        store.yearSource = source;
        turn = ++store.lastTurn;
    }
    FindAnew(store, source, turn);
}

void PortableTime::RefreshZone() {
    ZoneStore& store = Store();
    YearSource source = YearSource::SystemClock;
    std::uint64_t turn = 0;
    {
        CritSectionLock const lock(&store.section);
        source = store.yearSource;
        turn = ++store.lastTurn;
    }
    FindAnew(store, source, turn);
}

void PortableTime::Terminate() {
    ZoneStore& store = Store();
    CritSectionLock const lock(&store.section);
    recordsInForce.store(nullptr, std::memory_order_relaxed);
    store.records.clear();
    store.yearSource = YearSource::SystemClock;
}

} // namespace QMT
