// The real-time report: short entries that code which runs in real time leaves in memory, written to a file
// afterwards.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "qmt/export.h"
#include "qmt/general/containers.h"
#include "qmt/general/errors.h"
#include "qmt/general/files.h"
#include "qmt/general/string.h"

namespace QMT {

class ReportFiles;
class ShortTrace;

// What a trace viewer shows of an entry: a name, and details behind it. For one thread at a time.
class QMT_UTILU_API ViewerEvent {
public:
    explicit ViewerEvent(String eventName);

    void SetName(String newName);

    // Adds a detail; keys differ.
    void AddNumber(String const& key, long long number);
    void AddText(String const& key, String const& text);

    String const& Name() const { return name; }

    // The details as the members of a JSON object, without its braces.
    String const& Details() const { return details; }

private:
    void AddKey(String const& key);

    String name;
    String details;
};

// An entry of the report, and as statics the report itself; docs/realtime_report.md describes its files.
//
// The application starts the clock, turns the report on, lets its threads trace, and writes the report:
//
//     StartMillisecsCount();
//     RealTimeReport::TurnReportIngOn();
//     REALTIMETRACE(u"buffer written", number); // any thread, any time
//     RealTimeReport::WriteReport(u"report.txt");
//
// Until it is turned on, and again once it is written, entries are refused: deleted, with nothing kept. A
// class of the application's own entries supplies `WriteItem`, and hands new objects to `AddReport`.
//
// Guaranteed: entries stand in the order in which they were added, and their times rise with it. From any
// thread at any time, also while the process ends. Entries that are never written are never deleted.
class QMT_UTILU_API RealTimeReport {
public:
    RealTimeReport(RealTimeReport const&) = delete;
    RealTimeReport& operator=(RealTimeReport const&) = delete;
    virtual ~RealTimeReport();

    // Appends the entry's line, line break included, to the text of the file. Called once, by the thread that
    // writes the report, which holds the report's section; it writes no report itself. What it throws comes
    // out of the call that writes the report, which is lost then.
    virtual void WriteItem(FormatableTextFile& file) = 0;

    // Changes what a viewer shows of the entry. The name is the entry's line, without its line break, until
    // this changes it. Called once, behind `WriteItem`; does nothing by default.
    virtual void DescribeEvent(ViewerEvent& event);

    // The time that `AddReport` sets, in milliseconds.
    void SetAddTime(unsigned int time) { addTime = time; }

    // Lets entries in from now on; entries that a failure to open a file has left stay in front. Takes no
    // lock; what other threads add behind it is kept.
    static void TurnReportIngOn();

    // Takes over `item`, which is not null, stamps it with the clock's reading and appends it; or deletes it,
    // when the report lets nothing in. Refusing takes no lock. Keeping waits for other threads' stamp and
    // append, or until a report is written and the entry refused. It allocates when the report must grow, and
    // for a thread's first entry, whose name it asks the system for.
    static void AddReport(RealTimeReport* item);

    // Writes the entries to the file `path`, one line each, deletes them, and refuses others from then on.
    // Does nothing when the report is not turned on or is written already; makes no file without entries.
    // When the file cannot be opened the entries stay for the next report; all other failures lose them. The
    // report then counts as written, too. Waits for the disc; not for real-time work.
    static void WriteReport(String path);

    // The same with two forms from the same entries: lines of text in `reportPath`, events for a trace viewer
    // in `eventsPath`; an empty path leaves a form out. Null when the files are complete. Otherwise the
    // error, which the caller owns, tells what went wrong; that there was nothing to write counts as that.
    // When one file cannot be opened, the entries stay, and the other file may be left empty. Equal paths
    // count as that, and leave the file alone.
    static ErrorInfo* WriteReportFiles(String reportPath, String eventsPath);

    // How many entries were refused since the report was turned on, or ever while it never was.
    static std::uint64_t RefusedCount();

    // The entries that are kept, which belong to the report. Only for a time when no other thread adds or
    // writes.
    static SVArray<RealTimeReport*, RealTimeReport*>& reportItems;

protected:
    RealTimeReport() = default;

    // The clock's reading, in milliseconds, when the entry was added, and when the first entry of the report
    // that is being written was. Their difference, which may wrap, is what a line shows.
    unsigned int addTime = 0;
    static unsigned int firstAddTime;

private:
    friend class ReportFiles;

    static std::unique_ptr<ErrorInfo> Write(ReportFiles& files);
    static std::vector<std::unique_ptr<RealTimeReport>> TakeEntries();

    unsigned int addThread = 0; // by order of their first entries, from 1
};

// The number that stands for none.
// NOLINTNEXTLINE(readability-identifier-naming): the name is fixed
inline constexpr int NoTraceValue = -123456789;

// An entry of a text, with a number or a pointer behind it. Its line is "(", the time in 8 digits, ") ", the
// text, and a blank with the pointer's low 32 bits in hexadecimal, filled with blanks to 8 places, or with
// the number. Nothing follows the text for `NoTraceValue` and for a null pointer.
class QMT_UTILU_API RealTimeTrace : public RealTimeReport {
public:
    RealTimeTrace(String text, int value);

    // The pointer is shown and never followed.
    RealTimeTrace(void* pointer, String text);

    ~RealTimeTrace() override;

    void WriteItem(FormatableTextFile& file) override;
    void DescribeEvent(ViewerEvent& event) override;

    // Adds a trace of the zero-terminated text in an array of `size` units, like `AddReport`.
    static void AddLiteral(CodeUnit const* text, std::size_t size, int value);

private:
    friend class ShortTrace;

    RealTimeTrace(int value, void* pointer) : traceValue(value), tracePointer(pointer) {}

    bool HasValue() const { return tracePointer == nullptr && traceValue != NoTraceValue; }

    String traceText;
    int traceValue;
    void* tracePointer;
};

// Add a `RealTimeTrace` to the report, as `AddReport` does. One of up to 64 units lies in memory that the
// library keeps at hand for it.
QMT_UTILU_API void REALTIMETRACE(String text, int value);
QMT_UTILU_API void REALTIMETRACE(void* pointer, String text);

// The first for a literal or any other zero-terminated array, without making a String of it.
template <std::size_t size>
void REALTIMETRACE(CodeUnit const (&text)[size], int value) {
    RealTimeTrace::AddLiteral(text, size, value);
}

// Add a trace of the text with `size` bytes at `data` as text behind it: ", Buffer size: ", the size, a
// blank, and each element with a comma behind it. All of them are formatted, before the report's section is
// taken and whether it is on or off, so that turning it on changes little in the timing of what is traced.
//
// Bytes in hexadecimal, in two places.
QMT_UTILU_API void REALTIMETRACE(String text, unsigned char* data, size_t size);

// NOLINTBEGIN(readability-identifier-naming): the names are fixed
// Samples, of which `size` must be whole ones; "[END]" stands behind the last. They need not be aligned.
// 32-bit floating point:
QMT_UTILU_API void REALTIMETRACE_AUDIOFLOAT(String text, unsigned char* data, size_t size);

// Signed integers of 16 bits:
QMT_UTILU_API void REALTIMETRACE_AUDIOSHORT(String text, unsigned char* data, size_t size);

// 32-bit floating point times 32768, cut towards zero and not clipped, as the low 32 bits in hexadecimal with
// at least two digits; 0 for what is no number or beyond 64 bits.
QMT_UTILU_API void REALTIMETRACE_AUDIOFLOAT_AS_SHORT(String text, unsigned char* data, size_t size);
// NOLINTEND(readability-identifier-naming)

} // namespace QMT
