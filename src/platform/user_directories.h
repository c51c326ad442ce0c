// Where the system wants the user's things to be.
#pragma once

#include <string>
#include <string_view>

#include "qmt/general/code_unit.h"

namespace QMT::platform {

enum class UserDirectory {
    Data, // of the user's applications
    Pictures,
    Music
};

// The directory, without a separator at its end; nothing is made. Where directories have fixed places they
// are named after the user, below "c:\Users"; elsewhere the environment, a file of the desktop and the user's
// home directory tell, and a user without one has no such directories: the text is empty.
std::basic_string<CodeUnit> PathOf(UserDirectory which, std::basic_string_view<CodeUnit> userName);

} // namespace QMT::platform
