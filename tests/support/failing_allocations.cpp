#include "support/failing_allocations.h"

#include <cstddef>
#include <cstdlib>
#include <new>

void* operator new(std::size_t size) {
    bool const fails = QMT::failingAllocation > 0 && --QMT::failingAllocation == 0;
    void* const memory = fails ? nullptr : std::malloc(size);
    return memory == nullptr ? throw std::bad_alloc() : memory;
}

void* operator new[](std::size_t size) {
    return operator new(size);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

void operator delete[](void* memory) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
