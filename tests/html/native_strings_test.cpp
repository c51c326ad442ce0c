#include "qmt/html/native_strings.h"

#include "qmt/diagnostics/error_log.h"
#include "support/memory_medium.h"
#include "support/temp_directory.h"
#include "support/text.h"

namespace QMT {

namespace {

// The entries as "key=value;".
String Content(Map<String, String> const& table) {
    String content;
    for (std::size_t i = 0; i < table.Size(); ++i)
        content << table.Key(i) << u"=" << table.Value(i) << u";";
    return content;
}

struct NativeStringsTest : testing::Test {
    MemoryMedium medium;
    TempDirectory log;
    Map<String, String> table, other;

    NativeStringsTest() { SetErrLogPath(log.Path()); }

    void Read(char const* text, Map<String, String>& into) {
        medium.files[u"table"] = text;
        ReadNativeStrings(u"table", into, &medium);
    }

    // The text has single quotes in the place of double ones.
    String ReadPo(std::string text) {
        std::ranges::replace(text, '\'', '"');
        medium.files[u"po"] = text;
        return TakeError(ReadPoNativeStrings(u"po", table, &medium));
    }
};

TEST_F(NativeStringsTest, LinesGiveKeysAndValuesAndTheFirstCounts) {
    table.Insert(u"old", u"kept");
    Read("\xEF\xBB\xBFYes.\tJa.\n\n \nno\ta\tb\n\talone\t\t\r\nYes.\tDoch.\nold\tnew\nyes.\tja.", table);
    EXPECT_EQ(Content(table), u" = ;Yes.=Ja.;alone=alone;no=no;old=kept;yes.=ja.;");
    EXPECT_EQ(NATIVE(u"Yes.") + NATIVE(u"YES."), u"Ja.YES.");
    Read("Yes.\tOui.", other);
    EXPECT_EQ(NATIVE(u"Yes.") + NATIVE(u"old"), u"Oui.old");
    EXPECT_TRUE(std::filesystem::is_empty(log.Place()));
}

TEST_F(NativeStringsTest, FailuresAreLoggedAndKeepWhatIsThere) {
    Read("a\tb", table);
    ReadNativeStrings(log.Path(u"missing"), other);
    EXPECT_FALSE(std::filesystem::is_empty(log.Place()));
    EXPECT_EQ(NATIVE(u"a") + Content(other), u"b");
    medium.failing = "read";
    Read("a\tx\nc\td\n", other);
    EXPECT_EQ(NATIVE(u"a"), u"a") << "the table that is being read is the current one";
    EXPECT_NE(ReadPo("msgid 'a'\nmsgstr 'b'\n"), u"");
    EXPECT_EQ(NATIVE(u"a"), u"a");
}

TEST_F(NativeStringsTest, PoFilesGiveTheirTranslatedEntries) {
    String const error = ReadPo(
        "# by hand\n#, fuzzy\nmsgid ''\nmsgstr ''\n'Content-Type: text/plain; charset=UTF-8\\n'\n#: "
        "page.html:3\n"
        "msgctxt 'menu'\nmsgid 'Open'\nmsgstr 'Auf'\n\nmsgid 'Open'\nmsgstr 'Offen'\nmsgid ''\n  'two\\n'\n"
        "'lines\\t\\'\\\\\\r\\v'\nmsgstr'zwei'  \n#, c-format, fuzzy\nmsgid 'unsure'\nmsgstr 'unsicher'\n#, "
        "c-format\n"
        "msgid 'open'\nmsgstr ''\nmsgctxt 'no'\nmsgid ''\nmsgstr 'key'\n#, fuzzy\n#~ msgid 'old'\n#~ msgstr "
        "'alt'\nmsgid 'page'\nmsgid_plural 'pages'\n"
        "msgstr[0] 'Seite'\nmsgstr[1] 'Seiten'\n'!'\n");
    String expected = u"Open=Auf;page=Seite;two";
    EXPECT_EQ(Content(table), expected << newline << u"lines\t\"\\\r\v=zwei;")
        << testing::PrintToString(error);
    EXPECT_EQ(NATIVE(u"page") + error, u"Seite");
}

TEST_F(NativeStringsTest, PoFilesThatBreakTheFormatChangeNothing) {
    char const* const faulty[][2] = {
        {"msgid 'a'\nmsgstr 'b\n", "line 2: no string in double quotes: msgstr \"b"},
        {"msgid 'a'\nmsgstr 'b\\q'\n", "unknown escape: msgstr \"b\\q\""},
        {"msgid 'a'\nmsgstr 'b\\'\n", "unknown escape"},
        {"msgid 'a' 'b'\n", "double quote inside"},
        {"'a'\n", "without a keyword"},
        {"msgid 'a'\nmsgid 'b'\n", "line 2: the entry before has no msgstr"},
        {"msgctxt 'a'\nmsgstr 'b'\n", "msgid is missing"},
        {"msgid 'a'\nmsgstr 'b'\nmsgstr 'c'\n", "second msgstr"},
        {"msgid 'a'\nmsgtxt 'b'\n", "unknown keyword"},
        {"msgid 'a'\n", "the file's end"},
        {"msgid ''\nmsgstr 'charset=ISO-8859-1\\n'\n\n#\n", "line 4: the header in front declares another"},
    };
    Read("a\tkept", table);
    for (auto const& [text, fault] : faulty)
        EXPECT_GE(ReadPo(text).Find(DecodeFromUTF8(fault, false)), 0) << text;
    EXPECT_EQ(NATIVE(u"a") + Content(table), u"kepta=kept;");
    EXPECT_GE(TakeError(ReadPoNativeStrings(u"missing", table, &medium)).Find(u"missing"), 0);
}

} // namespace

} // namespace QMT
