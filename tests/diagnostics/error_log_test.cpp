#include "qmt/diagnostics/error_log.h"

#include <atomic>

#include "qmt/time/utc_local_time.h"
#include "support/file_content.h"
#include "support/temp_directory.h"
#include "support/text.h"

namespace QMT {
namespace {

std::atomic<bool> otherThreadLogs{false};
char16_t const* clockText = u"";

void LogError(char16_t const* text) {
    ErrorInfo* error = MakeError(text);
    LogAndResetError(error);
    EXPECT_EQ(error, nullptr);
}

void Log(char16_t const* time, char16_t const* text) {
    clockText = time;
    LogError(text);
}

PortableTime TestClock() {
    if (otherThreadLogs.exchange(false))
        std::thread(LogError, u"inner").join();
    return UTCTime(clockText);
}

// A new directory, which the log then uses.
struct LogDirectory : TempDirectory {
    LogDirectory() {
        SetErrLogPath(Path());
        PortableTime::InstallCurrentTimeModifier(TestClock);
    }

    std::string Lines(char const* file) const { return ContentOf(Place() / file, std::ios::in); }
};

TEST(ErrorLog, IsOffUntilItHasADirectory) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process in which no test has set the directory
    PortableTime::InstallCurrentTimeModifier(TestClock);
    auto const logAndExit = [] {
        Log(u"2024/03/05 14:07:09", u"lost");
        std::exit(fs::exists("1.log") || fs::exists("/1.log"));
    };
    EXPECT_EXIT(logAndExit(), testing::ExitedWithCode(0), "");
}

TEST(ErrorLog, OneLineForEachErrorInTheFileOfItsMonths) {
    LogDirectory const log;
    ErrorInfo* none = nullptr;
    LogAndResetError(none);
    EXPECT_TRUE(fs::is_empty(log.Place()));
    Log(u"2024/01/01 00:00:00", u"first");
    Log(u"2024/04/30 23:59:59", u"Disc full");
    Log(u"2024/05/01 00:00:00", u"two\nlines, \u20ac");
    Log(u"2024/08/31 23:59:59", u"");
    Log(u"2024/09/01 00:00:00", u"autumn");
    Log(u"2024/12/31 23:59:59", u"last");
    EXPECT_EQ(log.Lines("1.log"), "2024/01/01 00:00:00 first\n2024/04/30 23:59:59 Disc full\n");
    EXPECT_EQ(log.Lines("2.log"), "2024/05/01 00:00:00 two\nlines, \xe2\x82\xac\n2024/08/31 23:59:59 \n");
    EXPECT_EQ(log.Lines("3.log"), "2024/09/01 00:00:00 autumn\n2024/12/31 23:59:59 last\n");
}

TEST(ErrorLog, StartsAFileOfAnotherYearAnew) {
    std::string const line = "2024/06/01 00:00:00 new\n";
    for (std::string const old : {"2024/05/01 00:00:00 old\n", "2024", "", "\n2023/05", " \t\n",
                                  "2023/05/01 00:00:00 old\n", "2025/05/01 00:00:00 old\n", "202"}) {
        LogDirectory const log;
        Log(u"2024/03/05 14:07:09", u"another period");
        std::ofstream(log.Place() / "2.log", std::ios::binary) << old;
        Log(u"2024/06/01 00:00:00", u"new");
        bool const isStale = old[0] == '2' && !old.starts_with("2024");
        EXPECT_EQ(log.Lines("2.log"), isStale ? line : old + line) << old;
    }
    LogDirectory const samePeriod; // which has been looked at
    std::ofstream(samePeriod.Place() / "2.log") << "2023 old ";
    Log(u"2024/06/01 00:00:00", u"new");
    EXPECT_EQ(samePeriod.Lines("2.log"), "2023 old " + line);
}

TEST(ErrorLog, SwallowsItsOwnFailures) {
    LogDirectory const log;
    fs::create_directory(log.Place() / "1.log");
    Log(u"2024/03/05 14:07:09", u"no file");
    SetErrLogPath(log.Path(u"missing"));
    Log(u"2024/05/05 14:07:09", u"no directory");
    EXPECT_EQ(std::distance(fs::recursive_directory_iterator(log.Place()), {}), 1);
}

TEST(ErrorLog, ThreadsDoNotMixLinesAndFetchTheTimeBeforeTheyWait) {
    LogDirectory const log;
    otherThreadLogs = true;
    Log(u"2024/03/05 14:07:09", u"outer"); // hangs when the log's section is held while the time is fetched
    std::string expected = "2024/03/05 14:07:09 inner\n2024/03/05 14:07:09 outer\n";
    for (std::array<std::jthread, 4> threads; auto& thread : threads)
        thread = std::jthread([] {
            for (int entry = 0; entry < 50; ++entry) {
                PortableTime::InstallCurrentTimeModifier([]() -> PortableTime { return TestClock(); });
                LogError(u"text");
            }
        });
    for (int entry = 0; entry < 200; ++entry)
        expected += "2024/03/05 14:07:09 text\n";
    EXPECT_EQ(log.Lines("1.log"), expected);
}

} // namespace
} // namespace QMT
