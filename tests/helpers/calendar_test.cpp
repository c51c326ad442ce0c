#include "qmt/helpers/calendar.h"

#include <climits>

#include "helpers/native_table.h"
#include "support/text.h"

namespace QMT {

namespace {

TEST(CalendarTest, MonthsHaveNamesAndNamesHaveMonths) {
    String shortNames, longNames;
    for (int month = 0; month <= 13; ++month) {
        shortNames << EnglishMonth(month, true) << u" ";
        longNames << EnglishMonth(month, false) << u" ";
        for (bool const isShort : {false, true})
            EXPECT_EQ(MonthNumber(EnglishMonth(month, isShort)), month == 0 || month == 13 ? 12 : month);
    }
    EXPECT_EQ(shortNames, u"Unknown Jan Feb Mar Apr May Jun Jly Aug Sep Oct Nov Dec Unknown ");
    EXPECT_EQ(longNames, u"Unknown January February March April May June July August September October "
                         u"November December Unknown ");
    EXPECT_EQ(MonthNumber(u"Januar"), 1);
    for (char16_t const* const name : {u"", u"Ja", u"january", u" Jan", u"JUL"})
        EXPECT_EQ(MonthNumber(name), 12);
}

TEST(CalendarTest, OnlyTheShortNamesStayEnglish) {
    NativeTable const table("May\tMai\nJan\tJenner\nUnknown\tUnbekannt");
    EXPECT_EQ(Joined(EnglishMonth(5, false), EnglishMonth(5, true), EnglishMonth(1, true),
                     EnglishMonth(1, false), EnglishMonth(0, true), EnglishMonth(13, false)),
              u"Mai|May|Jan|January|Unbekannt|Unbekannt|");
}

TEST(CalendarTest, RandomNumbersReachBothEndsAndNoFurther) {
    std::array<int, 3> hits{};
    unsigned int seenBits = 0;
    for (int i = 0; i < 1000; ++i, ++hits.at(random_number(2)), seenBits |= random_number(UINT_MAX))
        EXPECT_EQ(random_number(0), 0u);
    for (int const count : hits)
        EXPECT_NEAR(count, 333, 200); // thirteen standard deviations
    EXPECT_EQ(seenBits, UINT_MAX);
}

} // namespace

} // namespace QMT
