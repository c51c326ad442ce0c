#include "qmt/diagnostics/realtime_report.h"

#include <atomic>
#include <cstring>
#include <set>

#include "qmt/chain/thread_pool.h"
#include "qmt/helpers/system.h"
#include "support/file_content.h"
#include "support/temp_directory.h"
#include "support/text.h"

namespace QMT {
namespace {

using namespace std::string_literals;
using Report = RealTimeReport;

// An entry that does as a test says when it is written.
class Entry : public RealTimeReport {
public:
    explicit Entry(std::function<void(String&)> whenWritten) : action(std::move(whenWritten)) {}

    ~Entry() override { lost += addTime != 0 && action != nullptr; }

    void WriteItem(FormatableTextFile& file) override {
        outOfOrder += addTime < std::exchange(lastTime, addTime);
        std::exchange(action, nullptr)(file);
    }

    using RealTimeReport::addTime;

    static inline unsigned int lastTime = 0;
    static inline int outOfOrder = 0;

    static inline std::atomic<int> lost{0}; // kept, and deleted without having been written

private:
    std::function<void(String&)> action;
};

// Adds entries that write "a" and a line break.
void AddEntries(int count) {
    for (int i = 0; i < count; ++i)
        Report::AddReport(new Entry([](String& text) { text << u"a" << newline; }));
}

struct RealTimeReportTest : testing::Test {
    RealTimeReportTest() {
        StartMillisecsCount();
        while (GetMillisecsCount() == 0)
            std::this_thread::yield();
        Report::TurnReportIngOn();
    }

    // The report, whose entries first get these times.
    std::string Written(std::vector<unsigned int> const& times) {
        EXPECT_EQ(Report::reportItems.Size(), times.size());
        for (std::size_t i = 0; i < times.size(); ++i)
            Report::reportItems[i]->SetAddTime(times[i]);
        Report::WriteReport(directory.Path(u"report"));
        return Content("report");
    }

    std::string Content(char const* name) const { return ContentOf(directory.Place() / name, std::ios::in); }

