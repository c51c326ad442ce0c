#include "qmt/helpers/countries.h"

#include <cstddef>

#include "helpers/countries_table.h"
#include "qmt/html/native_strings.h"

namespace QMT {

namespace {

// The maps of the last MakeCountries; null before.
Map<String, String> const* currentNames = nullptr;
Map<String, String> const* currentCodes = nullptr;

String ValueIn(Map<String, String> const* map, String const& key) {
    int const index = map ? map->Find(key) : -1;
    return index == -1 ? String() : map->Value(static_cast<std::size_t>(index));
}

} // namespace

void MakeCountries(Map<String, String>& nameOfCode, Map<String, String>& codeOfName) {
    currentNames = &nameOfCode;
    currentCodes = &codeOfName;
    nameOfCode.RemoveAll();
    codeOfName.RemoveAll();
    for (CountryRow const& row : CountryRows()) {
        nameOfCode.Insert(row.code, NATIVE(row.englishName));
    }
    for (CountryRow const& row : CountryRows()) {
        codeOfName.Insert(NATIVE(row.englishName), row.code);
    }
}

String Country(String code) {
    return ValueIn(currentNames, code);
}

String CountryCode(String name) {
    return ValueIn(currentCodes, name);
}

String CreateLanguageSelectOptions() {
    String options;
    for (std::size_t i = 0; currentCodes && i < currentCodes->Size(); ++i) {
        options << u"\t\t\t\t<option value=\"" << currentCodes->Value(i) << u"\">" << currentCodes->Key(i)
                << u"</option>" << newline;
    }
    return options;
}

} // namespace QMT
