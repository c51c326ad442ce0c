// Process-wide objects that last until the process ends, also for threads that still run while others are
// destroyed.
#pragma once

#include <new>
#include <utility>

namespace QMT {

// Holds a `T` whose destructor never runs. For a `static` in a function or a file.
template <typename T>
class NeverDestroyed {
public:
    template <typename... Arguments>
    explicit NeverDestroyed(Arguments&&... arguments) {
        ::new (static_cast<void*>(storage)) T(std::forward<Arguments>(arguments)...);
    }

    NeverDestroyed(NeverDestroyed const&) = delete;
    NeverDestroyed& operator=(NeverDestroyed const&) = delete;

    T& operator*() { return *std::launder(reinterpret_cast<T*>(storage)); }

    T* operator->() { return &**this; }

private:
    alignas(T) unsigned char storage[sizeof(T)];
};

} // namespace QMT
