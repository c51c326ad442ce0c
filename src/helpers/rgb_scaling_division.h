// Division of a block's sum by the number of its pixels, without dividing.
#pragma once

namespace QMT::scaling {

// sum / factor^2 is (((sum >> before) * multiplier) >> 16) >> after, exactly, for sums of 0 to 255 x
// factor^2; all of it fits 16 bits but the product, of which the upper 16 count.
struct Division {
    int before;
    unsigned int multiplier;
    int after;
};

// For factors from 3 to 15.
constexpr Division DivisionBySquareOf(unsigned int factor) {
    bool const isEven = factor % 2 == 0;
    unsigned int const divisor = isEven ? factor * factor / 4 : factor * factor;
    int after = 0;
    while ((2U << (16 + after)) / divisor < 0xFFFF)
        ++after;
    return {isEven ? 2 : 0, ((1U << (16 + after)) + divisor - 1) / divisor, after};
}

// The multiplier is 2^(16 + after) / divisor, rounded up by less than 1: what that adds to the quotient must
// not reach the next whole number.
constexpr bool IsExact(unsigned int factor) {
    Division const division = DivisionBySquareOf(factor);
    unsigned int const divisor = factor * factor >> division.before;
    unsigned int const power = 1U << (16 + division.after);
    unsigned int const excess = division.multiplier * divisor - power;
    return division.multiplier <= 0xFFFF && excess < divisor && excess * 255 * divisor < power;
}

static_assert(IsExact(3) && IsExact(4) && IsExact(5) && IsExact(6) && IsExact(7) && IsExact(8) && IsExact(9));
static_assert(IsExact(10) && IsExact(11) && IsExact(12) && IsExact(13) && IsExact(14) && IsExact(15));

} // namespace QMT::scaling
