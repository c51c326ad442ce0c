// The two forms in which a report is written.
#pragma once

#include <memory>

#include "qmt/diagnostics/realtime_report.h"

namespace QMT {

// One report on its way into its files: `Open`, `Write` for each entry, `Close`.
class ReportFiles {
public:
    // The lines alone; an empty path is one that cannot be opened.
    explicit ReportFiles(String const& reportPath);

    // Both forms; one whose path is empty is left out.
    ReportFiles(String const& reportPath, String const& eventsPath);

    // Null when both files are open. Opens none when the paths are equal.
    std::unique_ptr<ErrorInfo> Open();

    // Puts the threads' names in front of the events; number 1 stands first.
    void WriteThreads(NonSortableVArray<String> const& names);

    void Write(RealTimeReport& entry);

    // Brings everything to the files, to the second also after a failure with the first.
    std::unique_ptr<ErrorInfo> Close();

private:
    void BeginEvent(String const& name);
    void WriteEvent(RealTimeReport& entry, String const& line);

    bool hasReport;
    bool hasEvents;
    String sharedPath; // empty when there are two
    FormatableTextFile report;
    FormatableTextFile events;
    bool isFirst = true;
};

} // namespace QMT
