#include "qmt/html/html_parser.h"

#include "html/reference_parser.h"
#include "support/file_content.h"
#include "support/text.h"

namespace QMT {

namespace {

using Strings = VArray<String, String>;
using Table = Map<String, String>;

template <typename Array>
std::vector<String> VectorOf(Array const& array) {
    std::vector<String> list;
    for (std::size_t i = 0; i < array.Size(); ++i)
        list.push_back(array[i]);
    return list;
}

class HtmlParserTest : public testing::Test {
protected:
    std::mt19937 random = SeededGenerator();

    bool OneIn(unsigned count) { return random() % count == 0; }

    String Pick(std::vector<String> const& pieces) { return pieces[random() % pieces.size()]; }

    // Markers, some cut off, words and line ends in any order.
    String RandomPieces(std::size_t count) {
        static std::vector<String> const markers = ReferenceParser::Split(
            u"<p>\n<p>\n</p>\n</p>\n<p class=x\n<pre>\n<td\n</td>\n<div\n<div>\n</div>\n"
            u"<div></div><div></div>\n<div id=\"formatable\"\n<form>\n</form>\n<br/>\n<br />\n"
            u"<br>\n<h\n<h1>\n</h1>\n<html\n</html>\n<head>\n</head>\n<title>\n</title>\n"
            u"<label\n</label>\n<span>\n<a href=\"\n.htm\n</a>\nvalue=\"\nplaceholder=\"\n"
            u"type=\"hidden\"\ntype=\"radio\"\ntype=\"checkbox\"\n<select\n</select>\n<input\n"
            u"<meta name=\"description\" content=\"\n&nbsp;\n<b>\n>\n>\n>\n>\n<\n\"\n\"\n\"\n"
            u"a\nBe.\nnet work\nthose\nsame.\n\u00e4\n.",
            true);
        String page;
        for (; count > 0; --count)
            page << (OneIn(4)    ? Pick({u" ", u"\t", u"\n", u"\n", u"\r\n", u"\r"})
                     : OneIn(50) ? Repeated(OneIn(4) ? 300 : 1, OneIn(2) ? u'a' : u'\0')
                                 : Pick(markers));
        return page;
    }

    // A formatable block whose paragraphs are closed, unindented and not empty, without headings and links.
    String OrderlyPage(std::size_t& fieldTexts) {
        String page = u"<body>\n<div id=\"formatable\">\n";
        for (auto blocks = random() % 6; blocks > 0; --blocks) {
            bool const hasFields = OneIn(4);
            page << (hasFields ? u"<input value=\"a\" placeholder=\"b\">\n<label>c</label>\n<p>\n"
                               : u"<p>\n");
            fieldTexts += hasFields ? 2 : 0;
            for (auto words = random() % 60; words > 0; --words)
                page << Pick({u"a", u"I.", u"some", u"words", u"end.", u"<b>x</b>", u"stop.",
                              u"counterweights"})
                     << (OneIn(9) ? Pick({u"\n", u"\n <br />\n", u"\n <br />\n <br />\n"}) : String(u" "));
            page << u"last\n</p>\n";
        }
        return page << u"</div>\n</body>\n";
    }

