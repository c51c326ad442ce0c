#include "qmt/config/config_base.h"

#include "support/text.h"

namespace QMT {
namespace {

// A store of one text.
struct OneSetting : ConfigBase {
    String GetString(String section, String entry, String defaultText) override {
        asked = section + u"/" + entry;
        if (fails)
            throw MakeError(u"broken");
        return stored.IsEmpty() ? defaultText : stored;
    }

    String stored, asked;
    bool fails = false;
};

String const frame = u"Error reading configuration. In section [S] entry : E. ";

// What a read of the text gives: the variable behind it, and the error. It is 77 before.
template <class Number, class... Bounds>
String Read(char16_t const* text, Bounds... bounds) {
    OneSetting store;
    store.stored = text;
    Number value = 77;
    String const error = TakeError(store.TestProfileNumber(u"S", u"E", value, bounds..., u"1.5"));
    EXPECT_EQ(store.asked, u"S/E");
    return Joined(value) + error;
}

TEST(ConfigBase, WholeNumbersHave32BitsAndNoPoint) {
    for (char16_t const* const text : {u"3.7", u".", u"1.2.3", u"x.", u""}) // the default has one, too
        for (String const& result : {Read<long int>(text), Read<int>(text), Read<unsigned int>(text)})
            EXPECT_EQ(result, u"77|" + frame + u"Has illegal decimal point.");
    EXPECT_EQ(Read<long int>(u" -2147483648 "), u"-2147483648|");
    EXPECT_EQ(Read<int>(u"-2147483648"), u"-2147483648|");
    EXPECT_EQ(Read<unsigned int>(u"-1"), u"4294967295|");
    for (char16_t const* const text : {u"4294967295", u"ten", u"-2147483649"}) {
        String const error = Read<long int>(text); // quotes the text, and comes as it was thrown
        EXPECT_TRUE(error.Left(3) == u"77|" && error.Find(text) > 0 && error.Find(frame) == -1);
        EXPECT_TRUE(Read<int>(text) == error && Read<unsigned int>(text) == error);
    }
}

TEST(ConfigBase, NumbersWithAFraction) {
    EXPECT_EQ(Read<double>(u"3.7") + Read<double>(u"") + Read<double>(u"1.2.3").Left(3), u"3.7|1.5|77|");
    for (auto const& [text, result] : {std::pair{u"3.7", u"3|"},
                                       {u"4294967295", u"4294967295|"},
                                       {u"4294967297.5", u"1|"},
                                       {u"-1.9", u"4294967295|"},
                                       {u"-9223372036854775808", u"0|"}})
        EXPECT_EQ(Read<unsigned long int>(text), result);
    for (char16_t const* const text : {u"9223372036854775808", u"-9.3e18", u"1e300"})
        EXPECT_EQ(Read<unsigned long int>(text).Left(3 + frame.Len()), u"77|" + frame);
    EXPECT_EQ(Read<unsigned long int>(u"0x10").Left(3), u"77|");
}

TEST(ConfigBase, RangesIncludeTheirEnds) {
    String const low = frame + u"Entry less than allowed minimum of ";
    String const high = frame + u"Entry greater than allowed maximum of ";
    EXPECT_EQ(Read<int>(u"-3", -3, 5) + Read<int>(u"5", -3, 5) + Read<int>(u"x", 5, 3).Left(3), u"-3|5|77|");
    EXPECT_EQ(Read<int>(u"-4", -3, 5), u"-4|" + low + u"-3");
    EXPECT_EQ(Read<int>(u"6", -3, 5), u"6|" + high + u"5");
    EXPECT_EQ(Read<int>(u"4", 5, 3), u"4|" + low + u"5");
    EXPECT_EQ(Read<int>(u"5", 5, 3), u"5|" + high + u"3");
    EXPECT_EQ(Read<double>(u"0.1", 0.1, 0.25) + Read<double>(u"0.25", 0.1, 0.25), u"0.1|0.25|");
    EXPECT_EQ(Read<double>(u"0.0999999999999", 0.1, 0.25), u"0.0999999999999|" + low + u"0.1");
    EXPECT_EQ(Read<double>(u"", 0.1, 0.25), u"1.5|" + high + u"0.25"); // the default
}

TEST(ConfigBase, TextsAndOptions) {
    OneSetting store;
    String value = u"before";
    store.fails = true;
    auto const toggle = [&] {
        return TakeError(store.TestProfileToggle(u"S", u"E", value, u"yes", u"no", u"no"));
    };
    long int number = 5;
    EXPECT_EQ(TakeError(store.TestProfileString(u"S", u"E", value, u"d")) + toggle() +
                  TakeError(store.TestProfileNumber(u"S", u"E", number, u"1")),
              u"brokenbrokenbroken");
    EXPECT_EQ(Joined(value, number), u"before|5|");
    store.fails = false;
    EXPECT_EQ(TakeError(store.TestProfileString(u"S", u"E", value, u"d")) << value, u"d");
    EXPECT_EQ(Joined(toggle(), value), u"|no|");
    for (char16_t const* const text : {u"Yes", u" yes", u"yesno"}) {
        store.stored = text;
        EXPECT_EQ(Joined(toggle(), value), Joined(frame + u"Illegal option. Must be yes or no", text));
    }
}

} // namespace
} // namespace QMT
