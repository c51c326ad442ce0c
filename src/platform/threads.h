// What threads need of the system beside the language's library.
#pragma once

#include <system_error>

#include "platform/system_errors.h"

namespace QMT::platform {

// Names the calling thread for debuggers and system monitors; null or a name that the system refuses leaves
// it as it was. Linux shows the first 15 bytes, Windows all of them.
void NameCurrentThread(char const* name);

// The system's number for what the language's library gives when a thread cannot start. POSIX: the same
// number. Windows: the library knows no more than that the system had no room for another thread.
SystemError ThreadStartError(std::error_code const& error);

} // namespace QMT::platform
