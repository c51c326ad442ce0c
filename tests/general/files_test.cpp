#include "qmt/general/files.h"

#include <fstream>

#include "support/memory_medium.h"
#include "support/temp_directory.h"
#include "support/text.h"

namespace QMT {

namespace {

using Bom = BaseFile::BOM;

// The lines of the file, with a bar behind each, and the errors on the way.
String ReadLines(String const& path, FileMedium* medium) {
    LineParsableFile file(path, medium);
    String lines = TakeError(file.Open()), line;
    if (!lines.IsEmpty())
        return lines;
    ErrorInfo* error = nullptr;
    while (file.NextLine(line, error, 0))
        lines << line << u'|';
    return lines << line << TakeError(error) << TakeError(file.Close());
}

// Writes the text in one flush, and gives the errors on the way.
String Write(String const& path, FileMedium* medium, bool append, String const& text,
             Bom mark = Bom::NoMark) {
    FormatableTextFile file(path, medium);
    String errors = TakeError(file.Open(append));
    file << text;
    return errors << TakeError(file.FlushFile(true, mark)) << TakeError(file.Close());
}

TEST(LineParsableFile, DecodesAndCutsLinesHoweverTheBytesArrive) {
    using namespace std::string_literals;
    std::pair<std::string, char16_t const*> const cases[] = {
        {"", u""},
        {"a\r\nb\rc\n\nd\r", u"a|b|c||d|"},
        {"\n\r\n\r\r\na", u"||||a|"},
        {"\xEF\xBB\xBF\xEF\xBB\xBFx", u"\uFEFFx|"},
        {"\xEF\xBB", u"\uFFFD\uFFFD|"},
        {"\xF0\x9F\x98\x80\r\n\xE2\x82\r\n\xFF\xF0\x9Fz", u"\U0001F600|\uFFFD\uFFFD|\uFFFD\uFFFD\uFFFDz|"},
        {"\xED\xA0\x80\xED\xB0\x80x\xED\xBF\xBF", u"\xD800\xDC00x\xDFFF|"},
        {"\xFF\xFE\x61\0\r\0\n\0\x3D\xD8\n\0\x0A\x0D"s, u"a|\xD83D|\u0D0A|"},
        {"\xFE\xFF\0\x61\0\r\0\n\x20\xAC\0"s, u"a|\u20AC\uFFFD|"},
        {"\xFF\xFE", u""},
        {"\xFF", u"\uFFFD|"}};
    for (auto const& [bytes, lines] : cases)
        for (std::size_t const longestRead : {1u, 2u, 3u, 5u, 1000u}) {
            MemoryMedium medium;
            medium.files[u"f"] = bytes;
            medium.longestRead = longestRead;
            EXPECT_EQ(ReadLines(u"f", &medium), lines) << longestRead;
        }
}

TEST(LineParsableFile, TellsOfBreaksAndFailures) {
    MemoryMedium medium;
    LineParsableFile file(u"f", &medium);
    String line(u"old");
    ErrorInfo* error = nullptr;
    EXPECT_EQ(file.NextLine(line, error, 0), 0);
    EXPECT_EQ(TakeError(std::exchange(error, nullptr)) << line << TakeError(file.Close()),
              u"File isn't open: f");
    EXPECT_EQ(TakeError(file.Open()), u"Can't open f");
    medium.files[u"f"] = "a\nb";
    EXPECT_EQ(TakeError(file.Open()) << file.LineHadBreak(), u"0");
    EXPECT_TRUE(file.NextLine(line, error, 0) && file.LineHadBreak());
    EXPECT_TRUE(file.NextLine(line, error, 0) && !file.LineHadBreak());
    EXPECT_TRUE(!file.NextLine(line, error, 0) && !file.NextLine(line, error, 0) && line.IsEmpty() && !error);
    EXPECT_EQ(TakeError(file.Open()), u"File is open already: f");
    medium.failing = "read";
    EXPECT_EQ(ReadLines(u"f", &medium), u"Disc trouble");
    medium.failing = "close";
    EXPECT_EQ(ReadLines(u"f", &medium), u"a|b|Disc trouble");
}

// Text of all kinds of units but line breaks, many of them surrogates and marks.
String RandomLine(std::mt19937& random) {
    String line;
    for (auto units = random() % 40; units > 0; --units) {
        unsigned const bases[] = {'a', 0x80, 0x7F0, 0xD7F0, 0xDBF0, 0xDFF0, 0xFEF8, 0xFFF0};
        line << static_cast<CodeUnit>(bases[random() % 8] + random() % 16);
    }
    return line;
}

TEST(Files, AnyTextReadsBackUnchanged) {
    auto random = SeededGenerator();
    TempDirectory directory;
    String const path = directory.Path(u"text");
    for (int round = 0; round < 30; ++round) {
        String lines, text;
        String errors = Write(path, nullptr, false, u"", round % 2 ? Bom::NoMark : Bom::Utf8Mark);
        for (auto count = random() % 3000; count > 0; --count) {
            String const line = RandomLine(random);
            lines << line << u'|';
            text << line << (random() % 2 ? u"\r\n" : u"\n");
            if (random() % 500 == 0 || count == 1)
                errors << Write(path, nullptr, true, std::exchange(text, {}));
        }
        ASSERT_TRUE(errors.IsEmpty() && ReadLines(path, nullptr) == lines) << round;
    }
}

TEST(FormatableTextFile, WritesOverTheOldTextAndThenCuts) {
    MemoryMedium medium;
    medium.files[u"f"] = "old and longer";
    FormatableTextFile file(u"f", &medium);
    EXPECT_EQ(TakeError(file.Open(false)), u"");
    file << u"new " << 1;
    EXPECT_EQ(medium.files[u"f"], "old and longer");
    EXPECT_EQ(TakeError(file.FlushFile(false, Bom::NoMark)) << file, u"new 1");
    EXPECT_EQ(medium.files[u"f"], "new 1");
    EXPECT_EQ(TakeError(file.FlushFile(true, Bom::Utf8Mark)) << TakeError(file.Close()) << file, u"");
    EXPECT_EQ(medium.files[u"f"], "new 1new 1");
    EXPECT_EQ(medium.done, (std::vector<std::string>{"write 0 5", "cut 5", "write 5 5"}));
    EXPECT_EQ(TakeError(file.Open(false)), u"");
    file << u"never flushed";
    EXPECT_EQ(TakeError(file.Close()) << DecodeFromUTF8(medium.files[u"f"].c_str(), false), u"");
    medium.files[u"f"] = "old";
    EXPECT_EQ(TakeError(FormatableTextFile(u"f", &medium).Open(false)), u""); // its destructor closes
    EXPECT_EQ(medium.files[u"f"], "");
}

TEST(FormatableTextFile, PutsMarksAtTheHeadOnly) {
    std::tuple<char const*, char const*, bool, Bom, char16_t const*> const cases[] = {
        {"old", "x", false, Bom::NoMark, u"x"},
        {"old", "\xEF\xBB\xBFx", false, Bom::Utf8Mark, u"x"},
        {"old", "\xEF\xBB\xBF\xEF\xBB\xBFx", false, Bom::NoMark, u"\uFEFFx"},
        {"old", "oldx", true, Bom::Utf8Mark, u"x"},
        {"old", "old\xEF\xBB\xBFx", true, Bom::NoMark, u"\uFEFFx"},
        {"", "\xEF\xBB\xBFx", true, Bom::Utf8Mark, u"x"}};

    for (auto const& [before, after, append, mark, text] : cases) {
        MemoryMedium medium;
        medium.files[u"f"] = before;
        EXPECT_EQ(Write(u"f", &medium, append, text, mark), u"");
        EXPECT_EQ(medium.files[u"f"], after);
    }
}

TEST(FormatableTextFile, KeepsTheTextWhenAFlushFails) {
    for (std::string const operation : {"write", "cut", "append", "size"}) {
        bool const append = operation == "append" || operation == "size";
        MemoryMedium medium;
        medium.files[u"f"] = "older";
        FormatableTextFile file(u"f", &medium);
        EXPECT_EQ(TakeError(file.FlushFile(true, Bom::NoMark)), u"File isn't open: f");
        EXPECT_EQ(TakeError(file.Open(append)), u"");
        file << u"text";
        medium.failing = operation;
        EXPECT_EQ(TakeError(file.FlushFile(true, Bom::NoMark)), u"Disc trouble") << operation;
        EXPECT_EQ(medium.files[u"f"], append ? "older" : operation == "cut" ? "text" : "") << operation;
        medium.failing.clear();
        EXPECT_EQ(TakeError(file.FlushFile(true, Bom::NoMark)), u"");
        EXPECT_EQ(medium.files[u"f"], append ? "oldertext" : "text") << operation;
    }
    MemoryMedium medium;
    FormatableTextFile file(u"f", &medium);
    medium.failing = "open";
    EXPECT_EQ(TakeError(file.Open(true)), u"Can't open f");
    medium.failing = "write";
    EXPECT_EQ(TakeError(file.Open(false)) << TakeError(file.Close()), u"Disc trouble");
}

TEST(DiscFiles, AddReplaceAndVanish) {
    EXPECT_EQ(String() << newline, PathSeparatorIsBackslash() ? u"\r\n" : u"\n");
    TempDirectory directory;
    String const path = directory.Path(u"f");
    EXPECT_EQ(Write(path, nullptr, true, u"one\n") << Write(path, nullptr, true, u"two"), u"");
    EXPECT_EQ(ReadLines(path, nullptr), u"one|two|");
    EXPECT_EQ(Write(path, nullptr, false, u"3") << ReadLines(path, nullptr) << TakeError(RemoveFile(path)),
              u"3|");
    String const system = path + u": Error code = 00000002. ";
    EXPECT_GE(TakeError(RemoveFile(path)).Find(system), 0);
    EXPECT_GE(ReadLines(path, nullptr).Find(system), 0);
    EXPECT_NE(Write(path + BaseFile::GetDirSeparator() + u"x", nullptr, true, u""), u"");
    EXPECT_GE(ReadLines(directory.Path(), nullptr).Find(directory.Path() + u": Error code = "), 0);
    for (String const& bad : {String(), directory.Path(String(u"a") << CodeUnit() << u"b")}) {
        DiscDirectory at(bad, {}, u"*");
        EXPECT_NE(Write(bad, nullptr, true, u""), u"");
        EXPECT_FALSE(TakeError(at.EnsureExists()).IsEmpty() || TakeError(at.DoesNotExist()).IsEmpty());
    }
}

TEST(DiscFiles, FullDiscIsReported) {
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "no device that is always full";
    for (bool const append : {false, true})
        EXPECT_EQ(Write(u"/dev/full", nullptr, append, u"text"),
                  u"Couldn't write file /dev/full: Error code = 0000001C. No space left on device");
}

// The names that the directory lists, each with a bar behind it and a star in front of a directory's.
String List(TempDirectory const& place, Directory::ListingType kind, char16_t const* mask) {
    std::vector<Directory::Entry> entries;
    String names = TakeError(DiscDirectory(place.Path(), kind, mask).GetEntries(entries));
    for (auto const& entry : entries)
        names << (entry.isDirectory ? u"*" : u"") << entry.name << u'|';
    return names;
}

TEST(DiscDirectory, IsMadeAndListsByKindAndMask) {
    TempDirectory place;
    DiscDirectory sub(place.Path(u"sub.d"), {}, u"*.*");
    EXPECT_GE(TakeError(sub.DoesNotExist()).Find(place.Path(u"sub.d")), 0);
    String const made = TakeError(sub.EnsureExists());
    EXPECT_EQ(made + TakeError(sub.EnsureExists()) + TakeError(sub.DoesNotExist()), u"");
    for (char16_t const* name : {u"b.cfg", u"a.cfg", u"plain", u".cfg"})
        EXPECT_EQ(Write(place.Path(name), nullptr, false, u""), u"");
    DiscDirectory file(place.Path(u"plain"), {}, u"*.*");
    EXPECT_FALSE(TakeError(file.EnsureExists()).IsEmpty() || TakeError(file.DoesNotExist()).IsEmpty());
    using Kind = Directory::ListingType;
    EXPECT_EQ(List(place, Kind(0), u"*.*"), u".cfg|a.cfg|b.cfg|plain|*sub.d|");
    EXPECT_EQ(List(place, Kind::Files, u"*"), u".cfg|a.cfg|b.cfg|plain|");
    EXPECT_EQ(List(place, Kind::Directories, u"*.*"), u"*sub.d|");
    auto const fitting = [&](char16_t const* mask) { return List(place, Kind::All, mask); };
    EXPECT_EQ(fitting(u"?.cfg") + fitting(u"a.cfg?") + fitting(u"A.cfg") + fitting(u""), u"a.cfg|b.cfg|");
    EXPECT_EQ(fitting(u"*.cfg") + fitting(u"**b*.d"), u".cfg|a.cfg|b.cfg|*sub.d|");
    EXPECT_EQ(fitting(u"*a*") + fitting(u"p*l*n"), u"a.cfg|plain|plain|");
    std::vector<Directory::Entry> entries;
    String const blank = PathSeparatorIsBackslash() ? u" " : u""; // which Windows takes off a path's end
    EXPECT_EQ(TakeError(DiscDirectory(place.Path() + blank, {}, u"*").GetEntries(entries)), u"");
    std::filesystem::remove_all(place.Place());
    EXPECT_GE(List(place, Kind::All, u"*").Find(place.Path() + u": Error code = "), 0);
}

TEST(DiscDirectory, TakesNamesOfAnyKind) {
    TempDirectory place;
    std::vector<String> names{u"\u20AC\U0001F600"};
    std::basic_string<CodeUnit> const odd{0xD800, u'x'}; // a name that Windows takes and wine does not
    bool const takesAll = !PathSeparatorIsBackslash() || std::ofstream(place.Place() / odd);
    if (takesAll)
        names.insert(names.end(), {String(odd), u"y\xDC80"});
    for (String const& name : names)
        EXPECT_EQ(Write(place.Path(name), nullptr, false, u"1"), u"");
    std::vector<Directory::Entry> entries;
    EXPECT_EQ(TakeError(DiscDirectory(place.Path(), {}, u"*").GetEntries(entries)), u"");
    EXPECT_EQ(entries.size(), names.size());
    for (auto const& entry : entries)
        EXPECT_EQ(ReadLines(place.Path(entry.name), nullptr), u"1|");
    if (!takesAll)
        GTEST_SKIP() << "wine takes no lone surrogate in a file's name; other names were tried";
}

// What stands in front of the text are flags: n for lines, b and s for the path separators, f for fields.
TEST(ParsableText, SplitsByItsFlags) {
    char16_t const* const cases[][3] = {{u"", u" \tone two\r\n\nthree ", u"one|two|three|"},
                                        {u"n", u"  a b\r\n\r\nc\rd\n\ne", u"  a b||c|d||e|"},
                                        {u"n", u"\n\r", u"||"},
                                        {u"b", u"\\a\\b c/d\\", u"a|b c/d|"},
                                        {u"b", u"\\\\host\\\\x", u"|host||x|"},
                                        {u"s", u"/a/b\\c", u"a|b\\c|"},
                                        {u"bs", u"c:\\a/b\\/c", u"c:|a|b||c|"},
                                        {u"f", u"\tHello there\t\tGuten Tag \t", u"Hello there|Guten Tag |"},
                                        {u"nf", u"a\t\tb\n", u"a||b|"},
                                        {u"", u" \n", u""},
                                        {u"b", u"\\", u""},
                                        {u"n", u"", u""},
                                        {u"f", u"\t", u""}};
    for (auto const& [flags, text, expected] : cases) {
        ParsableText parsable(text);
        auto const has = [given = String(flags)](char16_t const* flag) { return given.Find(flag) >= 0; };
        parsable.splitOnLineEnds = has(u"n"), parsable.splitOnFields = has(u"f");
        parsable.splitOnBackslash = has(u"b"), parsable.splitOnSlash = has(u"s");
        String elements, element(u"kept");
        int count = parsable.CountElements();
        for (; parsable.GetNextElem(&element, 0); elements << element << u'|')
            EXPECT_EQ(parsable.CountElements(), --count);
        EXPECT_EQ(elements, expected);
        EXPECT_TRUE(count == 0 && !parsable.GetNextElem(&element, 0) && (*expected || element == u"kept"));
    }
}

} // namespace

} // namespace QMT
