// What the databases do besides, in which a registry is kept where the system has none.
#include <sqlite3.h>
#include <sys/stat.h>

#include "support/child_process.h"
#include "support/file_content.h"
#include "support/registry_fixtures.h"

namespace QMT {
namespace {

struct RegistryDatabaseTest : testing::Test {
    TempDirectory directory;
    TestRegistry mine = RegistryIn(directory);
    TestRegistry theirs = RegistryIn(directory); // as another process has it
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
