// The system's mutex that its holder may take again.
#pragma once

#include <memory>

namespace QMT::platform {

// `Enter` blocks until this thread owns the mutex, and may look for some microseconds before it sleeps; the
// owner may enter again, and leaves as often.
//
// The owner inherits the priority of those who wait, where the system offers that. POSIX: by the mutex's
// protocol. Windows: a critical section, whose starved owner the scheduler boosts in its own time.
class RecursiveMutex {
public:
    static std::unique_ptr<RecursiveMutex> Create();
    virtual ~RecursiveMutex() = default;
    RecursiveMutex(RecursiveMutex const&) = delete;
    RecursiveMutex& operator=(RecursiveMutex const&) = delete;

    virtual void Enter() = 0;
    virtual void Leave() = 0;

protected:
    RecursiveMutex() = default;
};

} // namespace QMT::platform
