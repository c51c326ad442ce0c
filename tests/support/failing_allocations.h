// Lets a chosen allocation fail, in a program that is built with failing_allocations.cpp.
#pragma once

namespace QMT {

// The allocation with this number from now on, counted from 1 on the calling thread, fails; 0 for none.
inline thread_local int failingAllocation = 0;

} // namespace QMT
