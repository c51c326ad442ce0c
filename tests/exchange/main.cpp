// Writes one file of each format into a folder, or writes to another file what it reads from them:
//
//     exchange write FOLDER
//     exchange read FOLDER RESULT
//
// scripts/check_exchange.py has it done by the builds for two systems, each with the other's files.
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

struct Folder {
    String Path(char16_t const* name) const { return folder + BaseFile::GetDirSeparator() + name; }

    String folder;
};

void WriteFile(String path, String const& text) {
    FormatableTextFile file(std::move(path), nullptr);
    Check(file.Open(false));
    file << text;
    Check(file.FlushFile(true, BaseFile::BOM::NoMark));
    Check(file.Close());
}

void Write(Folder const& place) {
    Check(DiscDirectory(place.Path(u"Configuration"), {}, u"*").EnsureExists());
    FileTreeConfig settings(place.folder);
    SetErrLogPath(place.folder);
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
    WriteFile(place.Path(u"table.txt"), table);
    RealTimeReport::WriteReport(place.Path(u"report.txt"));
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

String Read(Folder const& place) {
    FileTreeConfig settings(place.folder);
    Map<String, String> table;
    ReadNativeStrings(place.Path(u"table.txt"), table);
    String all;
    for (std::size_t i = 0; i < std::size(values); ++i)
        all << settings.GetString(u"section", Name(i), u"none") << u'|' << NATIVE(Name(i)) << u'|';
    return all << LinesOf(place.Path(u"1.log")) << LinesOf(place.Path(u"report.txt"));
}

} // namespace
} // namespace QMT

int main(int count, char** arguments) {
    using namespace QMT;
    Folder const place{DecodeFromUTF8(count > 2 ? arguments[2] : "", false)};
    if (count == 3)
        Write(place);
    else if (count == 4)
        WriteFile(DecodeFromUTF8(arguments[3], false), Read(place));
    else
        hasFailed = true;
    return hasFailed ? 1 : 0;
}
