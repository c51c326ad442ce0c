#include "time/local_zone.h"

#include <atomic>
#include <memory>
#include <vector>

#include "general/never_destroyed.h"
#include "platform/local_time.h"
#include "qmt/general/events.h"
#include "qmt/time/portable_time.h"
#include "time/time_access.h"
#include "time/zone_search.h"

namespace QMT {

namespace {

struct ZoneStore {
    CritSection section{"zone"};
    std::vector<std::unique_ptr<ZoneRecords const>> records QMT_GUARDED_BY(section); // those in force last
    PortableTime::YearSource yearSource QMT_GUARDED_BY(section) = PortableTime::YearSource::SystemClock;
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

PortableTime::YearSource LastYearSource() {
    ZoneStore& store = Store();
    CritSectionLock const lock(&store.section);
    return store.yearSource;
}

} // namespace

constinit std::atomic<ZoneRecords const*> recordsInForce{nullptr};

ZoneRecords const& FindAtFirstUse() {
    CritSectionLock const lock(&Store().section);
    if (recordsInForce.load(std::memory_order_relaxed) == nullptr)
        PortableTime::InitialiseZone();
    return *recordsInForce.load(std::memory_order_relaxed);
}

void PortableTime::InitialiseZone() {
    InitialiseZone(YearSource::SystemClock);
}

void PortableTime::InitialiseZone(YearSource source) {
    // Fetched outside the section, because a modifier may do what it likes, conversions included.
    PortableTime const now = source == YearSource::CurrentTime ? GetTimeNow() : GetSystemTimeNow();
    ZoneStore& store = Store();
    CritSectionLock const lock(&store.section);
    store.yearSource = source;
    PutInForce(store, FindRecords(TimeAccess::Seconds(now)));
}

void PortableTime::RefreshZone() {
    InitialiseZone(LastYearSource());
}

void PortableTime::Terminate() {
    ZoneStore& store = Store();
    CritSectionLock const lock(&store.section);
    recordsInForce.store(nullptr, std::memory_order_relaxed);
    store.records.clear();
    store.yearSource = YearSource::SystemClock;
}

} // namespace QMT
