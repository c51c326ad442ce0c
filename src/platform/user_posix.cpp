#include "platform/user.h"

#include "platform/user_entry_posix.h"
#include "platform/utf8_text.h"

namespace QMT::platform {

std::basic_string<CodeUnit> UserName() {
    return FromUtf8(FieldOfUser(&passwd::pw_name));
}

} // namespace QMT::platform
