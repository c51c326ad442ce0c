#include "qmt/helpers/validators.h"

#include "helpers/native_table.h"
#include "support/text.h"

namespace QMT {

namespace {

using Texts = std::vector<char16_t const*>;

struct AddressCases {
    Texts addresses;
    char const* message; // empty: they pass
    bool translated = false;
};

// One fault a line.
// clang-format off
AddressCases const addressCases[] = {
    {{u"ab@cd.ef", u" \tab@cd.ef\r\n", u"a.b@c.de", u"Info@cd.ef", u"info.ab@cd.ef"}, ""},
    {{u"", u" \t "}, "Email address must not be blank"},
    {{u"ab.cd"}, "Email address must contain an '@' character"},
    {{u"@b@@cd"}, "Email address should have only one '@' character"},
    {{u"@cd"}, "Email address must contain a '.' character"},
    {{u"a..b@cd"}, "Email address has two dots '..' instead of '.' "},
    {{u"a.@b"}, "Email address must have at least two characters before the '.'"},
    {{u"a@bc.d", u"ab@cd."}, "Email address has insufficient characters after the '.'"},
    {{u"ab@.cd", u"ab.cd@ef"}, "Email address has insufficient characters between the '@' and the '.'"},
    {{u"a@b.cd"}, "Email address has insufficient characters before  the '@'"},
    {{u"abuse@c d.ef", u"beetroot@cd.ef", u"info@cd.ef", u"postmaster@cd.ef", u"support@cd.ef",
      u"webmaster@cd.ef"}, "Email address not acceptable. Please choose another address.", true},
    {{u"a b&,@cd.ef", u"ab@c\td.ef"}, "Email address has spaces. Remove the spaces.", true},
    {{u"a+,b@cd.ef", u"ab@c&d.ef"}, "Email address should not have a & or +.", true},
    {{u"ab@c,d.ef"}, "Email address has a comma in it. Did you mean to type a '.' instead?", true},
};

// clang-format on

TEST(ValidatorsTest, TheFirstFaultOfAnAddressIsToldAndOnlySomeMessagesAreTranslated) {
    std::string lines;
    for (auto const& [addresses, message, translated] : addressCases) {
        lines += std::string(message) + "\tnative\n";
        for (String const address : addresses)
            EXPECT_EQ(TakeError(InvalidEmailAddress(address)), DecodeFromUTF8(message, false));
    }
    NativeTable const table(lines);
    for (auto const& [addresses, message, translated] : addressCases)
        EXPECT_EQ(TakeError(InvalidEmailAddress(addresses[0])),
                  DecodeFromUTF8(translated ? "native" : message, false));
}

TEST(ValidatorsTest, PostalCodesAreRepairedAndJudged) {
    NativeTable const table("No postcode supplied.\tnone\nPostcode too short\tshort\n"
                            "Postcode needs a separating space in the middle.\tblank\n"
                            "Postal code incorrectly formatted.\tnever\n");
    auto const judge = [](String code, String country) {
        String const message = TakeError(CheckPostalCodeFormat(code, country));
        return Joined(code, message);
    };
    for (String const code : {u"A1 1AA", u"A11 1AA", u"AA1 1AA", u"A1A 1AA", u"AA11 9ZZ", u"ZZ9A 1AA",
                              u"X 12", u"C1 1AA", u"AA111 1aa?"})
        EXPECT_EQ(judge(code, u"uk"), code + u"||");
    for (String const code : {u"a1 1aa", u"1A 1AA", u"A111 1AA", u"A1 1AAA", u"A1 AAA", u"A1 1A A",
                              u"AA1  1CA", u"AA111 1IA", u"X 1K", u"X M", u"X  O", u"X 1V"})
        EXPECT_EQ(judge(code, u"uk"), code + u"|Postal code incorrectly formatted.|");
    EXPECT_EQ(judge(u"a1  1aa", u"uk"), u"a1 1aa|Postal code incorrectly formatted.|");
    EXPECT_EQ(judge(u"\t A1   1AA\n", u"uk") + judge(u" \t", u"uk") + judge(u"A1AA ", u"uk") +
                  judge(u"A1\t1A", u"uk"),
              u"A1 1AA|||none|A1AA|short|A1\t1A|blank|");
    for (String const country : {u"UK", u"us", u""})
        EXPECT_EQ(judge(u" 1 ", country), u" 1 ||");
}

TEST(ValidatorsTest, DisallowedCharactersAreListedOnceInTheirOrder) {
    EXPECT_EQ(SQLSafe(u"", false) + SQLSafe(u"select * from a-b, c", false) + SQLSafe(u"'it\"s'", true), u"");
    EXPECT_EQ(SQLSafe(u"50% 'it's'", false), u"Disallowed characters in text: ' %");
    NativeTable const table("Disallowed characters in text: \tNo: ");
    EXPECT_EQ(Joined(SQLSafe(u"##;#", false), SQLSafe(u"#_%;\\\"'", false), SQLSafe(u"#_%;\\\"'", true)),
              u"No: ; #|No: ' \" \\ ; % _ #|No: \\ ; % _ #|");
}

TEST(ValidatorsTest, OnlyDigitsAreNumeric) {
    auto const isNumeric = [](String const& text) {
        return IsNumeric(std::basic_string<CodeUnit>(text.View()));
    };
    EXPECT_TRUE(isNumeric(u"0123456789"));
    for (String const text : {u"", u"-1", u"1.5", u" 1", u"1:", u"1/", u"\u0663"})
        EXPECT_FALSE(isNumeric(text)) << testing::PrintToString(text);
}

} // namespace

} // namespace QMT
