#include "qmt/platform/registry.h"

#include <map>

#include <sqlite3.h>
#include <sys/stat.h>

#include "platform/registry_counting.h"
#include "support/child_process.h"
#include "support/file_content.h"
#include "support/registry_fixtures.h"

namespace QMT {
namespace {

namespace fs = std::filesystem;

using namespace std::string_literals;

// ---- what every registry does

class AnyRegistryTest : public testing::TestWithParam<std::string> {
protected:
    TempDirectory directory;
    std::unique_ptr<Registry> inner = GetParam() == "memory" ? MakeMemoryRegistry() : RegistryIn(directory);
    CountingRegistry counting{*inner};
    RegistryCalls calls{GetParam() == "counted" ? counting : *inner};
};

INSTANTIATE_TEST_SUITE_P(Implementations, AnyRegistryTest, testing::Values("memory", "database", "counted"),
                         [](auto const& suite) { return suite.param; });

TEST_P(AnyRegistryTest, KeysAreFoundByPathAndCreatedOnDemand) {
    for (void* root : {user, machine}) {
        ASSERT_EQ(calls.Open(root, u"Software"), 0U);
        void* const software = calls.key;
        EXPECT_EQ(calls.Open(software, u"A"), ENOENT);
        EXPECT_EQ(calls.Create(software, u"\\A\\\\B\\c\xD800\\"), 0U);
        void* const deep = calls.key;
        EXPECT_EQ((Results{calls.disposition, calls.Set(deep, u"x", "12")}), (Results{1, 0}));
        EXPECT_EQ((Results{calls.Create(root, u"SOFTWARE\\a\\b\\C\xD800"), calls.disposition}),
                  (Results{0, 2}));
        EXPECT_EQ(calls.Query(calls.key, u"X"), "12");
        EXPECT_EQ(calls.Open(deep, u""), 0U); // the key itself
        EXPECT_EQ(calls.registry.RegCloseKey(deep), 0U);
        EXPECT_EQ(calls.Query(calls.key, u"x"), "12");
        EXPECT_EQ(calls.Open(calls.key, u"d"), ENOENT);
        EXPECT_EQ(calls.registry.RegCloseKey(root), 0U);
        for (void* none : {deep, static_cast<void*>(nullptr)})
            EXPECT_EQ((Results{calls.Open(none, u"A"), calls.Create(none, u"A"), calls.Set(none, u"x", ""),
                               calls.DeleteValue(none, u"x"), calls.Delete(none, u"A"),
                               calls.Save(none, u"x"), calls.registry.RegCloseKey(none)}),
                      Results(7, EBADF));
    }
}

TEST_P(AnyRegistryTest, ValuesComeBackByteForByte) {
    ASSERT_EQ(calls.Create(user, u"Software\\V"), 0U);
    void* const key = calls.key;
    std::map<String, std::string> const values{{u"", "default"},
                                               {Repeated(500, u'n'), "long"},
                                               {u"a\\b", ""},
                                               {u"line\r\n\x1", "\0\xFF\n"s},
                                               {u"\xDC80\xD800", "odd"},
                                               {u"\xD83D\xDE00\xFFFD", std::string(1 << 20, 'b')}};
    for (auto const& [name, bytes] : values) {
        EXPECT_EQ(calls.Set(key, name, "to be replaced"), 0U);
        EXPECT_EQ(calls.Set(key, name, bytes, 0x8000000AU), 0U);
    }
    for (auto const& [name, bytes] : values) {
        EXPECT_EQ(calls.Query(key, name), bytes);
        EXPECT_EQ((Results{calls.type, calls.DeleteValue(key, name), calls.DeleteValue(key, name)}),
                  (Results{0x8000000AU, 0, ENOENT}));
        EXPECT_EQ(calls.Query(key, name), "error 2");
    }
}

TEST_P(AnyRegistryTest, AHandleOfADeletedKeyIsNoneOfANewOne) {
    ASSERT_EQ(calls.Create(user, u"D\\E"), 0U);
    void* const deep = calls.key;
    EXPECT_EQ((Results{calls.Delete(user, u"F"), calls.Delete(deep, u"\\"), calls.Delete(user, u"d\\e")}),
              (Results{ENOENT, EINVAL, 0}));
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(calls.Query(deep, u"x"), "error " + std::to_string(EIDRM));
        EXPECT_EQ(calls.Names(deep, true), String() << EIDRM);
        EXPECT_EQ((Results{calls.Set(deep, u"x", "1"), calls.Create(deep, u"F"), calls.Delete(deep, u"F")}),
                  Results(3, EIDRM));
        EXPECT_EQ(calls.Create(user, u"D\\E"), 0U);
    }
}

// Random calls beside a map of paths to values.
TEST_P(AnyRegistryTest, DoesWhatASimpleModelDoes) {
    std::mt19937 random = SeededGenerator();
    std::map<String, std::map<String, std::string>> model{{u"\\a", {}}};
    ASSERT_EQ(calls.Create(user, u"a"), 0U);
    for (int step = 0; step < 600; ++step) {
        auto const any = std::next(model.begin(), static_cast<int>(random() % model.size()));
        String const path = any->first;
        String const name = String() << static_cast<int>(random() % 5);
        ASSERT_EQ(calls.Open(user, path), 0U);
        void* const key = calls.key;
        String names;
        for (auto const& [valueName, bytes] : any->second) {
            names << valueName << u"|";
            ASSERT_EQ(calls.Query(key, valueName), bytes);
        }
        ASSERT_EQ(calls.Names(key, false), names << 259);
        bool const hasSubKeys =
            std::next(any) != model.end() && std::next(any)->first.Find(path + u"\\") == 0;
        ASSERT_EQ(calls.Names(key, true) != u"259", hasSubKeys);
        auto const choice = random() % 4;
        if (choice == 0) {
            bool const isNew = model.try_emplace(path + u"\\" + name).second;
            ASSERT_EQ((Results{calls.Create(key, name), calls.disposition}), (Results{0, isNew ? 1U : 2U}));
        } else if (choice == 1) {
            ASSERT_EQ(calls.Set(key, name, any->second[name] = std::to_string(step)), 0U);
        } else if (choice == 2) {
            ASSERT_EQ(calls.DeleteValue(key, name) == 0, any->second.erase(name) == 1);
        } else if (path != u"\\a") {
            ASSERT_EQ(calls.Delete(user, path), hasSubKeys ? ENOTEMPTY : 0);
            std::erase_if(model, [&](auto const& entry) { return entry.first == path && !hasSubKeys; });
        }
    }
}

TEST_P(AnyRegistryTest, ThreadsShareIt) {
    for (std::array<std::jthread, 4> threads; auto& thread : threads)
        thread = std::jthread([this, &thread, &first = threads[0]] {
            RegistryCalls own{*inner};
            String const name = String() << static_cast<int>(&thread - &first);
            for (int round = 0; round < 50; ++round)
                EXPECT_EQ((Results{own.Create(user, u"T"), own.Set(own.key, name, "1"),
                                   own.DeleteValue(own.key, name), own.Set(own.key, name, "2"),
                                   own.registry.RegCloseKey(own.key)}),
                          Results(5, 0));
        });
    ASSERT_EQ(calls.Open(user, u"T"), 0U);
    EXPECT_EQ(calls.Names(calls.key, false), u"0|1|2|3|259");
}

std::string Utf16(std::u16string const& text) {
    return {reinterpret_cast<char const*>(text.data()), 2 * text.size()};
}

TEST_P(AnyRegistryTest, SavesTextThatEditorsRead) {
    ASSERT_EQ((Results{calls.Create(user, u"S]\\sub"), calls.Open(user, u"S]")}), Results(2, 0));
    void* const key = calls.key;
    for (auto const& [name, text] :
         {std::pair{u"", u"d"}, {u"a\"\\b\n", u"say \"\\\" \u20AC"}, {u"e", u"\xD800"}})
        ASSERT_EQ(calls.Set(key, name, Utf16(text + u"\0"s)), 0U);
    ASSERT_EQ((Results{calls.Set(key, u"f", "\x78\x56\x34\x12", REG_DWORD),
                       calls.Set(key, u"g", std::string(30, '\xAB'), 3)}),
              Results(2, 0));
    String const file = directory.Path(u"saved.reg");
    EXPECT_EQ((Results{calls.Save(key, file), calls.Save(key, file), calls.Save(key, file + u"/x")}),
              (Results{0, EEXIST, ENOTDIR}));
    EXPECT_EQ(
        ContentOf(directory.Place() / "saved.reg"),
        Utf16(u"\xFEFFWindows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\S]]\r\n@=\"d\"\r\n"
              u"\"a\\\"\\\\b\\n\"=\"say \\\"\\\\\\\" \u20AC\"\r\n\"e\"=hex(1):00,d8,00,00\r\n"
              u"\"f\"=dword:12345678\r\n"
              u"\"g\"=hex:ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,ab,\\\r\n"
              u"  ab,ab,ab,ab,ab,ab,ab\r\n\r\n[HKEY_CURRENT_USER\\S]\\sub]\r\n"));
    EXPECT_EQ((Results{calls.Create(key, u"two\nlines"), calls.Save(key, file + u"2")}),
              (Results{0, EILSEQ}));
}

// In the folder QMT_SAVED_REGISTRY for scripts/check_saved_registry.py, which has a tool of others read it.
TEST(SavedRegistry, HoldsValuesOfManyKindsForOthersToRead) {
    TempDirectory const directory;
    char const* const given = std::getenv("QMT_SAVED_REGISTRY");
    std::mt19937 random = SeededGenerator();
    // Any units but zero, those with a meaning in the file more often.
    auto const anyText = [&](std::size_t longest) {
        std::u16string text(random() % (longest + 1), u'x');
        for (char16_t& unit : text)
            unit = random() % 2 ? u"\"\\\r\n\t[]=@%;,\xD800\xDC00\xFEFF\u20AC"[random() % 16]
                                : static_cast<char16_t>(1 + random() % 0xFFFD);
        return text;
    };
    auto const registry = MakeMemoryRegistry();
    RegistryCalls calls{*registry};
    for (int number = 0; number < 200; ++number) {
        String const key = String(u"Software\\QmtSaved\\key") << number % 7;
        std::u16string const name = number < 7 ? u"" : anyText(20) + static_cast<char16_t>(0x400 + number);
        std::uint32_t const type = std::array<std::uint32_t, 4>{1, 3, 4, 7}[random() % 4];
        std::u16string const text =
            type == REG_DWORD ? std::u16string(2, static_cast<char16_t>(random())) : anyText(90) + u"\0"s;
        ASSERT_EQ((Results{calls.Create(user, key), calls.Set(calls.key, name.c_str(), Utf16(text), type)}),
                  Results(2, 0));
    }
    String const folder = given ? DecodeFromUTF8(given, false) : directory.Path();
    ASSERT_EQ(calls.Open(user, u"Software\\QmtSaved"), 0U);
    EXPECT_EQ(calls.Save(calls.key, folder + u"/saved.reg"), 0U);
}

// ---- what the databases do besides

struct RegistryDatabaseTest : testing::Test {
    TempDirectory directory;
    std::unique_ptr<Registry> mine = RegistryIn(directory);
    std::unique_ptr<Registry> theirs = RegistryIn(directory); // as another process has it
    RegistryCalls calls{*mine}, others{*theirs};
};

TEST_F(RegistryDatabaseTest, ReadingMakesNoDatabase) {
    EXPECT_EQ(calls.Open(user, u"Software", KEY_READ), ENOENT);
    EXPECT_EQ(calls.Names(user, true), u"259");
    EXPECT_TRUE(fs::is_empty(directory.Place()));
    EXPECT_EQ(others.Create(user, u"A", KEY_READ), 0U);
    EXPECT_EQ(calls.Open(user, u"Software", KEY_READ), 0U);
    fs::remove(directory.Place() / "user.db"); // what is written now would be lost
    EXPECT_EQ(others.Set(user, u"x", "1"), ESTALE);
}

TEST_F(RegistryDatabaseTest, MakesItsFilesForThoseWhoMayReadThem) {
    mode_t const mask = ::umask(077);
    auto const made = MakeDatabaseRegistry(directory.Path(u"u/v/user.db"), directory.Path(u"m/machine.db"));
    for (void* root : {user, machine})
        EXPECT_EQ(RegistryCalls{*made}.Open(root, u"Software"), 0U);
    ::umask(mask);
    for (auto const& [name, mode] :
         {std::pair{"u", 0700}, {"u/v/user.db", 0600}, {"m", 0755}, {"m/machine.db-shm", 0644}})
        EXPECT_EQ(static_cast<int>(fs::status(directory.Place() / name).permissions()), mode) << name;
}

// A key that is known from before may have been deleted by another process.
TEST_F(RegistryDatabaseTest, MakesAKnownKeyAnewThatOthersHaveDeleted) {
    ASSERT_EQ(calls.Create(user, u"Software\\P"), 0U);
    void* const parent = calls.key;
    auto const deletedByOthers = [&] {
        ASSERT_EQ((Results{calls.Create(parent, u"S"), calls.Set(calls.key, u"old", "1"),
                           others.Delete(user, u"Software\\P\\S"), calls.Create(parent, u"S")}),
                  Results(4, 0));
    };
    deletedByOthers();
    EXPECT_EQ((Results{calls.Set(calls.key, u"new", "2"), others.Open(user, u"Software\\P\\S")}),
              Results(2, 0));
    EXPECT_EQ(others.Names(others.key, false), u"new|259");
    deletedByOthers();
    EXPECT_EQ(calls.Query(calls.key, u"old"), "error 2");
    // Opening always looks.
    EXPECT_EQ((Results{others.Open(user, u"Software\\P\\S"), calls.Open(parent, u"S"),
                       others.Delete(user, u"Software\\P\\S"), calls.Open(parent, u"S")}),
              (Results{0, 0, 0, ENOENT}));
    EXPECT_EQ((Results{others.Delete(user, u"Software\\P"), calls.Set(parent, u"x", "1")}),
              (Results{0, EIDRM}));
}

// Such a reader would otherwise find nothing, and write its default over the value.
TEST_F(RegistryDatabaseTest, AValueThatOthersMakeLongerIsReadAsItWas) {
    ASSERT_EQ((Results{calls.Create(user, u"K"), others.Create(user, u"K")}), Results(2, 0));
    void* const key = calls.key;
    for (auto* writer : {&others, &calls}) {
        ASSERT_EQ(others.Set(others.key, u"x", "first"), 0U);
        std::string room = "12345";
        std::uint32_t size = 2;
        auto const query = [&] {
            return mine->RegQueryValueExW(key, u"x", nullptr, nullptr, room.data(), &size);
        };
        EXPECT_EQ(query(), ERROR_MORE_DATA);
        ASSERT_EQ(writer->Set(writer->key, u"x", "longer text"), 0U);
        bool const isByOthers = writer == &others; // what this registry has written is seen
        EXPECT_EQ(query(), isByOthers ? 0U : ERROR_MORE_DATA);
        EXPECT_EQ(room, isByOthers ? "first" : "12345");
        EXPECT_EQ(calls.Query(key, u"x"), "longer text");
    }
}

TEST_F(RegistryDatabaseTest, RefusesFilesThatAreNoneOfIts) {
    std::ofstream(directory.Place() / "user.db") << std::string(5000, 'x');
    EXPECT_EQ(calls.Open(user, u"Software"), EIO);
    fs::path const file = directory.Place() / "machine.db";
    for (std::string const version : {"0", "1", "2; PRAGMA application_id = 0x514D5452"}) {
        std::string const content = "CREATE TABLE IF NOT EXISTS mine (x); PRAGMA user_version = " + version;
        sqlite3* other = nullptr;
        sqlite3_open(file.c_str(), &other);
        ASSERT_EQ(sqlite3_exec(other, content.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(other);
        EXPECT_EQ(calls.Open(machine, u"Software"), ENOTSUP);
        EXPECT_EQ(ContentOf(file)[18], 1) << content; // its journal mode stays
    }
    EXPECT_EQ(ContentOf(directory.Place() / "user.db"), std::string(5000, 'x'));
    auto const nowhere = MakeDatabaseRegistry(directory.Path(), u"");
    RegistryCalls none{*nowhere};
    EXPECT_NE(none.Open(user, u"Software"), 0U);
    EXPECT_EQ(none.Open(machine, u"Software"), ENOENT);
}

// In a process without rights while no writer lives, also behind one that was killed before it could tidy up.
TEST_F(RegistryDatabaseTest, AUserWithoutRightsReadsAndIsRefusedToWrite) {
    auto const setModes = [&](unsigned ofDirectory, unsigned ofFiles) {
        fs::permissions(directory.Place(), fs::perms(ofDirectory));
        for (char const* file : {"machine.db", "machine.db-wal", "machine.db-shm"})
            fs::permissions(directory.Place() / file, fs::perms(ofFiles));
    };
    for (std::string const written : {"in order", "killed"}) {
        ChildProcess writer([&] {
            auto registry = RegistryIn(directory);
            RegistryCalls writing{*registry};
            bool const isWritten =
                writing.Create(machine, u"Software\\M") == 0 && writing.Set(writing.key, u"x", written) == 0;
            if (written == "killed")
                registry.release();
            return isWritten;
        });
        ASSERT_TRUE(writer.Wait());
        setModes(0555, 0444);
        ChildProcess reader([&] {
            bool const hasNoRights = ::geteuid() != 0 || ::setuid(65534) == 0;
            void* const root = machine;
            Results const results{calls.Open(root, u"Software\\M"), calls.Create(root, u"New", KEY_READ),
                                  calls.Delete(root, u"Software\\M"),
                                  calls.Open(root, u"Software\\M", KEY_READ),
                                  calls.Set(calls.key, u"x", "changed")};
            bool const areRight = results == Results{EACCES, EACCES, EACCES, 0, EACCES};
            return hasNoRights && areRight && calls.Query(calls.key, u"x") == written;
        });
        EXPECT_TRUE(reader.Wait()) << written;
        setModes(0755, 0644);
    }
}

TEST(SystemRegistry, TakesItsFilesFromACallBeforeTheFirstUse) {
    TempDirectory const directory;
    ChildProcess process([&] { // whose first use it is
        bool works = SetRegistryFiles(directory.Path(u"user.db"), directory.Path(u"machine.db"));
        Registry* const system = &GetRegistry();
        works &= RegistryCalls{*system}.Create(user, u"Software\\A") == 0 && !SetRegistryFiles(u"a", u"b");
        auto const memory = MakeMemoryRegistry();
        works &= UseRegistry(memory.get()) == nullptr && &GetRegistry() == memory.get();
        return works && UseRegistry(nullptr) == memory.get() && &GetRegistry() == system;
    });
    EXPECT_TRUE(process.Wait());
    EXPECT_TRUE(fs::exists(directory.Place() / "user.db"));
}

} // namespace
} // namespace QMT
