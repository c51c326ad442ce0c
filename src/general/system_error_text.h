// The text of a system error, as it is joined to a message. Exported for the utility library; not public.
#pragma once

#include <cstdint>

#include "qmt/export.h"
#include "qmt/general/string.h"

namespace QMT {

// " Error code = ", the code as 8 hexadecimal digits, ". " and the system's own text for it, which is empty
// when the system knows none. It begins with a blank, so that a message is joined straight in front.
QMT_GENU_API String SystemErrorText(std::uint32_t code);

// The same for the calling thread's last system error. Call it before anything else enters the system.
QMT_GENU_API String LastSystemErrorText();

} // namespace QMT
