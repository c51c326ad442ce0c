#include "qmt/helpers/countries.h"

#include "helpers/native_table.h"
#include "support/text.h"

namespace QMT {

namespace {

// The maps outlive the test that fills them.
Map<String, String> nameOfCode;
Map<String, String> codeOfName;

TEST(CountriesTest, EachIsFoundByCodeAndByName) {
    EXPECT_EQ(Country(u"DE"), u""); // nothing is filled yet
    EXPECT_EQ(CreateLanguageSelectOptions(), u"");
    nameOfCode.Insert(u"XX", u"Nowhere");
    MakeCountries(nameOfCode, codeOfName);
    MakeCountries(nameOfCode, codeOfName);
    EXPECT_EQ(nameOfCode.Size(), 248u);
    EXPECT_EQ(codeOfName.Size(), 248u);
    for (std::size_t i = 0; i < codeOfName.Size(); ++i) {
        String const& name = codeOfName.Key(i);
        String const& code = codeOfName.Value(i);
        EXPECT_TRUE(code.Len() == 2 && code > u"A" && code < u"ZZ" && code[1] >= u'A' && code[1] <= u'Z');
        EXPECT_EQ(Country(code), name == u"South Sandwich Islands" ? String(u"South Georgia") : name);
        EXPECT_EQ(CountryCode(name), code);
        EXPECT_TRUE(i == 0 || codeOfName.Key(i - 1) < name);
    }
    int const georgia = nameOfCode.Find(u"GS");
    EXPECT_EQ(nameOfCode.Value(static_cast<std::size_t>(georgia) + 1), u"South Sandwich Islands");
    EXPECT_EQ(Joined(Country(u"GS"), Country(u"AI"), Country(u"DE"), Country(u"de"), Country(u"")),
              u"South Georgia|Anguilla|Germany|||");
    EXPECT_EQ(Joined(Country(u"BA"), Country(u"GW"), Country(u"VA"), Country(u"IM"), Country(u"BL"),
                     Country(u"KN"), Country(u"CI"), Country(u"AN"), Country(u"YU")),
              u"Bosnia and Herzegowina|Guinea-bissau|Holy See(Vatican City State)|Isle Of Man|"
              u"Saint Bartelemy|Saint Kitts And Nevis|Cote d'Ivoire|Netherlands Antilles|Yugoslavia|");
    EXPECT_EQ(Joined(CountryCode(u"germany"), CountryCode(u"DE")), u"||");
}

TEST(CountriesTest, NamesFollowTheNativeTableOnlyWhenFilledAgain) {
    MakeCountries(nameOfCode, codeOfName);
    NativeTable const table("Germany\tAllemagne\nZimbabwe\tAAA");
    EXPECT_EQ(Country(u"DE"), u"Germany");
    MakeCountries(nameOfCode, codeOfName);
    EXPECT_EQ(Joined(Country(u"DE"), CountryCode(u"Allemagne"), CountryCode(u"Germany"), Country(u"FR")),
              u"Allemagne|DE||France|");
    String const options = CreateLanguageSelectOptions();
    String expected;
    expected << u"\t\t\t\t<option value=\"ZW\">AAA</option>" << newline
             << u"\t\t\t\t<option value=\"AF\">Afghanistan</option>" << newline;
    EXPECT_EQ(options.Left(expected.Len()), expected);
    ParsableText lines(options);
    lines.splitOnLineEnds = true;
    EXPECT_EQ(lines.CountElements(), 248);
}

} // namespace

} // namespace QMT
