#include "qmt/diagnostics/error_log.h"

#include <memory>
#include <optional>
#include <utility>

#include "general/never_destroyed.h"
#include "qmt/general/events.h"
#include "qmt/general/files.h"
#include "qmt/time/utc_local_time.h"

namespace QMT {

namespace {

struct ErrorLog {
    CritSection section{"logging"};
    std::optional<String> directory QMT_GUARDED_BY(section);
    int period QMT_GUARDED_BY(section) = 0; // of the last entry, 0 before the first
};

ErrorLog& TheLog() {
    static NeverDestroyed<ErrorLog> log;
    return *log;
}

// Nobody is left to tell: deletes `error` and says whether there was one.
bool Swallow(ErrorInfo* error) {
    std::unique_ptr<ErrorInfo> const owned(error);
    return owned != nullptr;
}

// 1 to 3, the third of the year.
int PeriodOf(int month) {
    return (month - 1) / 4 + 1;
}

// False when there is none.
bool ReadFirstLine(String const& file, String& line) {
    LineParsableFile reader(file, nullptr);
    if (Swallow(reader.Open()))
        return false;
    ErrorInfo* error = nullptr;
    bool const isThere = reader.NextLine(line, error, 0) != 0;
    return !Swallow(error) && isThere;
}

// Deletes the file when its first word does not begin with `year`. The reader is closed by then, because not
// every system deletes an open file.
void DropStaleLog(String const& file, int year) {
    String line;
    if (!ReadFirstLine(file, line))
        return;
    String date;
    if (!ParsableText(line).GetNextElem(&date, 0))
        return;
    String yearText;
    yearText << year;
    if (date.Left(4) != yearText)
        Swallow(RemoveFile(file));
}

void AppendLine(String const& file, String const& stamp, String const& text) {
    FormatableTextFile writer(file, nullptr);
    if (Swallow(writer.Open(true)))
        return;
    writer << stamp << u" " << text << newline;
    Swallow(writer.FlushFile(true, BaseFile::BOM::NoMark));
    Swallow(writer.Close());
}

void WriteErrorLine(ErrorLog& log, String const& text, UTCTime const& now) QMT_REQUIRES(log.section) {
    int const period = PeriodOf(now.GetMonth());
    String file = *log.directory + BaseFile::GetDirSeparator();
    file << period << u".log";
    if (period != log.period) {
        DropStaleLog(file, now.GetYear());
        log.period = period;
    }
    AppendLine(file, now.YMDHMS(true), text);
}

} // namespace

void SetErrLogPath(String path) {
    ErrorLog& log = TheLog();
    CritSectionLock const lock(&log.section);
    log.directory = std::move(path);
}

void LogAndResetError(ErrorInfo*& error) {
    if (error == nullptr)
        return;
    std::unique_ptr<ErrorInfo> const owned(std::exchange(error, nullptr));
    // Fetched outside the section: whoever logs while he holds the time section would lock in the other
    // order.
    UTCTime const now = UTCTime::GetTimeNow();
    ErrorLog& log = TheLog();
    CritSectionLock const lock(&log.section);
    if (log.directory)
        WriteErrorLine(log, *owned, now);
}

} // namespace QMT
