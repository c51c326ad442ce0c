// Starts as an application does: reads its settings, starts the library's services with them, and lists what
// is stored. What took how long stands in report.txt behind that.
//
//     settings files|registry DIRECTORY [SECTION ENTRY VALUE]
//
// The settings are files in DIRECTORY, which exists, or a registry in it; a system that has a registry of its
// own uses that. SECTION, ENTRY and VALUE store a setting first: try Time MinutesPerSlot soon. All other
// settings appear in the store by being asked for.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "qmt/config/app_config.h"
#include "qmt/config/file_tree_config.h"
#include "qmt/diagnostics/error_log.h"
#include "qmt/diagnostics/realtime_report.h"
#include "qmt/general/files.h"
#include "qmt/helpers/countries.h"
#include "qmt/helpers/system.h"
#include "qmt/platform/registry.h"
#include "qmt/time/utc_local_time.h"
#include "start_up.h"

namespace {

using QMT::ErrorInfo;
using QMT::String;

using Names = QMT::VArray<String, String>;

constexpr unsigned int utf8 = 65001;

void Print(String const& line) {
    std::unique_ptr<char[]> const bytes(QMT::ConvertToMultibyte(line, utf8, nullptr));
    std::puts(bytes.get());
}

// Shows an error and writes it to the log.
void Report(ErrorInfo*& error) {
    if (error) {
        Print(u"! " + static_cast<String const&>(*error));
    }
    QMT::LogAndResetError(error);
}

// True when there is no error.
bool IsDone(ErrorInfo* error) {
    bool const isDone = error == nullptr;
    Report(error);
    return isDone;
}

template <class Store>
void List(Store& store) {
    Names sections;
    IsDone(store.EnumSections(sections));
    for (std::size_t i = 0; i < sections.Size(); ++i) {
        Print(u"[" + sections[i] + u"]");
        Names entries;
        IsDone(store.EnumEntries(sections[i], entries));
        for (std::size_t j = 0; j < entries.Size(); ++j) {
            Print(entries[j] + u" = " + store.GetReadOnlyString(sections[i], entries[j]));
        }
    }
}

void Greet(Options const& options) {
    if (options.greeting == u"off") {
        return;
    }
    String line;
    line << u"Hello " << QMT::GetUserNameW() << u" in " << QMT::Country(options.country) << u", slot "
         << QMT::LocalTime::GetTimeNow().GetTimeUnits() << u" of the day, volume " << options.volume << u", "
         << QMT::GetOSCurrency();
    Print(line);
}

template <class Store>
int Start(Store& store, String const& directory, char** setting) {
    QMT::SetErrLogPath(directory); // for what fails from here on
    auto const text = [](char const* argument) { return QMT::DecodeFromUTF8(argument, false); };
    if (!IsDone(store.CheckExists(false)) ||
        (setting && !IsDone(store.WriteProfileStr(text(setting[0]), text(setting[1]), text(setting[2]))))) {
        return EXIT_FAILURE;
    }
    Options options;
    ReadOptions(store, options, Report);
    StartServices(options, directory);
    QMT::REALTIMETRACE(u"started, minutes in a slot", options.minutesPerSlot);
    Greet(options);
    QMT::REALTIMETRACE(u"greeted", QMT::NoTraceValue);
    List(store);
    QMT::REALTIMETRACE(u"listed", QMT::NoTraceValue);
    EndServices(directory);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argumentCount, char** arguments) {
    std::string_view const kind = argumentCount > 1 ? arguments[1] : "";
    bool const isUsable =
        (argumentCount == 3 || argumentCount == 6) && (kind == "files" || kind == "registry");
    if (!isUsable) {
        std::fprintf(stderr, "usage: %s files|registry DIRECTORY [SECTION ENTRY VALUE]\n", arguments[0]);
        return EXIT_FAILURE;
    }
    String const directory = QMT::DecodeFromUTF8(arguments[2], false);
    char** const setting = argumentCount == 6 ? arguments + 3 : nullptr;
    if (kind == "files") {
        QMT::FileTreeConfig files(directory);
        return Start(files, directory, setting);
    }
    String const inDirectory = directory + QMT::BaseFile::GetDirSeparator();
    QMT::SetRegistryFiles(inDirectory + u"user.db", inDirectory + u"machine.db");
    QMT::AppConfig registry(u"Example", u"Settings", u"", false);
    return Start(registry, directory, setting);
}
