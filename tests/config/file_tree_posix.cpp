// A tree of settings with names that are no text, and in directories of somebody else.
#include "qmt/config/file_tree_config.h"

#include "support/child_process.h"
#include "support/file_content.h"
#include "support/temp_directory.h"
#include "support/text.h"

namespace QMT {
namespace {

TEST(FileTreeConfig, NamesMayBeBytesThatAreNoText) {
    TempDirectory const directory;
    FileTreeConfig settings(directory.Path());
    EXPECT_EQ(TakeError(settings.WriteProfileStr(u"S", u"\xDC80", u"v")), u"");
    fs::path const section = directory.Place() / "Configuration/S";
    fs::rename(section / "\x80.cfg", section / "\xFF\xE2\x82z.cfg");
    VArray<String, String> names;
    EXPECT_EQ(TakeError(settings.EnumEntries(u"S", names)), u"");
    EXPECT_EQ(Listed(names), u"\xDCFF\xDCE2\xDC82z|");
    EXPECT_EQ(settings.GetReadOnlyString(u"S", names[0]), u"v");
}

TEST(FileTreeConfig, ADirectoryWithoutRightsGivesDefaultsAndErrors) {
    TempDirectory const directory;
    fs::path const tree = directory.Place() / "Configuration";
    FileTreeConfig settings(directory.Path());
    auto const store = [&](String const& section, String const& entry, String const& value) {
        return TakeError(settings.WriteProfileStr(section, entry, value));
    };
    ASSERT_EQ(store(u"S", u"e", u"v"), u"");
    fs::permissions(tree / "S" / "e.cfg", fs::perms(0444));
    for (fs::path const& path : {tree, tree / "S"})
        fs::permissions(path, fs::perms(0555));
    ChildProcess reader([&] {
        bool const hasNoRights = ::geteuid() != 0 || ::setuid(65534) == 0;
        String const read = settings.GetString(u"S", u"e", u"d") + settings.GetString(u"S", u"f", u"d") +
                            settings.GetString(u"T", u"e", u"d");
        bool const isRefused = store(u"S", u"e", u"w").Find(u"e.cfg") != -1 &&
                               store(u"T", u"e", u"w").Find(u"T:") != -1 &&
                               !TakeError(settings.DeleteEntry(u"S", u"e")).IsEmpty();
        return hasNoRights && isRefused && read == u"vdd" && TakeError(settings.CheckExists(false)).IsEmpty();
    });
    EXPECT_TRUE(reader.Wait());
    EXPECT_EQ(ContentOf(tree / "S/e.cfg"), "v\n");
    for (fs::path const& path : {tree, tree / "S"})
        fs::permissions(path, fs::perms(0755));
}

} // namespace
} // namespace QMT
