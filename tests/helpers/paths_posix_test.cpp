// What paths and directories are where the system names files by bytes.
#include <fstream>

#include "qmt/helpers/paths.h"
#include "support/child_process.h"
#include "support/temp_directory.h"
#include "support/text.h"

namespace QMT {
namespace {

TEST(Files, AreMadeWriteableForTheirOwner) {
    TempDirectory const directory;
    fs::path const file = directory.Place() / "\xC3\xA4 \xFF";
    EXPECT_FALSE(EnsureWriteable(directory.Path(u"\u00E4 \xDCFF")));
    std::ofstream(file) << "text";
    fs::permissions(file, fs::perms(0440));
    EXPECT_TRUE(EnsureWriteable(directory.Path(u"\u00E4 \xDCFF")));
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
    EXPECT_FALSE(EnsureWriteable(directory.Path() + String(std::basic_string<CodeUnit>(1, 0))));
}

// Runs a copy of this program, deep down and below a name that is no UTF-8, which deletes itself first.
TEST(Directories, OfTheProgramMayBeLongOddAndGone) {
    if (char const* const place = std::getenv("QMT_TEST_PLACE")) {
        fs::remove(fs::read_symlink("/proc/self/exe"));
        String const told = GetAppPath();
        std::string const lowBytes(told.View().begin(), told.View().end());
        ::_exit(lowBytes == place && GetInstallDataDir(u"x") == told ? 0 : 1);
    }
    TempDirectory const directory;
    fs::path const exe = directory.Place() / std::string(200, 'd') / std::string(200, '\xFF') / "exe";
    fs::create_directories(exe.parent_path());
    fs::copy_file("/proc/self/exe", exe);
    ::setenv("QMT_TEST_PLACE", exe.parent_path().c_str(), 1);
    ChildProcess copy(
        [&] { return ::execl(exe.c_str(), "", "--gtest_filter=*LongOddAndGone", nullptr) == 0; });
    EXPECT_TRUE(copy.Wait());
}

TEST(Directories, OfTheUserAreThoseOfTheDesktop) {
    TempDirectory const directory;
    std::string const home = directory.Place().string();
    ::setenv("HOME", (home + "/").c_str(), 1);
    ::unsetenv("XDG_DATA_HOME");
    ::setenv("XDG_CONFIG_HOME", (home + "/config/").c_str(), 1);
    fs::create_directory(home + "/config");
    auto const expect = [&](std::string const& line, std::string const& expected) {
        std::ofstream(home + "/config/user-dirs.dirs") << "# XDG_PICTURES_DIR=\"/no\"\n" << line << "\n";
        String const text = DecodeFromUTF8(expected.c_str(), false);
        ChildProcess child([&] { return GetUserPictureDir(u"") == text; }); // with a first call of its own
        EXPECT_TRUE(child.Wait()) << line;
    };
    expect(" XDG_PICTURES_DIR = \"$HOME/My \\\"\\$ \xC3\xA4/\" # mine", home + "/My \"$ \xC3\xA4");
    expect("XDG_PICTURES_DIR=\"/one\"\nXDG_PICTURES_DIR=\"/two\"", "/two");
    for (char const* const value : {"", "=/a", "=\"/a", "=\"a\"", "=\"$HOMER/a\"", "=\"/a\\", "X=\"/a\""})
        expect(std::string("XDG_PICTURES_DIR") + value, home + "/Pictures");
    ::setenv("XDG_CONFIG_HOME", "config", 1); // not absolute
    EXPECT_EQ(GetUserAudioDir(u"x"), directory.Path(u"Music"));
    EXPECT_EQ(GetUserDataDir(u"first"), directory.Path(u".local/share/first"));
    EXPECT_EQ(GetUserDataDir(u"second"), directory.Path(u".local/share/first"));
}

} // namespace
} // namespace QMT
