// Writes one file of each format into a folder, or writes to another file what it reads from them:
//
//     exchange write FOLDER
//     exchange read FOLDER RESULT, which is an absolute path
//
// scripts/check_exchange.py has it done by the builds for two systems, each with the other's files.
#include <filesystem>
#include <iterator>
#include <memory>

#include "qmt/config/file_tree_config.h"
#include "qmt/diagnostics/error_log.h"
#include "qmt/diagnostics/realtime_report.h"
#include "qmt/general/files.h"
#include "qmt/helpers/system.h"
#include "qmt/html/native_strings.h"
#include "qmt/time/utc_local_time.h"

namespace QMT {
namespace {

// What is hard to bring over: blanks at the ends, all lengths of UTF-8, a lone surrogate, what looks like a
// mark.
constexpr char16_t const* values[] = {u" plain ", u"\u00E4\u20AC\U0001F600", u"lone \xD800 one",
                                      u"\uFEFFmark"};

bool hasFailed = false;

void Check(ErrorInfo* error) {
    std::unique_ptr<ErrorInfo> const owned(error);
    if (owned)
        LogToIDE(*owned);
    hasFailed |= owned != nullptr;
}

String Name(std::size_t number) {
    return String(u"entry ") << static_cast<unsigned int>(number);
}

void WriteFile(String path, String const& text) {
    FormatableTextFile file(std::move(path), nullptr);
    Check(file.Open(false));
    file << text;
    Check(file.FlushFile(true, BaseFile::BOM::NoMark));
    Check(file.Close());
}

void Write() {
    FileTreeConfig settings(u".");
    SetErrLogPath(u".");
    PortableTime::InstallCurrentTimeModifier([]() -> PortableTime { return UTCTime(2024, 3, 5, 14, 7, 9); });
    StartMillisecsCount();
    RealTimeReport::TurnReportIngOn();
    String table;
    for (std::size_t i = 0; i < std::size(values); ++i) {
        Check(settings.WriteProfileStr(u"section", Name(i), values[i]));
        table << Name(i) << u'\t' << values[i] << newline;
        ErrorInfo* error = MakeError(values[i]);
        LogAndResetError(error);
        REALTIMETRACE(values[i], static_cast<int>(i));
        RealTimeReport::reportItems[i]->SetAddTime(static_cast<unsigned int>(10 * i));
    }
    WriteFile(u"table.txt", table);
    RealTimeReport::WriteReport(u"report.txt");
}

String LinesOf(String path) {
    LineParsableFile file(std::move(path), nullptr);
    Check(file.Open());
    String lines, line;
    ErrorInfo* error = nullptr;
    while (file.NextLine(line, error, 0))
        lines << line << u'|';
    Check(error);
    return lines;
}

String Read() {
    FileTreeConfig settings(u".");
    Map<String, String> table;
    ReadNativeStrings(u"table.txt", table);
    String all;
    for (std::size_t i = 0; i < std::size(values); ++i)
        all << settings.GetString(u"section", Name(i), u"none") << u'|' << NATIVE(Name(i)) << u'|';
    return all << LinesOf(u"1.log") << LinesOf(u"report.txt");
}

} // namespace
} // namespace QMT

int main(int count, char** arguments) {
    using namespace QMT;
    if (count != 3 && count != 4)
        return 1;
    std::filesystem::current_path(arguments[2]);
    if (count == 3)
        Write();
    else
        WriteFile(DecodeFromUTF8(arguments[3], false), Read());
    return hasFailed ? 1 : 0;
}
