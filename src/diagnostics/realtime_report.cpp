#include "qmt/diagnostics/realtime_report.h"

#include <utility>

#include "diagnostics/report_files.h"
#include "diagnostics/report_state.h"
#include "diagnostics/report_threads.h"
#include "diagnostics/stamp_clock.h"
#include "general/never_destroyed.h"
#include "qmt/general/events.h"

namespace QMT {

namespace {

using Entries = SVArray<RealTimeReport*, RealTimeReport*>;

struct GatheredReport {
    CritSection section{"RealTimeReport :: reportSection"};
    Entries entries; // this and the others under the section
    ReportThreads threads;
    StampClock clock;
};

// Made before the objects of a program that the library is linked into, which may trace.
[[gnu::init_priority(1000)]] NeverDestroyed<GatheredReport> gathered;

std::unique_ptr<ErrorInfo> NewError(String text) {
    return std::unique_ptr<ErrorInfo>(MakeError(std::move(text)));
}

} // namespace

constinit ReportState reportState;

constinit unsigned int RealTimeReport::firstAddTime = 0;
Entries& RealTimeReport::reportItems = gathered->entries;

RealTimeReport::~RealTimeReport() = default;

void RealTimeReport::DescribeEvent(ViewerEvent&) {}

void RealTimeReport::TurnReportIngOn() {
    reportState.refused = 0;
    reportState.reportingOn = true;
    reportState.reportWritten = false;
}

std::uint64_t RealTimeReport::RefusedCount() {
    return reportState.refused;
}

// A report that is being written holds the section for long, so nobody waits for it who is refused anyway.
void RealTimeReport::AddReport(RealTimeReport* item) {
    std::unique_ptr<RealTimeReport> owned(item); // deleted behind the section
    if (reportState.Refuses())
        return;
    GatheredReport& report = *gathered;
    CritSectionLock const lock(&report.section);
    if (reportState.Refuses())
        return;
    item->addThread = report.threads.NumberOfThisThread();
    item->addTime = report.clock.Milliseconds();
    report.entries.Add(item);
    static_cast<void>(owned.release()); // the report's now
}

void RealTimeReport::WriteReport(String path) {
    ReportFiles files(path);
    std::unique_ptr<ErrorInfo> const nobodyToTell = Write(files);
}

ErrorInfo* RealTimeReport::WriteReportFiles(String reportPath, String eventsPath) {
    ReportFiles files(reportPath, eventsPath);
    return Write(files).release();
}

std::unique_ptr<ErrorInfo> RealTimeReport::Write(ReportFiles& files) {
    CritSectionLock const lock(&gathered->section);
    if (!reportState.IsGathering())
        return NewError(u"The real-time report isn't turned on, or is written already");
    reportState.reportWritten = true;
    if (gathered->entries.Size() == 0)
        return NewError(u"The real-time report has no entries");
    firstAddTime = gathered->entries[0]->addTime;
    if (std::unique_ptr<ErrorInfo> error = files.Open())
        return error;
    files.WriteThreads(gathered->threads.Names());
    for (std::unique_ptr<RealTimeReport>& entry : TakeEntries()) {
        files.Write(*entry);
        entry.reset();
    }
    return files.Close();
}

// Leaves the report empty, so that an entry which traces while it is written stands in the next one.
std::vector<std::unique_ptr<RealTimeReport>> RealTimeReport::TakeEntries() {
    std::vector<std::unique_ptr<RealTimeReport>> taken(gathered->entries.Size());
    for (std::size_t i = 0; i < taken.size(); ++i)
        taken[i].reset(gathered->entries[i]);
    gathered->entries.RemoveAll();
    gathered->threads.Clear();
    return taken;
}

} // namespace QMT
