// What the user's locale says.
#pragma once

#include <string>

#include "qmt/general/code_unit.h"

namespace QMT::platform {

// The three letters of its currency, such as EUR; empty when it names none. POSIX: the locale is the one that
// the environment names. Windows: that of the user's regional settings.
std::basic_string<CodeUnit> LocaleCurrency();

} // namespace QMT::platform
