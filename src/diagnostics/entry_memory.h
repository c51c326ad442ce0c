// Memory for many small objects that one thread after the other makes and any thread deletes.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace QMT {

// Hands out pieces of chunks: each thread fills a chunk of its own, and the one who gives the last piece
// back gives the chunk back, of which some stay for those who need one next. So a piece costs no call of the
// heap, and threads that trace at the same time share no cache line. From any thread, also while it or the
// process ends.
class EntryMemory {
public:
    // At most some hundred bytes; aligned for pointers. Allocates, and takes a lock, when the thread's chunk
    // is full.
    static void* Allocate(std::size_t bytes);

    static void Free(void* piece) noexcept;

private:
    struct Chunk;
    struct Pool;
    class ThreadsChunk;

    static Pool& ThePool();
    static void* AllocateInNewChunk(std::size_t size);
    static Chunk* NewChunk();
    static void GiveBack(Chunk* chunk, std::uint32_t pieces) noexcept;
};

} // namespace QMT
