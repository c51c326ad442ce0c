#include "qmt/general/string.h"

#include <cmath>
#include <cstring>

#include "qmt/general/numbers.h"
#include "support/text.h"

namespace QMT {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t all = std::numeric_limits<std::size_t>::max();

TEST(String, TakesWideAndSixteenBitText) {
    EXPECT_EQ(String(L"a\u00E9\U0001F600"), u"a\u00E9\U0001F600");
    EXPECT_EQ(String(u"\U0001F600").Len(), 2u);
    EXPECT_EQ(String() << L'x' << u'y' << L"z" << static_cast<OtherCodeUnit>(0xD83D), u"xyz\xD83D");
    EXPECT_EQ(String(static_cast<CodeUnit const*>(nullptr)) << static_cast<CodeUnit const*>(nullptr), u"");
    EXPECT_EQ((String(u"a") << CodeUnit() << u"b").Len(), 3u);
    if constexpr (sizeof(OtherCodeUnit) > sizeof(CodeUnit)) {
        EXPECT_EQ(String() << static_cast<OtherCodeUnit>(0x10FFFF), u"\U0010FFFF");
        EXPECT_EQ(String() << static_cast<OtherCodeUnit>(0x110000), u"\uFFFD");
    }
}

template <class Value>
concept CanBeInserted = requires(String text, Value value) {
    text << value;
};

template <class Value>
concept CanBeAdded = requires(String text, Value value) {
    text + value;
};

static_assert(!CanBeInserted<char> && !CanBeInserted<char8_t> && !CanBeInserted<char32_t>);
static_assert(!CanBeInserted<char const*> && !CanBeInserted<void*> && CanBeInserted<wchar_t>);
static_assert(!CanBeAdded<int> && !CanBeAdded<CodeUnit> && CanBeAdded<CodeUnit const*>);
static_assert(!std::is_constructible_v<bool, String>);

TEST(String, ComparesUnitByUnitOnEitherSide) {
    String const text(u"Abc");
    EXPECT_TRUE(text == u"Abc" && u"Abc" == text && text == L"Abc" && text == String(text));
    EXPECT_TRUE(text != u"abc" && u"Abc " != text && text != L"Ab" &&
                text != (String() << text << CodeUnit()));
    EXPECT_TRUE(text < u"abc" && u"Ab" < text && text < String(u"Abcd") && text <= u"Abc" && text >= u"A");
    EXPECT_TRUE(String(u"\U0001F600") < u"\uFFFD"); // units, not characters
}

TEST(String, GivesItsUnitsWithTheTerminator) {
    String text(u"ab");
    text[0] = u'x';
    String const& fixed = text;
    EXPECT_EQ(fixed[text.Len()] + text[text.Len()], 0);
    EXPECT_EQ(std::memcmp(static_cast<CodeUnit const*>(fixed), u"xb", 3 * sizeof(CodeUnit)), 0);
    EXPECT_EQ(text[std::ptrdiff_t{1}], u'b');
}

TEST(String, FindsAndCuts) {
    String text(u"a.b.a.b");
    EXPECT_EQ(Joined(text.Find(u".b", 0), text.Find(u".b", 2), text.Find(u"a", 4), text.Find(u"a", 5),
                     text.Find(u"B"), text.Find(u"b", 99), text.Find(u"a.b.a.b.")),
              u"1|5|4|-1|-1|-1|-1|");
    EXPECT_EQ(Joined(text.FindLast(u".b"), text.FindLast(u"a"), text.FindLast(u"B")), u"5|4|-1|");
    EXPECT_EQ(Joined(text.Left(2), text.Left(9), text.Left(all), text.Left(0)), u"a.|a.b.a.b|a.b.a.b||");
    EXPECT_EQ(Joined(text.Right(2), text.Right(all), String().Right(3)), u".b|a.b.a.b||");
    EXPECT_EQ(
        Joined(text.Mid(4), text.Mid(7), text.Mid(all), text.Mid(1, 2), text.Mid(5, all), text.Mid(9, 2)),
        u"a.b|||.b|.b||");
    text.Truncate(9);
    EXPECT_EQ(text, u"a.b.a.b");
    text.Truncate(text.Len() - 1);
    EXPECT_EQ(text, u"a.b.a.");
    EXPECT_EQ(Joined(String().TrimAll(), String(u" \t\r\n").TrimAll(), String(u" \r\n\ta b\t\n ").TrimAll()),
              u"||a b|");
}

TEST(String, InsertsNumbers) {
    EXPECT_EQ(Joined(0, -2147483647 - 1, 4294967295u, true, static_cast<unsigned long>(-1),
                     static_cast<long>(0xFFFFFFFFu), std::numeric_limits<long long>::min(), ~0ULL),
              u"0|-2147483648|4294967295|1|4294967295|-1|-9223372036854775808|18446744073709551615|");
    String text;
    text << leadzero << width(2) << 7 << u'|' << 7 << width(4) << -7 << width(4) << leadzero << -7 << width(2)
         << 123;
    EXPECT_EQ(text, u"07|7  -7-007123");
    text.SetEmpty();
    text << hex(2) << 10 << leadzero << hex(8) << 0xBEEFul << u'|' << 10 << hex(2) << -2 << hex(0) << -1LL;
    EXPECT_EQ(text, u" A0000BEEF|10FFFFFFFEFFFFFFFFFFFFFFFF");
    text.SetEmpty();
    text << leadzero << u"text" << hex(2) << u"more" << 1 << width(6) << 1.5 << leadzero << hex(5) << -2.5;
    EXPECT_EQ(text, u"textmore01   1.5-02.5");
    EXPECT_EQ(Joined(0.0, -0.0, 0.1, -1234.5, 1e-5, 9.9e-6, 1e15, 1e16, 1.0 / 3, infinity, notANumber),
              u"0|-0|0.1|-1234.5|0.00001|9.9e-06|1000000000000000|1e+16|0.3333333333333333|inf|nan|");
}

TEST(String, DoublesReadBackTheSame) {
    auto random = SeededGenerator();
    for (int i = 0; i < 20000; ++i) {
        std::uint64_t const bits = std::uint64_t{random()} << 32 | random();
        double number = 0, again = 0;
        std::memcpy(&number, &bits, sizeof number);
        if (std::isfinite(number)) {
            String() << number >> again;
            EXPECT_EQ(std::memcmp(&again, &number, sizeof number), 0) << number;
        }
    }
}

// What the text reads as; nothing when it throws an error, which must quote the text.
template <class Number>
std::optional<Number> Read(String const& text) {
    Number number{42};
    try {
        text >> number;
        return number;
    } catch (ErrorInfo* error) {
        EXPECT_GE(TakeError(error).Find(u"\"" + text + u"\""), 0);
        EXPECT_EQ(number, Number{42});
        return std::nullopt;
    }
}

TEST(String, ReadsNumbers) {
    for (char16_t const* text : {u"08", u" +8\r\n", u"8", u"\t0000000000000000000000008"})
        EXPECT_TRUE(Read<unsigned int>(text) == 8u && Read<long int>(text) == 8 && Read<double>(text) == 8);
    for (char16_t const* text : {u"", u" ", u"-", u"+-8", u"- 8", u"8 8", u"0x8", u"8a", u"inf", u"-nan",
                                 u"\uFF18", u"8\u0661", u"1e", u"1,5", u"."})
        EXPECT_FALSE(Read<unsigned int>(text) || Read<long int>(text) || Read<double>(text));
    EXPECT_FALSE(Read<long int>(u"1.5") || Read<int>(u"1e3") || Read<unsigned int>(u"-1"));
    EXPECT_TRUE(Read<long int>(u"2147483647") == 2147483647 && Read<int>(u"-2147483648") == -2147483647 - 1);
    EXPECT_FALSE(Read<long int>(u"2147483648") || Read<int>(u"-2147483649") || Read<unsigned>(u"4294967296"));
    EXPECT_TRUE(Read<unsigned long>(u"4294967295") == 4294967295u && Read<unsigned int>(u"-0") == 0u);
    EXPECT_FALSE(Read<unsigned long>(u"4294967296") || Read<long long>(u"9223372036854775808"));
    EXPECT_EQ(Read<long long>(u"-9223372036854775808"), std::numeric_limits<long long>::min());
    EXPECT_FALSE(Read<unsigned long long>(u"18446744073709551616") || Read<double>(u"1e400"));
    EXPECT_TRUE(Read<double>(u"-1.5e-3") == -0.0015 && Read<double>(u".5") == 0.5 &&
                Read<double>(u"+2.") == 2);
}

TEST(String, DecodesAnyBytes) {
    std::pair<char const*, char16_t const*> const cases[] = {
        {nullptr, u""},
        {"a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", u"a\u00E9\u20AC\U0001F600"},
        {"\xED\xA0\x80|\xED\xBF\xBF|\xED\xA0", u"\xD800|\xDFFF|\uFFFD\uFFFD"},
        {"\x80z\xFFz\xE2\x82z\xC0\x80\xC3", u"\uFFFDz\uFFFDz\uFFFD\uFFFDz\uFFFD\uFFFD\uFFFD"},
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"}};
    for (auto const& [bytes, expected] : cases)
        EXPECT_EQ(DecodeFromUTF8(bytes, false), expected);
    EXPECT_EQ(Joined(DecodeFromUTF8("\xEF\xBB\xBFx", true), DecodeFromUTF8("\xEF\xBB\xBFx", false)),
              u"x|\uFEFFx|");
}

TEST(Numbers, CompareWithinTolerance) {
    EXPECT_EQ(Joined(compare(1, 1 + 1e-10), compare(1 + 1e-8, 1), compare(0, 1e-9), compare(-2e-9, 0),
                     compare(1e12, 1e12 + 100), compare(1e12, 1e12 + 2000), compare(1e308, -1e308)),
              u"0|1|0|-1|0|-1|1|");
    EXPECT_EQ(Joined(compare(infinity, infinity), compare(-infinity, infinity), compare(infinity, 5),
                     compare(notANumber, notANumber), compare(notANumber, -infinity), compare(0, notANumber)),
              u"0|-1|1|0|-1|1|");
}

} // namespace

} // namespace QMT