    TempDirectory directory;
};

bool RefusesAll() {
    TempDirectory const directory;
    REALTIMETRACE(u"lost", 1);
    Report::WriteReport(directory.Path(u"report"));
    return Report::reportItems.Size() == 0 && Report::RefusedCount() == 1 &&
           TakeError(Report::WriteReportFiles(directory.Path(u"report"), u"")) != u"" &&
           std::filesystem::is_empty(directory.Place());
}

TEST(RealTimeReport, IsOffUntilItIsTurnedOn) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process in which no test has turned it on
    EXPECT_EXIT(std::_Exit(RefusesAll() ? 42 : 0), testing::ExitedWithCode(42), "");
}

TEST_F(RealTimeReportTest, WritesOneLineForEachTrace) {
    auto const bytes = [](auto... values) {
        static unsigned char buffer[64];
        std::size_t size = 0;
        ((std::memcpy(buffer + size, &values, sizeof values), size += sizeof values), ...);
        return buffer;
    };
    constexpr float infinity = std::numeric_limits<float>::infinity();
    REALTIMETRACE(u"A", 5);
    REALTIMETRACE(Repeated(70, u'x'), -7);
    REALTIMETRACE(u"none", NoTraceValue);
    REALTIMETRACE(String(u"null pointer"), nullptr, 0);
    REALTIMETRACE(nullptr, String(u"null"));
    REALTIMETRACE(reinterpret_cast<void*>(0x12345678ABCDEF), u"wide");
    REALTIMETRACE(reinterpret_cast<void*>(0x2A), u"");
    REALTIMETRACE(Repeated(1, u'\0') + u"b", 0);
    REALTIMETRACE(u"B", bytes(char{0x12}, char{0x34}), 2);
    REALTIMETRACE(u"", bytes(char{5}, '\xFF'), 2);
    REALTIMETRACE_AUDIOSHORT(u"S", bytes(short{-2}, short{300}), 4);
    REALTIMETRACE_AUDIOSHORT(u"S", nullptr, 0);
    REALTIMETRACE_AUDIOFLOAT(u"F", bytes('x', 0.5F, -1e-7F, infinity) + 1, 12);
    REALTIMETRACE_AUDIOFLOAT_AS_SHORT(u"G", bytes(0.5F, 1.0F, -0.5F, 0.0F, 1e-4F, infinity, 1e30F), 28);
    EXPECT_EQ(Written({4294967290, 4294967290, 4294967291, 0, 0, 0, 0, 0, 9, 99, 99'999'999, 0, 0, 0}),
              "(00000000) A 5\n(00000000) "s + std::string(70, 'x') +
                  " -7\n(00000001) none\n(00000006) null pointer, Buffer size: 0 \n(00000006) null\n"
                  "(00000006) wide 78ABCDEF\n(00000006)        2A\n(00000006) \0b 0\n"s
                  "(00000015) B, Buffer size: 2 12,34,\n(00000105) , Buffer size: 2  5,FF,\n"
                  "(100000005) S, Buffer size: 4 -2,300,[END]\n(00000006) S, Buffer size: 0 [END]\n"
                  "(00000006) F, Buffer size: 12 0.5,-1.0000000116860974e-07,inf,[END]\n"
                  "(00000006) G, Buffer size: 28 4000,8000,FFFFC000,00,03,00,00,[END]\n"s);
}

TEST_F(RealTimeReportTest, IsWrittenOnceUntilItIsTurnedOnAgain) {
    Report::WriteReport(directory.Path(u"report"));
    REALTIMETRACE(u"refused", 1);
    EXPECT_EQ(Report::RefusedCount(), 1U);
    EXPECT_EQ(Written({}), "no file");
    for (int round = 0; round < 2; ++round) {
        Report::TurnReportIngOn();
        EXPECT_EQ(Report::RefusedCount(), 0U);
        REALTIMETRACE(u"kept", round);
        EXPECT_EQ(Written({7}), "(00000000) kept " + std::to_string(round) + "\n");
        EXPECT_EQ(Written({}), "(00000000) kept " + std::to_string(round) + "\n");
    }
}

TEST_F(RealTimeReportTest, KeepsEntriesWhenAFileCannotBeOpened) {
    String const missing = directory.Path(u"missing") + BaseFile::GetDirSeparator() + u"file";
    REALTIMETRACE(u"first", 1);
    for (String const& path : {missing, String()}) {
        Report::WriteReport(path);
        REALTIMETRACE(u"refused", 1);
        Report::TurnReportIngOn();
        EXPECT_NE(TakeError(Report::WriteReportFiles(path, missing)).Find(missing), -1);
        Report::TurnReportIngOn();
    }
    String const report = directory.Path(u"report");
    EXPECT_NE(TakeError(Report::WriteReportFiles(report, report)).Find(report), -1);
    Report::TurnReportIngOn();
    REALTIMETRACE(u"second", 2);
    EXPECT_EQ(Written({10, 25}), "(00000000) first 1\n(00000015) second 2\n");
}

// On a thread with a name, whose end it waits for.
void RunOnThread(void (*work)(void*, Event*)) {
    ThreadPool pool("tra\"cer", 1);
    EXPECT_EQ(TakeError(pool.RunTask(u"", work, nullptr, nullptr)), u"");
}

TEST_F(RealTimeReportTest, WritesEventsForAViewer) {
    RunOnThread(
        [](void*, Event*) { REALTIMETRACE(u"\xDE00\"quoted\\\" \x00E4\t\xD83D\xDE00\xD83D_\xD83D", -5); });
    RunOnThread([](void*, Event*) {
        REALTIMETRACE(reinterpret_cast<void*>(0xAB), u"object");
        REALTIMETRACE(u"none", NoTraceValue);
        AddEntries(1);
    });
    for (std::size_t i = 0; i < 4; ++i)
        Report::reportItems[i]->SetAddTime(static_cast<unsigned int>(4294967295 + 5'000'000 * i));
    EXPECT_EQ(TakeError(Report::WriteReportFiles(directory.Path(u"report"), directory.Path(u"events"))), u"");
    EXPECT_EQ(Content("events"),
              R"({"displayTimeUnit":"ms","traceEvents":[
{"name":"thread_name","ph":"M","pid":1,"tid":1,"args":{"name":"tra\"cer"}},
{"name":"thread_name","ph":"M","pid":1,"tid":2,"args":{"name":"tra\"cer"}},
{"name":")"
              "\uFFFD\\\"quoted\\\\\\\" \xC3\xA4\\u0009\xF0\x9F\x98\x80\uFFFD_\uFFFD"
              R"(","ph":"i","s":"t","pid":1,"tid":1,"ts":0,"args":{"value":-5}},
{"name":"object","ph":"i","s":"t","pid":1,"tid":2,"ts":5000000000,"args":{"pointer":"AB"}},
{"name":"none","ph":"i","s":"t","pid":1,"tid":2,"ts":10000000000},
{"name":"a","ph":"i","s":"t","pid":1,"tid":2,"ts":15000000000}
]}
)");
    EXPECT_EQ(Content("report").substr(Content("report").size() - 18), "(10000000) none\na\n");
}

