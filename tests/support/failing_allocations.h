// Lets chosen allocations fail, in a program that is built with failing_allocations.cpp.
#pragma once

namespace QMT {

// While it lives, the allocation with this number from now on, counted from 1 on this thread, fails.
class FailingAllocation {
public:
    explicit FailingAllocation(int number) { left = number; }

    ~FailingAllocation() { left = 0; }

    FailingAllocation(FailingAllocation const&) = delete;
    FailingAllocation& operator=(FailingAllocation const&) = delete;

    static bool IsNow() { return left > 0 && --left == 0; }

private:
    static inline thread_local int left = 0;
};

} // namespace QMT
