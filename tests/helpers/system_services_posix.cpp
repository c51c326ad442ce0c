// What the system's own services make of the calls.
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "helpers/code_page_text.h"
#include "support/temp_directory.h"

namespace QMT {
namespace {

TEST(SystemErrors, AreThoseOfTheCallingThread) {
    EXPECT_EQ(GetSystemErrMsge(2), u" Error code = 00000002. No such file or directory");
    errno = EACCES;
    EXPECT_EQ(GetSystemErrMsge(), u" Error code = 0000000D. Permission denied");
}

TEST(KernelObjects, AreOpenedToAllByTheirModeBits) {
    TempDirectory const directory;
    String const refused = u"Couldn't reset kernel object security to open access:" + GetSystemErrMsge(EBADF);
    auto const open = [](std::intptr_t file) {
        return TakeError(AllowAccessToKernelObject(reinterpret_cast<void*>(file)));
    };
    for (auto const& [before, after] :
         {std::pair<mode_t, mode_t>{0600, 0666}, {0000, 0666}, {04700, 04777}}) {
        std::filesystem::path const path = directory.Place() / std::to_string(before);
        int const file = ::open(path.c_str(), O_RDONLY | O_CREAT, 0600);
        ASSERT_EQ(::fchmod(file, before), 0);
        EXPECT_EQ(open(file), u"");
        EXPECT_EQ(static_cast<mode_t>(std::filesystem::status(path).permissions()), after);
        EXPECT_EQ(::close(file), 0);
        EXPECT_EQ(open(file), refused);
    }
    EXPECT_EQ(open(-1) + open(std::intptr_t{1} << 40), refused + refused);
}

TEST(CodePages, LeaveBytesOpenAndJoinAccents) {
    EXPECT_EQ(Text("a\x81", 1252) + Text("a\xD2", 1258), u"a\uFFFD3\u1EA32");
}

TEST(CodePages, ZeroIsTheEncodingOfTheUsersLocale) {
    for (auto const& [locale, bytes] :
         {std::pair{"C.UTF-8", "\xC3\xA4\x33"}, {"C", "?2"}, {"there is none", "?2"}}) {
        ::setenv("LC_ALL", locale, 1);
        EXPECT_EQ(Bytes(u"\u00E4", 0), bytes);
        EXPECT_EQ(GetOSCurrency(), u"EUR");
    }
    ::unsetenv("LC_ALL");
}

TEST(User, HasTheNameOfTheProcess) {
    String const expected = DecodeFromUTF8(::getpwuid(::geteuid())->pw_name, false);
    EXPECT_EQ(GetFixedDeviceIdentifier(), expected);
    WriteUserName(u"somebody else");
    EXPECT_EQ(GetUserNameW() + GetFixedDeviceIdentifier(), expected + expected);
}

} // namespace
} // namespace QMT