TEST_F(RealTimeReportTest, StampsWithTheClocksReading) {
    for (unsigned int const start = GetMillisecsCount(); GetMillisecsCount() - start < 5;) {
        auto* const entry = new Entry([](String&) {});
        unsigned int const before = GetMillisecsCount();
        Report::AddReport(entry);
        EXPECT_LE(before, entry->addTime);
        EXPECT_LE(entry->addTime, GetMillisecsCount());
    }
    EXPECT_EQ(TakeError(Report::WriteReportFiles(u"", u"")), u"");
}

TEST_F(RealTimeReportTest, RefusesWithoutWaitingForTheFile) {
    Report::AddReport(new Entry([](String& text) {
        std::thread([] { REALTIMETRACE(u"refused", 1); }).join(); // hangs if it waits
        AddEntries(1);                                            // refused, too
        Report::TurnReportIngOn();
        AddEntries(2);
        text << u"b" << newline;
    }));
    EXPECT_EQ(Written({1}), "b\n");
    EXPECT_EQ(Written({1, 2}), "a\na\n");
}

TEST_F(RealTimeReportTest, ThreadsThatComeAndGoShareMemory) {
    std::set<std::uintptr_t> chunks;
    for (std::size_t i = 0; i < 20; ++i) {
        std::thread([] { REALTIMETRACE(u"once", 1); }).join();
        chunks.insert(reinterpret_cast<std::uintptr_t>(Report::reportItems[i]) / 16384);
    }
    EXPECT_LE(chunks.size(), 2U);
    EXPECT_NE(Written(std::vector<unsigned int>(20)), "");
}

TEST_F(RealTimeReportTest, ThreadsTraceWhileItIsWritten) {
    Entry::lastTime = 0;
    Entry::outOfOrder = 0;
    std::vector<int> lasts(4); // written by whoever writes the report
    std::atomic<int> running{4};
    std::vector<std::jthread> threads;
    for (int& last : lasts)
        threads.emplace_back([&] {
            for (int number = 1; number <= 3000; ++number)
                Report::AddReport(new Entry(
                    [&last, number](String&) { Entry::outOfOrder += number < std::exchange(last, number); }));
            --running;
        });
    while (running != 0) {
        Report::WriteReport(directory.Path(u"report"));
        Report::TurnReportIngOn();
    }
    threads.clear();
    Report::WriteReport(directory.Path(u"report"));
    EXPECT_EQ(Report::reportItems.Size(), 0U);
    EXPECT_EQ(Entry::outOfOrder, 0);
    EXPECT_EQ(Entry::lost, 0);
}

} // namespace
} // namespace QMT
