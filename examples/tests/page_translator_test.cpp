// Runs the example as a user does and looks at what it writes.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "support/temp_directory.h"

namespace {

class PageTranslatorTest : public testing::Test {
protected:
    void Write(std::string const& name, std::string const& text) const {
        std::ofstream(directory.Place() / name) << text;
    }

    std::string TextOf(std::string const& name) const {
        std::ostringstream text;
        text << std::ifstream(directory.Place() / name).rdbuf();
        return text.str();
    }

    // What a shell says to the command, in the test's directory, with the status behind it.
    std::string Run(std::string const& command) const {
        std::string const whole = "cd " + directory.Place().string() +
                                  "; run=" PAGE_TRANSLATOR_PROGRAM "; demo=" PAGE_TRANSLATOR_DEMO
                                  "; pages=" QMT_APPROVED_PAGES "; (" +
                                  command + ") > said 2>&1; echo status $? >> said";
        EXPECT_EQ(std::system(whole.c_str()), 0);
        return TextOf("said");
    }

    QMT::TempDirectory directory;
};

bool Contains(std::string const& text, std::string const& part) {
    return text.find(part) != std::string::npos;
}

TEST_F(PageTranslatorTest, PageIsTranslatedAndWrapped) {
    EXPECT_EQ(Run("$run $demo/setup.html $demo/setup.de.po out --width 44"),
              "translated: 11 of 11 texts\nstatus 0\n");
    std::string const page = TextOf("out");
    for (char const* const part : {"<title>Erste Schritte</title>", " content=\"Erste Schritte mit",
                                   "\nHaus in der Liste der Geräte. Wählen Sie <br />\nalso einen, ",
                                   "value=\"Speichern\">", ">Weitere Hilfe</a>"})
        EXPECT_TRUE(Contains(page, part)) << page;
    Run("$run $demo/setup.html $demo/setup.de.po out");
    EXPECT_TRUE(Contains(TextOf("out"), "\nGeben Sie dem Gerät zuerst einen Namen. Der Name erscheint auf"));
}

TEST_F(PageTranslatorTest, CoverageNamesWhatDoesNotFit) {
    Write("page", "<h1>A \"b\"</h1>\r\n<h2>Known</h2>\r\n<p>two\r\nlines</p>\r\n<h3>A \"b\"</h3>\r\n<p>lost");
    Write("table", "Known\tbekannt\nC\\D\tx\nE\x1b");
    EXPECT_EQ(Run("$run page table out"), "translated: 1 of 3 texts\n"
                                          "missing:    \"A \\\"b\\\"\", line 1, 5\n"
                                          "missing:    \"two\\nlines\", line 3\n"
                                          "unused:     \"C\\\\D\"\n"
                                          "unused:     \"E\xEF\xBF\xBD\"\n"
                                          "lost:       the text from line 6 on, whose paragraph is never "
                                          "closed\nstatus 0\n");
    EXPECT_EQ(TextOf("out"), "<h1>A \"b\"</h1>\n<h2>bekannt</h2>\n<p>\ntwo\nlines\n</p>\n"
                             "<h3>A \"b\"</h3>\n<p>\n");
}

// A list that is filled in covers its page, whatever stands in that.
TEST_F(PageTranslatorTest, ListedTextsFitThePage) {
    std::string const fillPo =
        "sed -i -e '/^msgid /h' -e '/^msgstr \"\"$/{g;s/^msgid \"/msgstr \"#/}' t.po; ";
    Write("odd", "<html><head><title> \\n \"q\" \t</title></head>\n<p>a\nb\\</p><h1>one</h1>\n");
    for (std::string const page :
         {"odd", "$demo/setup.html", "$pages/real_manual_page.html", "$pages/real_readme.html"}) {
        std::string said = Run("$run --list " + page + " t.po && " + fillPo + "$run " + page + " t.po out");
        int translated = 0;
        int texts = -1;
        EXPECT_EQ(std::sscanf(said.c_str(), "translated: %d of %d texts", &translated, &texts), 2) << said;
        EXPECT_TRUE(translated == texts && texts > 0 && !Contains(said, "unused")) << said;
        EXPECT_TRUE(Contains(TextOf("out"), "#"));
    }
    EXPECT_EQ(TextOf("t.po").find("msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\""), 0u);
    EXPECT_TRUE(Contains(Run("$run --list odd t"), "line breaks and tabs: 2\nstatus 0"));
    EXPECT_EQ(TextOf("t"), "one\t\n");
}

TEST_F(PageTranslatorTest, FailuresAreToldAndLeaveTheOldPage) {
    struct Case {
        char const* command;
        char const* message;
        int status;
    };

    Write("page", "<h1>One</h1>\n" + std::string(5000, 'x'));
    Write("table", "One\tEins\n");
    Write("bad.po", "msgid \"One\"\nmsgstr Eins\n");
    Write("out", "old");
    Run("mkdir folder");
    for (auto const& [command, message, status] : std::initializer_list<Case>{
             {"$run missing table out", "missing", 1},
             {"$run folder table out", "folder", 1},
             {"$run --list missing out", "missing", 1},
             {"$run page none out", "none", 1},
             {"$run page folder out", "folder", 1},
             {"echo One | $run page /dev/stdin out", "can't read /dev/stdin: it is no regular file", 1},
             {"$run page table ./table", "won't replace table", 1},
             {"$run --list page page", "won't replace page", 1},
             {"$run --help > /dev/full", "can't write to standard output", 1},
             {"$run page bad.po out", "bad.po, line 2", 1},
             {"$run page table nowhere/new", "can't write nowhere/new", 1},
             {"$run page table folder", "can't write folder: it is no regular file", 1},
             {"$run page table page/new", "can't write page/new", 1},
             {"trap '' XFSZ; ulimit -f 1; $run page table out", "can't write out", 1},
             {"$run page table out --width 0", "10000, not: \"0\"", 2},
             {"$run page table out --width wide", "10000, not: \"wide\"", 2},
             {"$run page table out --width", "10000, not: \"\"", 2},
             {"$run --list page out --width 9", "--width does not go with --list", 2},
             {"$run page table out --colour", "unknown option: \"--colour\"", 2},
             {"$run page table -- out --width", "surplus argument: \"--width\"", 2},
             {"$run page \"$(printf 'a\\377')\" out", "no UTF-8", 2},
             {"$run page table", "a page, a table and an output are needed", 2},
             {"$run --list page", "a page and an output are needed", 2}}) {
        std::string const said = Run(command);
        EXPECT_TRUE(Contains(said, message) && Contains(said, "\nstatus " + std::to_string(status))) << said;
        EXPECT_EQ(TextOf("out"), "old") << command;
        EXPECT_EQ(Run("ls -A; ls -A folder"), "bad.po\nfolder\nout\npage\nsaid\ntable\nstatus 0\n")
            << command;
    }
}

TEST_F(PageTranslatorTest, ReplacedFilesKeepTheirPlaceAndPermissions) {
    Write("page", "<h1>One</h1>\n\xFF\n");
    Write("table", "One\tEins\n");
    Write("real", "old");
    EXPECT_TRUE(Contains(Run("chmod 600 real; ln -s real out; $run page table out; stat -c '%F %a' out real"),
                         "no UTF-8; U+FFFD stands for them\ntranslated: 1 of 1 texts\n"
                         "symbolic link 777\nregular file 600\n"));
    EXPECT_EQ(TextOf("real"), "<h1>Eins</h1>\n\xEF\xBF\xBD\n");
    Run("$run page table page");
    EXPECT_EQ(TextOf("page"), TextOf("real"));
}

TEST_F(PageTranslatorTest, LongPagesShowProgress) {
    std::string page = "<h1>One</h1>\n";
    while (page.size() < 4'000'000)
        page += "filling of a line\n";
    Write("page", page);
    Write("table", "One\tEins\n");
    std::string const said = Run("$run page table out --width 50 && $run --list page t");
    EXPECT_TRUE(Contains(said, "step 1 of 5, comparing") && Contains(said, "step 5 of 5, writing") &&
                Contains(said, "step 2 of 2, writing") && Contains(said, "\nstatus 0"))
        << said;
    EXPECT_EQ(TextOf("out"), "<h1>Eins</h1>" + page.substr(page.find('\n')));
}

} // namespace
