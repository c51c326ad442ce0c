// The name of a thread.
#pragma once

namespace QMT::platform {

// Names the calling thread for debuggers and system monitors; null or a name that the system refuses leaves
// it as it was. Linux shows the first 15 bytes, Windows all of them.
void NameCurrentThread(char const* name);

} // namespace QMT::platform
