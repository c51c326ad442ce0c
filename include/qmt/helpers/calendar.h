// Names of months, and a random number.
#pragma once

#include "qmt/export.h"
#include "qmt/general/string.h"

namespace QMT {

// The name of the month with this number, 1 to 12: "Jan" to "Dec", July being "Jly", when isShort is true;
// otherwise "January" to "December" through NATIVE. "Unknown", through NATIVE, for any other number. From any
// thread while no table of native strings is read.
QMT_UTILU_API String EnglishMonth(int month, bool isShort);

// The number, 1 to 12, of the month whose English short name the text begins with, in exactly that form;
// "Jul" counts as July too. 12 for any other text. From any thread.
QMT_UTILU_API int MonthNumber(String name);

// A number from 0 to largest, both included: the output of a 32-bit Mersenne Twister modulo largest + 1, so
// that low values come slightly more often; the output as it is for the largest unsigned int. The first call
// seeds the generator, of which a process has one, from the steady clock: this is nothing to keep secrets
// with. Takes no lock: callers on several threads hold one of their own. Never waits.
QMT_UTILU_API unsigned int random_number(unsigned int largest);

} // namespace QMT
