#include "diagnostics/report_files.h"

#include <cstdint>
#include <utility>

#include "diagnostics/json_text.h"

namespace QMT {

namespace {

String WithoutLineBreak(String line) {
    String lineBreak;
    lineBreak << newline;
    if (line.Right(lineBreak.Len()) == lineBreak)
        line.Truncate(line.Len() - lineBreak.Len());
    return line;
}

std::unique_ptr<ErrorInfo> FlushAndClose(FormatableTextFile& file) {
    std::unique_ptr<ErrorInfo> flushError(file.FlushFile(true, BaseFile::BOM::NoMark));
    std::unique_ptr<ErrorInfo> closeError(file.Close());
    return flushError ? std::move(flushError) : std::move(closeError);
}

} // namespace

ViewerEvent::ViewerEvent(String eventName) : name(std::move(eventName)) {}

void ViewerEvent::SetName(String newName) {
    name = std::move(newName);
}

void ViewerEvent::AddNumber(String const& key, long long number) {
    AddKey(key);
    details << number;
}

void ViewerEvent::AddText(String const& key, String const& text) {
    AddKey(key);
    AppendJsonText(details, text);
}

void ViewerEvent::AddKey(String const& key) {
    if (!details.IsEmpty())
        details << u",";
    AppendJsonText(details, key);
    details << u":";
}

ReportFiles::ReportFiles(String const& reportPath)
    : hasReport(true), hasEvents(false), report(reportPath, nullptr), events(String(), nullptr) {}

ReportFiles::ReportFiles(String const& reportPath, String const& eventsPath)
    : hasReport(!reportPath.IsEmpty()),
      hasEvents(!eventsPath.IsEmpty()),
      sharedPath(reportPath == eventsPath ? reportPath : String()),
      report(reportPath, nullptr),
      events(eventsPath, nullptr) {}

std::unique_ptr<ErrorInfo> ReportFiles::Open() {
    if (!sharedPath.IsEmpty())
        return std::unique_ptr<ErrorInfo>(
            MakeError(u"The real-time report and its events cannot both go to ", sharedPath));
    std::unique_ptr<ErrorInfo> error(hasReport ? report.Open(false) : nullptr);
    if (!error && hasEvents)
        error.reset(events.Open(false));
    return error;
}

void ReportFiles::WriteThreads(NonSortableVArray<String> const& names) {
    if (!hasEvents)
        return;
    events << u"{\"displayTimeUnit\":\"ms\",\"traceEvents\":[";
    for (std::size_t i = 0; i < names.Size(); ++i)
        if (!names[i].IsEmpty()) {
            BeginEvent(u"thread_name");
            events << u",\"ph\":\"M\",\"pid\":1,\"tid\":" << static_cast<unsigned int>(i + 1)
                   << u",\"args\":{\"name\":";
            AppendJsonText(events, names[i]);
            events << u"}}";
        }
}

void ReportFiles::Write(RealTimeReport& entry) {
    std::size_t const start = report.Len();
    entry.WriteItem(report);
    if (hasEvents)
        WriteEvent(entry, report.Mid(start));
    if (!hasReport)
        report.SetEmpty();
}

void ReportFiles::BeginEvent(String const& name) {
    events << (std::exchange(isFirst, false) ? u"" : u",") << newline << u"{\"name\":";
    AppendJsonText(events, name);
}

void ReportFiles::WriteEvent(RealTimeReport& entry, String const& line) {
    constexpr long long microseconds = 1000; // in a millisecond
    ViewerEvent event(WithoutLineBreak(line));
    entry.DescribeEvent(event);
    BeginEvent(event.Name());
    events << u",\"ph\":\"i\",\"s\":\"t\",\"pid\":1,\"tid\":" << entry.addThread << u",\"ts\":"
           << (entry.addTime - RealTimeReport::firstAddTime) * microseconds;
    if (!event.Details().IsEmpty())
        events << u",\"args\":{" << event.Details() << u"}";
    events << u"}";
}

std::unique_ptr<ErrorInfo> ReportFiles::Close() {
    std::unique_ptr<ErrorInfo> reportError = hasReport ? FlushAndClose(report) : nullptr;
    if (!hasEvents)
        return reportError;
    events << newline << u"]}" << newline;
    std::unique_ptr<ErrorInfo> eventsError = FlushAndClose(events);
    return reportError ? std::move(reportError) : std::move(eventsError);
}

} // namespace QMT
