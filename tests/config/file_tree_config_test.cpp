#include "qmt/config/file_tree_config.h"

#include "support/file_content.h"
#include "support/sync_action.h"
#include "support/temp_directory.h"
#include "support/text.h"

namespace QMT {
namespace {

using namespace std::string_literals;

std::string const lineEnd = (String() << newline).Len() == 1 ? "\n" : "\r\n";

struct FileTreeConfigTest : testing::Test {
    void Write(char const* file, std::string const& bytes) const {
        std::ofstream(tree / file, std::ios::binary) << bytes;
    }

    // Nothing, or the error's text.
    String Store(String section, String entry, String value) {
        return TakeError(settings.WriteProfileStr(section, entry, value));
    }

    TempDirectory directory;
    fs::path tree = directory.Place() / "Configuration";
    FileTreeConfig settings{directory.Path()};
};

TEST_F(FileTreeConfigTest, OneSeparatorAtThePathsEndIsDropped) {
    String const separator = BaseFile::GetDirSeparator();
    EXPECT_EQ(Store(u"S", u"e", u"v"), u"");
    EXPECT_EQ(FileTreeConfig(directory.Path() + separator).GetString(u"S", u"e", u"d"), u"v");
    FileTreeConfig missing(directory.Path(u"b\\") + separator + separator);
    EXPECT_NE(TakeError(missing.CheckExists(true)).Find(u"b\\" + separator + separator + u"Configuration"),
              -1);
    fs::create_directory(directory.Place() / "b\\");
    EXPECT_EQ(TakeError(missing.CheckExists(true)), u"");
    EXPECT_TRUE(fs::exists(directory.Place() / "b\\" / "Configuration"));
}

TEST_F(FileTreeConfigTest, ReadsStoreTheDefaultsTheyGave) {
    EXPECT_EQ(settings.GetReadOnlyString(u"S", u"e"), u"");
    EXPECT_FALSE(fs::exists(tree / "S"));
    EXPECT_EQ(settings.GetStringNoDefault(u"S", u"e"), u"");
    EXPECT_TRUE(fs::is_empty(tree / "S"));
    for (char16_t const* const text : {u"", u"first", u"second"}) {
        bool const isFirst = text[0] != u's';
        EXPECT_EQ(settings.GetString(u"S", u"e", text), isFirst ? text : u"first");
        EXPECT_EQ(ContentOf(tree / "S/e.cfg"), (text[0] ? "first" : "") + lineEnd);
    }
    EXPECT_EQ(settings.GetReadOnlyString(u"S", u"e") + settings.GetStringNoDefault(u"S", u"e"),
              u"firstfirst");
    EXPECT_EQ(settings.GetString(u"New", u"e", u"d"), u"d");
    EXPECT_EQ(ContentOf(tree / "New/e.cfg"), "d" + lineEnd);
}

TEST_F(FileTreeConfigTest, AnyTextOfOneLineComesBack) {
    for (String const& text :
         {String(u"\xFEFF mark"), String(u"\xD800\xDC00 pair, lone \xDC80\xD83D"), Repeated(1, 0) + u"zero",
          String(u"\t blanks "), Repeated(4095, u'x'), Repeated(4096, u'y'), Repeated(1 << 20, u'\x20AC')})
        for (String const& rest :
             {String(), String(u"\nsecond"), String(u"\rsecond"), String(u"\r\nsecond")}) {
            ASSERT_EQ(Store(u"S", u"e", text + rest), u"");
            EXPECT_EQ(settings.GetString(u"S", u"e", u"d"), text);
        }
    ASSERT_EQ(Store(u"S", u"e", u"two\rlines"), u"");
    EXPECT_EQ(ContentOf(tree / "S/e.cfg"), "two\rlines" + lineEnd); // nothing is left of the longer texts
}

TEST_F(FileTreeConfigTest, ReadsWhatOthersWrote) {
    ASSERT_EQ(Store(u"S", u"e", u""), u"");
    for (auto const& [bytes, text] : {std::pair{"a\r\nb"s, u"a"},
                                      {"\xEF\xBB\xBFm\n"s, u"m"},
                                      {"no break"s, u"no break"},
                                      {"\xFF\xFEu\0\n\0"s, u"u"},
                                      {"\xFE\xFF\0u\0\n"s, u"u"},
                                      {"\xE2\x82\n"s, u"\xFFFD\xFFFD"},
                                      {""s, u""},
                                      {"\nsecond\n"s, u""}}) {
        Write("S/e.cfg", bytes);
        EXPECT_EQ(settings.GetReadOnlyString(u"S", u"e"), text);
    }
    EXPECT_EQ(settings.GetString(u"S", u"e", u"d"), u"d");
    EXPECT_EQ(ContentOf(tree / "S/e.cfg"), "d" + lineEnd);
}

TEST_F(FileTreeConfigTest, NamesGoIntoThePathAsTheyAre) {
    for (char16_t const* const name : {u"", u".", u"a b", u"\xE4", u"kept"}) {
        EXPECT_EQ(Store(u"S", name, u"v"), u"");
        EXPECT_EQ(settings.GetString(u"S", name, u"d"), u"v");
    }
    fs::create_directory(tree / "S" / "dir.cfg");
    for (auto const& [section, entry] : {std::pair<String, String>{u"S", u"a/b"},
                                         {Repeated(500, u'n'), u"e"},
                                         {u"S", Repeated(500, u'n')},
                                         {u"no/section", u"e"},
                                         {u"S/kept.cfg", u"e"},
                                         {u"S", Repeated(1, 0)},
                                         {Repeated(1, 0), u"e"},
                                         {u"S", u"dir"}}) {
        EXPECT_NE(Store(section, entry, u"v").Find(u"Couldn't "), -1);
        EXPECT_EQ(settings.GetString(section, entry, u"d") + settings.GetReadOnlyString(section, entry),
                  u"d");
    }
    EXPECT_EQ(settings.GetString(u"S", u"kept", u"d"), u"v");
}

// One writer cuts off what it takes for the end of the old text, while it is that of another's new one.
TEST_F(FileTreeConfigTest, TwoWritersLeaveNoPieceOfEither) {
    if (!SyncAction::possible)
        GTEST_SKIP() << "built without sync points";
    ASSERT_EQ(Store(u"S", u"e", u"a text longer than the others"), u"");
    bool isFirst = true;
    SyncAction const another("WriteableFile: before cutting", [&] {
        return std::exchange(isFirst, false) && !Store(u"S", u"e", u"1234567890").IsEmpty();
    });
    EXPECT_EQ(Store(u"S", u"e", u"0"), u"");
    EXPECT_EQ(settings.GetReadOnlyString(u"S", u"e"), u"0");
}

TEST_F(FileTreeConfigTest, ListsAndDeletes) {
    for (char16_t const* const section : {u"T", u"s"})
        for (char16_t const* const entry : {u"A", u"x.cfg"})
            ASSERT_EQ(Store(section, entry, u"v"), u"");
    Write("stray.cfg", "no section");
    Write("s/notes.txt", "no entry");
    VArray<String, String> names;
    EXPECT_EQ(TakeError(settings.EnumSections(names)), u"");
    for (char16_t const* const section : {u"s", u"none"})
        EXPECT_EQ(TakeError(settings.EnumEntries(section, names)), u"");
    EXPECT_EQ(Listed(names), u"T|s|A|x.cfg|");
    EXPECT_EQ(TakeError(settings.DeleteEntry(u"s", u"x.cfg")), u"");
    EXPECT_NE(TakeError(settings.DeleteEntry(u"s", u"x.cfg")).Find(u"x.cfg.cfg"), -1);
    EXPECT_NE(TakeError(settings.DeleteSection(u"s")).Find(u"notes.txt"), -1);
    EXPECT_EQ(ContentOf(tree / "s/A.cfg"), "v" + lineEnd); // nothing was deleted
    EXPECT_EQ(TakeError(settings.DeleteSection(u"T")), u"");
    EXPECT_FALSE(fs::exists(tree / "T"));
    EXPECT_NE(TakeError(settings.DeleteSection(u"T")), u"");
    fs::remove_all(tree);
    EXPECT_NE(TakeError(settings.EnumSections(names)), u"");
}

} // namespace
} // namespace QMT
