// Emptying the calling thread's queue of messages.
#pragma once

struct tagMSG; // NOLINT(readability-identifier-naming): the name is fixed

namespace QMT::platform {

// Takes one message after the other until there is none, those included that come meanwhile, and handles it
// in the system's way, unless there is a filter and that gives something other than 0. Never waits for a
// message. Windows: those of the system, WM_QUIT too, and those that were posted to a ThreadQueue; a window
// whose WM_PAINT the filter takes counts as painted. POSIX: the latter, for there are no others.
void EmptyMessageQueue(int (*filter)(tagMSG*));

} // namespace QMT::platform
