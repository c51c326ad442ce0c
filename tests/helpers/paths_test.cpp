#include "qmt/helpers/paths.h"

#include "helpers/paths_text.h"
#include "qmt/general/files.h"
#include "support/text.h"

namespace QMT {
namespace {

// Holds a function to a table of paths and of what it gives for them with a backslash, and to the mirror
// image of the table with a slash. An underscore stands for an empty text.
void Expect(String (*function)(String, CodeUnit), String table) {
    for (CodeUnit const separator : {u'\\', u'/'}) {
        ParsableText cells(table);
        for (String path, expected; cells.GetNextElem(&path, 0) && cells.GetNextElem(&expected, 0);)
            EXPECT_EQ(function(path == u"_" ? u"" : path, separator), expected == u"_" ? u"" : expected);
        for (std::size_t i = 0; i < table.Len(); ++i)
            table[i] = table[i] == u'/' ? u'\\' : table[i] == u'\\' ? u'/' : table[i];
    }
}

TEST(Paths, GetTheSystemsSeparators) {
    Expect(&WithSeparators, uR"(_ _  a\b a\b  a/b/c a\b\c  a/b/ a\b\  /a/b \a\b  //server/share \\server\share
                                a//b// a\\b\\  a/b\ a\b\)");
    EXPECT_EQ(CorrectPathSeparators(u"a\\b/c"), PathSeparatorIsBackslash() ? u"a\\b\\c" : u"a/b/c");
}

TEST(Paths, TurnBackAtTwoPoints) {
    Expect(&WithoutReversals, uR"(_ _  a\b\..\c a\c  a/b/../c a\c  /a/b/../c /a\c  c:\a\..\b c:\b  a\b\ a\b
        a\.\b a\.\b  a\..\..\b ..\b  a\b\..\..\c c  a\.. _  ..\a ..\a  ..\..\a\.. ..\..  /..\a /..\a  \ \
        a\..\..\..\b ..\..\b  a\\..\\b b  a\\b\\ a\\b  \\server\..\b \\b  \\..\\b \\..\\b  \a\..\\b \b)");
    EXPECT_EQ(FilterPathReversals(u"a\\b/../c"), PathSeparatorIsBackslash() ? u"a\\c" : u"a/c");
    Expect(&DirectoryOf, uR"(c:\dir/x\exe c:\dir/x  exe exe  _ _)");
}

TEST(Paths, AreTakenApart) {
    Expect([](String path, CodeUnit) { return Joined(RemoveTrailName(path), RemoveLeadPath(path)); },
           uR"(_ ||  file |file|  c:\dir\file.txt c:\dir|file.txt|  dir/file dir|file|  c:file c:|file|
               c:\file c:|file|  \file |file|  c:\dir\ c:\dir||  a//b a/|b|
               \\server\share\file \\server\share|file|)");
    auto const split = [](String path, CodeUnit) {
        String extension = u"old";
        String const rest = RemoveExtension(path, extension);
        return extension == GetExtension(path) ? Joined(rest, extension) : u"two extensions";
    };
    Expect(split, uR"(a.txt a|.txt|  a.tar.gz a.tar|.gz|  a a||  a. a|.|  .cfg |.cfg|
                      c:\dir.d\file c:\dir|.d\file|  _ ||)");
}

TEST(Paths, AreQuotedForTheirBlanks) {
    EXPECT_EQ(Joined(QuotedPath(u" a\\b\t"), QuotedPath(u" \t "), QuotedPath(u"a\tb"), QuotedPath(u"\"ab")),
              u"a\\b||a\tb|\"ab|");
    for (char16_t const* const path : {u" a b", u"\"a b", u"a b\" ", u"\"a b\""})
        EXPECT_EQ(QuotedPath(path), u"\"a b\"");
}

} // namespace
} // namespace QMT
