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

NeverDestroyed<CritSection> reportSection("RealTimeReport :: reportSection");
NeverDestroyed<Entries> entries;
NeverDestroyed<ReportThreads> threads; // this and the clock under the section
NeverDestroyed<StampClock> stampClock;

std::unique_ptr<ErrorInfo> NewError(String text) {
    return std::unique_ptr<ErrorInfo>(MakeError(std::move(text)));
}

} // namespace

constinit ReportState reportState;

constinit unsigned int RealTimeReport::firstAddTime = 0;
Entries& RealTimeReport::reportItems = *entries;

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
    if (!reportState.IsGathering())
        return reportState.Refuse();
    CritSectionLock const lock(&*reportSection);
    if (!reportState.IsGathering())
        return reportState.Refuse();
    item->addThread = threads->NumberOfThisThread();
    item->addTime = stampClock->Milliseconds();
    entries->Add(item);
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
    CritSectionLock const lock(&*reportSection);
    if (!reportState.IsGathering())
        return NewError(u"The real-time report isn't turned on, or is written already");
    reportState.reportWritten = true;
    if (reportItems.Size() == 0)
        return NewError(u"The real-time report has no entries");
    firstAddTime = reportItems[0]->addTime;
    if (std::unique_ptr<ErrorInfo> error = files.Open())
        return error;
    files.WriteThreads(threads->Names());
    for (std::unique_ptr<RealTimeReport>& entry : TakeEntries()) {
        files.Write(*entry);
        entry.reset();
    }
    return files.Close();
}

// Leaves the report empty, so that an entry which traces while it is written stands in the next one.
std::vector<std::unique_ptr<RealTimeReport>> RealTimeReport::TakeEntries() {
    std::vector<std::unique_ptr<RealTimeReport>> taken(reportItems.Size());
    for (std::size_t i = 0; i < taken.size(); ++i)
        taken[i].reset(reportItems[i]);
    reportItems.RemoveAll();
    threads->Clear();
    return taken;
}

} // namespace QMT
