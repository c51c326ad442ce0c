#include "platform/crit_section.h"

#include <windows.h>

namespace QMT::platform {

namespace {

class WindowsMutex final : public RecursiveMutex {
public:
    WindowsMutex() { InitializeCriticalSection(&section); }

    ~WindowsMutex() override { DeleteCriticalSection(&section); }

    void Enter() override { EnterCriticalSection(&section); }

    void Leave() override { LeaveCriticalSection(&section); }

private:
    CRITICAL_SECTION section;
};

} // namespace

std::unique_ptr<RecursiveMutex> RecursiveMutex::Create() {
    return std::make_unique<WindowsMutex>();
}

} // namespace QMT::platform
