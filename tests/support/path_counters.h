// Counts what real-time code must not do.
#pragma once

#include <array>

namespace QMT {

// Allocations, locks, and system calls but for those by which threads sleep, wake, yield and read the clock.
using PathCounts = std::array<long, 3>;

// Whether this kernel dispatches system calls to the program; nothing can be counted otherwise.
bool CanCountPaths();

// From now on until `CloseWindow` everything is counted; system calls only on the calling thread and on those
// that call `CountThisThread` within the window. Such a thread starts no other thread.
void OpenWindow();
void CountThisThread();

// Gives what was done since `OpenWindow`, by the thread that has called it and all others.
PathCounts CloseWindow();

} // namespace QMT
