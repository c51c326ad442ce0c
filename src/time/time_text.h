// Reading calendar fields from text.
#pragma once

#include <array>

#include "qmt/general/string.h"

namespace QMT {

// Year, month, day, hour, minute, second.
using CalendarNumbers = std::array<unsigned int, 6>;

// Fields that `text` does not reach, or that are no numbers there, are those of 2000/01/01 00:00:00.
CalendarNumbers ReadTime(String const& text);

// The same for a readable date alone; a `date` of another length counts for nothing.
CalendarNumbers ReadDate(String const& date);

} // namespace QMT
