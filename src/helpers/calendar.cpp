#include "qmt/helpers/calendar.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <random>

#include "qmt/html/native_strings.h"

namespace QMT {

namespace {

struct Month {
    char16_t const* shortName;
    char16_t const* longName;
};

constexpr Month months[] = {
    {u"Jan", u"January"},   {u"Feb", u"February"}, {u"Mar", u"March"},    {u"Apr", u"April"},
    {u"May", u"May"},       {u"Jun", u"June"},     {u"Jly", u"July"},     {u"Aug", u"August"},
    {u"Sep", u"September"}, {u"Oct", u"October"},  {u"Nov", u"November"}, {u"Dec", u"December"},
};

constexpr int monthCount = 12;
static_assert(std::size(months) == monthCount);

std::uint32_t SeedFromClock() {
    auto const sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(
        std::chrono::duration_cast<std::chrono::nanoseconds>(sinceStart).count());
}

} // namespace

String EnglishMonth(int month, bool isShort) {
    if (month < 1 || month > monthCount) {
        return NATIVE(u"Unknown");
    }
    Month const& names = months[month - 1];
    return isShort ? String(names.shortName) : NATIVE(names.longName);
}

int MonthNumber(String name) {
    String const start = name.Left(3);
    if (start == u"Jul") {
        return 7;
    }
    auto const found = std::find_if(std::begin(months), std::end(months),
                                    [&](Month const& month) { return start == month.shortName; });
    return found == std::end(months) ? monthCount : static_cast<int>(found - std::begin(months)) + 1;
}

unsigned int random_number(unsigned int largest) {
    static std::mt19937 generator(SeedFromClock());
    auto const drawn = static_cast<unsigned int>(generator());
    return largest == std::numeric_limits<unsigned int>::max() ? drawn : drawn % (largest + 1);
}

} // namespace QMT
