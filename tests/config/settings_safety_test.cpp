// Settings survive processes that are killed, processes beside each other, and a full disc.
#include <chrono>

#include <sqlite3.h>
#include <sys/mount.h>

#include "qmt/config/app_config.h"
#include "qmt/config/file_tree_config.h"
#include "qmt/helpers/system.h"
#include "support/child_process.h"
#include "support/registry_fixtures.h"

namespace QMT {
namespace {

constexpr int entryCount = 8;
constexpr std::size_t longestSafeValue = 500;

// QMT_TEST_THOROUGH=1 takes the time for the full numbers.
int Rounds(int usual, int thorough) {
    return std::getenv("QMT_TEST_THOROUGH") ? thorough : usual;
}

String EntryName(int entry) {
    return u"entry" + (String() << entry);
}

// A text that shows what it is: its number, and a letter for it as often as it takes to a length of its own.
String ValueOf(int number, std::size_t longest) {
    std::string text = std::to_string(number) + ':';
    text.resize(text.size() + static_cast<unsigned>(number) * 7919 % (longest - text.size()),
                static_cast<char>('a' + number % 26));
    return DecodeFromUTF8(text.c_str(), false);
}

// The number of a text that ValueOf made; -1 for any other.
int NumberOf(String const& text, std::size_t longest) {
    int number = -1;
    if (text.Find(u":") > 0)
        text.Left(static_cast<std::size_t>(text.Find(u":"))) >> number;
    return number >= 0 && ValueOf(number, longest) == text ? number : -1;
}

// One of the two stores, opened anew by every process that uses it.
class Store {
public:
    Store(bool isRegistry, TempDirectory const& directory)
        : registry(RegistryIn(directory)), former(PutInUse(*registry)), files(directory.Path()) {
        EXPECT_EQ(isRegistry ? TakeError(app.CheckExists(false)) : u"", u"");
        settings = isRegistry ? static_cast<SettingsStore*>(&app) : &files;
    }

    String Write(String const& entry, String const& value) {
        return TakeError(settings->WriteProfileStr(u"S", entry, value));
    }

    String Read(String const& entry) { return settings->GetReadOnlyString(u"S", entry); }

    String ReadOr(String const& entry, String const& text) { return settings->GetString(u"S", entry, text); }

private:
    TestRegistry registry;
    std::shared_ptr<Registry> former;
    AppConfig app{u"M", u"P", u"", false};
    FileTreeConfig files;
    SettingsStore* settings;
};

struct SettingsSafetyTest : testing::TestWithParam<bool> {
    // SQLite's own check of the registry's database.
    void CheckDatabase() const {
        sqlite3* database = nullptr;
        std::string verdict;
        auto const note = [](void* told, int, char** columns, char**) {
            return static_cast<std::string*>(told)->append(columns[0]), 0;
        };
        EXPECT_EQ(sqlite3_open((directory.Place() / "user.db").c_str(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(database, "PRAGMA integrity_check", note, &verdict, nullptr), SQLITE_OK);
        EXPECT_EQ(verdict, "ok");
        sqlite3_close(database);
    }

    TempDirectory directory;
};

INSTANTIATE_TEST_SUITE_P(Stores, SettingsSafetyTest, testing::Bool(),
                         [](auto const& suite) { return suite.param ? "registry" : "files"; });

// Each entry holds a number no older than the last round left, and none is empty or torn.
TEST_P(SettingsSafetyTest, AKilledProcessLosesNothing) {
    std::mt19937 random = SeededGenerator();
    std::vector<int> numbers(entryCount, -1);
    int changes = 0;
    for (int round = 0, rounds = Rounds(25, 300); round < rounds; ++round) {
        int const next = std::max(0, *std::max_element(numbers.begin(), numbers.end()));
        {
            ChildProcess const writer([&]() -> bool {
                Store store(GetParam(), directory);
                for (int number = next;; ++number)
                    store.Write(EntryName(number % entryCount), ValueOf(number, longestSafeValue));
            });
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 30'000));
        }
        Store store(GetParam(), directory);
        for (int entry = 0; entry < entryCount; ++entry) {
            int& last = numbers[static_cast<std::size_t>(entry)];
            int const number = NumberOf(store.Read(EntryName(entry)), longestSafeValue);
            ASSERT_GE(number, last);
            changes += number > last;
            last = number;
        }
    }
    EXPECT_GT(changes, entryCount);
    CheckDatabase();
}

TEST_P(SettingsSafetyTest, ProcessesBesideEachOtherLoseNothing) {
    int const count = Rounds(150, 1500);
    auto const writeAll = [&](int process) {
        Store store(GetParam(), directory);
        for (int entry = process; entry < 2 * count; entry += 2)
            if (!store.Write(EntryName(entry), ValueOf(entry, 40)).IsEmpty())
                return false;
        return true;
    };
    ChildProcess first([&] { return writeAll(0); }), second([&] { return writeAll(1); });
    EXPECT_TRUE(first.Wait() && second.Wait());
    Store store(GetParam(), directory);
    for (int entry = 0; entry < 2 * count; ++entry)
        ASSERT_EQ(store.Read(EntryName(entry)), ValueOf(entry, 40));
    CheckDatabase();
}

// No read beside a writer finds an entry empty, which would put the default over it, or torn. Of values that
// are longer a read may find a mixture; they are counted.
TEST_P(SettingsSafetyTest, AReaderBesideAWriterFindsOldOrNew) {
    for (std::size_t const longest : {longestSafeValue, std::size_t{20'000}}) {
        ASSERT_EQ(Store(GetParam(), directory).Write(u"e", ValueOf(1, longest)), u"");
        ChildProcess writer([&]() -> bool {
            Store store(GetParam(), directory);
            for (int number = 2;; ++number)
                store.Write(u"e", ValueOf(number, longest));
        });
        Store store(GetParam(), directory);
        std::set<int> seen;
        int torn = 0;
        int const fewest = Rounds(4000, 100'000) / (longest > longestSafeValue ? 10 : 1);
        int reads = 0;
        for (; reads < fewest || seen.size() < 2; ++reads) { // the writer may be slow to start
            String const text = store.ReadOr(u"e", u"the default");
            ASSERT_NE(text, u"the default");
            int const number = NumberOf(text, longest);
            torn += number < 0;
            seen.insert(number);
        }
        std::cout << torn << " of " << reads << " reads of up to " << longest << " bytes were torn\n";
        EXPECT_TRUE(torn == 0 || (!GetParam() && longest > longestSafeValue));
    }
}

// A small file system of the test's own.
TEST_P(SettingsSafetyTest, AFullDiscIsAnErrorAndLosesNothingElse) {
    if (::geteuid() != 0 || ::mount("none", directory.Place().c_str(), "tmpfs", 0, "size=512k") != 0)
        GTEST_SKIP() << "only root may mount a file system to fill";
    {
        Store store(GetParam(), directory);
        String const value(std::basic_string<CodeUnit>(3000, u'v'));
        int stored = 0;
        String error;
        for (; error.IsEmpty() && stored < 1000; ++stored)
            error = store.Write(EntryName(stored), value);
        EXPECT_NE(error.Find(GetSystemErrMsge(ENOSPC)), -1) << testing::PrintToString(error);
        EXPECT_EQ(store.ReadOr(u"new", value), value);
        for (int entry = 0; entry < stored - 1; ++entry)
            EXPECT_EQ(store.Read(EntryName(entry)), value);
    }
    ::umount2(directory.Place().c_str(), MNT_DETACH);
}

} // namespace
} // namespace QMT