    Table RandomTable(std::vector<String> const& texts) {
        Table table;
        for (String const& text : texts)
            if (OneIn(2) && table.Find(text) < 0)
                table.Insert(text, OneIn(8) ? RandomPieces(6) : Pick({u"", u"Wert", u"zwei Worte.", u"a"}));
        return table;
    }
};

TEST_F(HtmlParserTest, AgreesWithThePlainRulesOnRandomPages) {
    for (int round = 0; round < 4000; ++round) {
        std::size_t ignored = 0;
        String const start = OneIn(2) ? u"<div id=\"formatable\">\n<p>\n" : u"";
        String const page =
            OneIn(4) ? OrderlyPage(ignored) : start + RandomPieces(random() % (OneIn(40) ? 3000 : 80));
        HtmlParser parser(page);
        ReferenceParser reference(page);
        for (int job = 0; job < 4; ++job) {
            ASSERT_EQ(parser.GetAlteredHtml(), reference.html) << "round " << round << " job " << job;
            bool const parseHead = OneIn(4);
            Strings strings, expected;
            NonSortableVArray<String> inOrder;
            for (auto const known : {u"a", u"net work", u"same."})
                if (job > 0 && OneIn(4))
                    strings.Add(known), expected.Add(known);
            parser.SetUnsortedExtraction(OneIn(8) ? nullptr : &inOrder);
            parser.ExtractNativeStrings(strings, parseHead);
            reference.Extract(expected, parseHead);
            ASSERT_EQ(VectorOf(strings), VectorOf(expected));
            ASSERT_TRUE(inOrder.Size() == 0 || VectorOf(inOrder) == reference.found);
            ASSERT_EQ(parser.GetAlteredHtml(), reference.html) << "altered by extraction";
            Table const table = RandomTable(VectorOf(strings));
            NativeCoverage const coverage = CheckNativeCoverage(page, table, parseHead);
            std::erase_if(reference.found, [&](String const& text) { return table.Find(text) >= 0; });
            auto const textOf = [](auto const& missing) { return missing.text; };
            ASSERT_TRUE(job > 0 || std::ranges::equal(coverage.missing, reference.found, {}, textOf));
            ASSERT_TRUE(job > 0 || coverage.unused.empty());
            int const width = static_cast<int>(random() % 60);
            if (OneIn(2))
                parser.SubstituteNativeStrings(table, parseHead), reference.Substitute(table, parseHead);
            else
                parser.FormatForCharactersWidth(width), reference.Format(width);
        }
    }
}

TEST_F(HtmlParserTest, AnEmptyTableAndWrappingKeepTheWordsOfOrderlyPages) {
    auto const words = [](String const& page) {
        std::vector<String> kept = ReferenceParser::Split(page, false);
        std::erase_if(kept, [](String const& word) { return word == u"<br" || word == u"/>"; });
        return kept;
    };
    for (int round = 0; round < 300; ++round) {
        std::size_t fieldTexts = 0;
        HtmlParser parser(OrderlyPage(fieldTexts));
        String const before = parser.GetAlteredHtml();
        parser.SubstituteNativeStrings(Table(), false);
        std::vector<String> lines = ReferenceParser::Split(parser.GetAlteredHtml(), true);
        ASSERT_EQ(std::erase(lines, String()), fieldTexts);
        ASSERT_EQ(lines, ReferenceParser::Split(before, true));
        parser.FormatForCharactersWidth(static_cast<int>(random() % 50) - 5);
        ASSERT_EQ(words(parser.GetAlteredHtml()), words(before));
    }
}

TEST_F(HtmlParserTest, CoverageTellsWhatIsMissingUnusedAndLost) {
    Table table;
    for (auto const key : {u"Top", u"never there", u"also never"})
        table.Insert(key, key);
    NativeCoverage const coverage =
        CheckNativeCoverage(u"<h1>Top</h1>\n\n<p>one<br/>two</p>\n\n <p>\n  "
                            u"more\n</p>\r\n<p>one<br/>one</p>\n<p>\nheld\r<h2>Top</h2>",
                            table, false);
    std::vector<std::vector<std::size_t>> lines;
    for (auto const& missing : coverage.missing)
        lines.push_back(missing.lines);
    EXPECT_EQ(lines, (std::vector<std::vector<std::size_t>>{{3, 8}, {3}, {6}}));
    EXPECT_EQ(coverage.unused, (std::vector<String>{u"also never", u"never there"}));
    EXPECT_EQ(coverage.lostFrom, 10u);
    EXPECT_EQ(CheckNativeCoverage(u"<p>a</p>", table, false).lostFrom, 0u);
}

// A search in quadratic time would run into the test's time limit.
TEST(HtmlPages, LongTextsThatRepeatThemselvesAreReplaced) {
    String const start = u"<h1>" + Repeated(2'000'000, u'a');
    String const text = start.Mid(4) + u"b";
    Table table;
    table.Insert(text, u"short");
    HtmlParser parser(start + u"<b>" + text + u"</h1>");
    parser.SubstituteNativeStrings(table, false);
    EXPECT_EQ(parser.GetAlteredHtml(), String(start + u"<b>short</h1>") << newline);
}

String FileText(std::filesystem::path const& path) {
    return DecodeFromUTF8(ContentOf(path).c_str(), false);
}

// What the jobs make of a page; each text becomes itself in brackets.
String Report(String const& page) {
    bool const parseHead = page.Find(u"</head>") >= 0;
    HtmlParser parser(page), wrapped(page);
    Strings strings;
    NonSortableVArray<String> inOrder;
    Table table;
    parser.SetUnsortedExtraction(&inOrder);
    parser.ExtractNativeStrings(strings, parseHead);
    String report = u"==== filtered\n" + parser.GetAlteredHtml() + u"==== texts\n";
    for (String const& text : VectorOf(inOrder)) {
        report << u"[" << text << u"]\n";
        table.Insert(text, u"[" + text + u"]");
    }
    parser.SubstituteNativeStrings(table, parseHead);
    wrapped.FormatForCharactersWidth(40);
    report << u"==== substituted\n" << parser.GetAlteredHtml();
    report << u"==== wrapped to 40\n" << wrapped.GetAlteredHtml();
    String withLineFeeds; // which the approved files have on every system
    for (CodeUnit const unit : report.View())
        if (unit != u'\r')
            withLineFeeds << unit;
    return withLineFeeds;
}

// scripts/approve.sh sets QMT_APPROVE, and the approved files are written anew.
TEST(HtmlPages, ComeOutAsApproved) {
    int pages = 0;
    for (auto const& entry : std::filesystem::directory_iterator(QMT_APPROVED_PAGES)) {
        std::filesystem::path approved = entry.path();
        if (approved.extension() != ".html")
            continue;
        ++pages;
        String const report = Report(FileText(approved));
        approved.replace_extension(".approved.txt");
        if (std::getenv("QMT_APPROVE")) {
            FormatableTextFile file(DecodeFromUTF8(approved.string().c_str(), false), nullptr);
            ASSERT_EQ(TakeError(file.Open(false)), u"");
            file << report;
            ASSERT_EQ(TakeError(file.FlushFile(true, BaseFile::BOM::NoMark)), u"");
        }
        EXPECT_EQ(report, FileText(approved)) << approved;
    }
    EXPECT_GT(pages, 0);
}

} // namespace

} // namespace QMT
