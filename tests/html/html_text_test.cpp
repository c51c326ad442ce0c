#include "qmt/html/html_text.h"

#include "qmt/general/files.h"
#include "support/text.h"

namespace QMT {

namespace {

TEST(HtmlText, DecodesEscapesAndLeavesWhatIsNone) {
    // In turn a text and what it is decoded to.
    ParsableText cases(
        u"%41b%2BC+\tAb+C+\t%2F%2f\t/O\t%e4%C3%A4\t\uFFFD\u00e4\t100%\t100%\ta%\"%\u4141\ta%\"i\t"
        u"\u4141%\"\t\u4141%\"\t\u4142%41\tBA\t%2541\t%41\t%00%41%41\t%41A\t%0\t\uFFFD\t&nbsp;\t&nbsp;\t"
        u"a\u0100b%41\ta");
    cases.splitOnFields = true;
    for (String text, decoded; cases.GetNextElem(&text, 0) && cases.GetNextElem(&decoded, 0);)
        EXPECT_EQ(HtmlDecode(text), decoded) << testing::PrintToString(text);
    EXPECT_EQ(HtmlDecode(u""), u"");
    String address = u"a+b%2Bc+%";
    UrlDecode(address);
    EXPECT_EQ(address, u"a b+c %");
    EXPECT_EQ(UrlSpacesToPlus(u" a b\t+"), u"+a+b\t+");
    for (auto const& [digit, value] :
         {std::pair{u'0', 0}, {u'9', 9}, {u'A', 10}, {u'F', 15}, {u'a', 42}, {u'/', -8}})
        EXPECT_EQ(HexVal(digit), value);
    EXPECT_EQ(HtmlLinespace(), u"<p>&nbsp;</p>");
    EXPECT_FALSE(SupportsHtmlTimeSelector());
}

TEST(HtmlText, ReplacesFromLeftToRightAndNotWhatWasPutIn) {
    String const cases[][4] = {
        {u"a", u"aa", u"banana", u"baanaanaa"}, {u"aa", u"", u"aaaab", u"b"}, {u"aa", u"b", u"aaa", u"ba"},
        {u"x", u"y", u"abc", u"abc"},           {u"", u"y", u"abc", u"abc"},  {u"abc", u"", u"abc", u""}};
    for (auto const& [from, to, text, expected] : cases) {
        String replaced = text;
        HtmlReplace(from, to, replaced);
        EXPECT_EQ(replaced, expected) << testing::PrintToString(from);
    }
}

} // namespace

} // namespace QMT
