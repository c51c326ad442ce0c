// The countries that applications offer in their forms.
#pragma once

#include <span>

namespace QMT {

struct CountryRow {
    char16_t const* code;
    char16_t const* englishName;
};

// All countries in ascending order of the name. No name stands twice.
std::span<CountryRow const> CountryRows();

} // namespace QMT
