#include "start_up.h"

#include "qmt/diagnostics/error_log.h"
#include "qmt/diagnostics/realtime_report.h"
#include "qmt/general/files.h"
#include "qmt/helpers/countries.h"
#include "qmt/helpers/system.h"
#include "qmt/html/native_strings.h"
#include "qmt/time/portable_time.h"

namespace {

using QMT::ErrorInfo;
using QMT::Map;
using QMT::String;

// A read leaves a text or a number that is not allowed in its variable: it goes into one of its own.
template <class Value, class Read>
void Take(Value& option, Report report, Read read) {
    Value value = option;
    if (ErrorInfo* error = read(value)) {
        report(error);
    } else {
        option = value;
    }
}

} // namespace

void ReadOptions(QMT::ConfigBase& settings, Options& options, Report report) {
    Take(options.minutesPerSlot, report, [&](int& value) {
        return settings.TestProfileNumber(u"Time", u"MinutesPerSlot", value, 1, 1440, u"30");
    });
    Take(options.stringTable, report,
         [&](String& value) { return settings.TestProfileString(u"Language", u"StringTable", value, u""); });
    Take(options.country, report,
         [&](String& value) { return settings.TestProfileString(u"Language", u"Country", value, u"DE"); });
    Take(options.greeting, report, [&](String& value) {
        return settings.TestProfileToggle(u"Language", u"Greeting", value, u"on", u"off", u"on");
    });
    Take(options.volume, report, [&](double& value) {
        return settings.TestProfileNumber(u"Audio", u"Volume", value, 0.0, 1.0, u"0.8");
    });
}

void StartServices(Options const& options, String const& directory) {
    // They outlive every use.
    static Map<String, String> translations;
    static Map<String, String> nameOfCode;
    static Map<String, String> codeOfName;

    QMT::PortableTime::SetTimeUnitMins(static_cast<unsigned int>(options.minutesPerSlot));
    QMT::PortableTime::InitialiseZone();
    QMT::SetErrLogPath(directory);
    if (!options.stringTable.IsEmpty()) {
        QMT::ReadNativeStrings(options.stringTable, translations);
    }
    QMT::MakeCountries(nameOfCode, codeOfName); // with the names translated
    QMT::StartMillisecsCount();
    QMT::RealTimeReport::TurnReportIngOn();
}

void EndServices(String const& directory) {
    QMT::RealTimeReport::WriteReport(directory + QMT::BaseFile::GetDirSeparator() + u"report.txt");
    QMT::PortableTime::Terminate();
}
