#include "diagnostics/entry_memory.h"

#include <new>
#include <utility>

#include "general/never_destroyed.h"
#include "qmt/general/events.h"

namespace QMT {

namespace {

constexpr std::size_t chunkBytes = 16 * 1024;
constexpr std::size_t mostKeptChunks = 128;
constexpr std::align_val_t chunkAlignment{chunkBytes};

// More than a chunk has pieces: what it counts for while its thread still fills it.
constexpr std::uint32_t filling = 1U << 20;

} // namespace

// Stands at the head of its memory, whose address tells which chunk a piece belongs to.
struct EntryMemory::Chunk {
    std::atomic<std::uint32_t> pieces{filling}; // that are not given back
    std::uint32_t handedOut = 0;
    std::size_t used = sizeof(Chunk);
    Chunk* next = nullptr; // of those in the pool

    bool HasRoomFor(std::size_t size) const { return size <= chunkBytes - used; }

    void* Take(std::size_t size);
};

struct EntryMemory::Pool {
    CritSection section{"real-time report memory"};
    Chunk* begun QMT_GUARDED_BY(section) = nullptr; // left with room by threads that have ended
    Chunk* kept QMT_GUARDED_BY(section) = nullptr;
    std::size_t count QMT_GUARDED_BY(section) = 0;
};

EntryMemory::Pool& EntryMemory::ThePool() {
    static NeverDestroyed<Pool> pool;
    return *pool;
}

// The chunk that this thread fills. When the thread ends another one goes on with it: threads that come and
// go to trace a little share chunks.
class EntryMemory::ThreadsChunk {
public:
    ~ThreadsChunk() {
        HandOn();
        hasEnded = true;
    }

    static void HandOn() noexcept;

    static void Replace(Chunk* chunk) noexcept {
        if (Chunk* const full = std::exchange(current, chunk))
            GiveBack(full, filling - full->handedOut);
    }

    [[gnu::tls_model("initial-exec")]] static thread_local constinit Chunk* current; // found without a call
    static thread_local constinit bool hasEnded;
};

[[gnu::tls_model(
    "initial-exec")]] thread_local constinit EntryMemory::Chunk* EntryMemory::ThreadsChunk::current = nullptr;
thread_local constinit bool EntryMemory::ThreadsChunk::hasEnded = false;

void EntryMemory::ThreadsChunk::HandOn() noexcept {
    if (current == nullptr) // there was no memory for a first one
        return;
    Pool& pool = ThePool();
    CritSectionLock const lock(&pool.section);
    current->next = std::exchange(pool.begun, current);
    current = nullptr;
}

EntryMemory::Chunk* EntryMemory::NewChunk() {
    Pool& pool = ThePool();
    {
        CritSectionLock const lock(&pool.section);
        if (Chunk* const chunk = pool.begun) {
            pool.begun = chunk->next;
            return chunk;
        }
        if (Chunk* const chunk = pool.kept) {
            pool.kept = chunk->next;
            --pool.count;
            return ::new (chunk) Chunk;
        }
    }
    return ::new (::operator new(chunkBytes, chunkAlignment)) Chunk;
}

void EntryMemory::GiveBack(Chunk* chunk, std::uint32_t pieces) noexcept {
    if (chunk->pieces.fetch_sub(pieces, std::memory_order_acq_rel) != pieces)
        return;
    Pool& pool = ThePool();
    {
        CritSectionLock const lock(&pool.section);
        if (pool.count < mostKeptChunks) {
            chunk->next = std::exchange(pool.kept, chunk);
            ++pool.count;
            return;
        }
    }
    ::operator delete(chunk, chunkAlignment);
}

void* EntryMemory::Chunk::Take(std::size_t size) {
    void* const piece = reinterpret_cast<std::byte*>(this) + used;
    used += size;
    ++handedOut;
    return piece;
}

void* EntryMemory::Allocate(std::size_t bytes) {
    std::size_t const size = (bytes + alignof(void*) - 1) / alignof(void*) * alignof(void*);
    Chunk* const chunk = ThreadsChunk::current;
    return chunk && chunk->HasRoomFor(size) ? chunk->Take(size) : AllocateInNewChunk(size);
}

void* EntryMemory::AllocateInNewChunk(std::size_t size) {
    thread_local ThreadsChunk endsWithThread;
    do
        endsWithThread.Replace(NewChunk());
    while (!ThreadsChunk::current->HasRoomFor(size));
    void* const piece = ThreadsChunk::current->Take(size);
    if (ThreadsChunk::hasEnded)
        endsWithThread.HandOn();
    return piece; // NOLINT(clang-analyzer-cplusplus.NewDelete): the piece itself keeps the chunk
}

void EntryMemory::Free(void* piece) noexcept {
    std::uintptr_t const offset = reinterpret_cast<std::uintptr_t>(piece) % chunkBytes;
    GiveBack(reinterpret_cast<Chunk*>(static_cast<std::byte*>(piece) - offset), 1);
}

} // namespace QMT
