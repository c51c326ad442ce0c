// A lock-free ring of equally sized blocks between one writer and one reader.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "qmt/chain/tally.h"
#include "qmt/export.h"
#include "qmt/general/events.h"
#include "qmt/general/string.h"
#include "qmt/platform/fetch_for_writing.h"

namespace QMT {

// A block such as the ring holds, for those who hand blocks in: `size` bytes, not initialised, the caller's
// until a ring takes it over. Throws std::bad_alloc.
QMT_UTILU_API unsigned char* AllocateBlock(std::size_t size);

// Frees a block that a ring has handed out or that no ring took; null is allowed.
QMT_UTILU_API void FreeBlock(unsigned char* block) noexcept;

// What the two sides of a ring have counted.
struct RingCounts {
    // Times that `BeginWrite` gave null, and that `BeginRead`, `BeginPartialRead` or `TestSharedRead` found
    // no buffer.
    std::uint64_t foundFull = 0;
    std::uint64_t foundEmpty = 0;

    // The most buffers that the ring was seen to hold: by the reader, when it had read all it knew of and
    // looked for more, or by a writer who found it full. In between it may have held more, once it has been
    // read never more than twice as many.
    int highestFill = 0;

    friend bool operator==(RingCounts const&, RingCounts const&) = default;
};

// Carries buffers from one writer to one reader without a lock and without copying.
//
// The caller configures the ring while nobody uses it, then writes on one thread and reads on one thread. The
// writer calls `BeginWrite`, fills, replaces or swaps the block, and calls `EndWrite`; the reader calls
// `BeginRead`, uses the block or swaps it out, and calls `EndRead`. Replace, swap, peek and end check
// nothing: a successful `Begin` or `Test` comes first. A block that is handed in must come from
// `AllocateBlock` and be large enough; it then belongs to the ring, and one that is swapped out belongs to
// the caller.
//
// A ring of n slots holds n - 1 buffers; one of 0 or 1 slots holds none. No operation but the configuration
// waits, allocates or enters the system, save for waking a thread that sleeps on a notification semaphore.
// Whoever sees a buffer, or a free slot, also sees everything that the other side did to it before.
//
//     RotatingFixedBuffers ring(4, 512);
//     if (unsigned char** slot = ring.BeginWrite()) { Fill(*slot); ring.EndWrite(); }  // the writer
//     if (unsigned char** slot = ring.BeginRead()) { Use(*slot); ring.EndRead(); }     // the reader
//
// Results of type `unsigned char**` are the address of the slot, good until the ring is configured anew; the
// block is `*result`. Results of type `unsigned char*` are the block.
//
// With a semaphore set by `SetEndReadNotifyRequired`, several readers may share the ring: `EndRead` then
// frees nothing and only signals, and one coordinating thread frees the slot with `ForceEndRead` when every
// reader has finished with it.
class QMT_UTILU_API RotatingFixedBuffers {
public:
    // Not configured: neither readable nor writable.
    RotatingFixedBuffers();

    // Configured as by `SetProperties`.
    RotatingFixedBuffers(int count, std::size_t size);

    ~RotatingFixedBuffers();
    RotatingFixedBuffers(RotatingFixedBuffers const&) = delete;
    RotatingFixedBuffers& operator=(RotatingFixedBuffers const&) = delete;

    // Discards what the ring holds and sets up `count` slots of `size` bytes each, not initialised. The
    // notification semaphores and the trace name stay. Throws std::bad_alloc, also for a count below 0, and
    // then leaves the ring not configured. For a time when the ring is not in use.
    void SetProperties(int count, std::size_t size);

    // Empties the ring; the blocks, the notification semaphores and the trace name stay. For a time when the
    // ring is not in use.
    void ClearFlags();

    // The blocks of all slots, `BufferCount()` of them; null when not configured.
    unsigned char** InternalBuffers() { return buffers; }

    // Bytes in a block.
    std::size_t FixedBufferSize() const { return fixedBufferSize; }

    // Slots, one more than the ring can hold buffers.
    int BufferCount() const { return bufferCount; }

    // From now on `EndRead` signals `semaphore` and frees nothing; null switches that off. The semaphore
    // stays the caller's and must outlive the setting. For a time when the ring is not in use.
    void SetEndReadNotifyRequired(CountingSemaphore* semaphore);

    // From now on the end of a write signals `semaphore`, once the buffer can be read; null switches that
    // off. The semaphore stays the caller's and must outlive the setting. For a time when the ring is not in
    // use.
    void SetEndWriteNotifyRequired(CountingSemaphore* semaphore) { endWriteNotify = semaphore; }

    // What has been counted since the ring was configured or `ZeroCounts` was called; readers that share the
    // ring count nothing. From any thread, but not during the configuration. Each value is one that its count
    // has had, but not all need be of one moment.
    RingCounts Counts() const;

    // Begins the counts anew. For a time when the ring is not in use.
    void ZeroCounts();

    // Free text for diagnosis.
    String GetTraceName() const;
    void SetTraceName(String name);

    // The reader's side. True when there is a buffer to read.
    bool TestRead() {
        int const index = readIndex.load(std::memory_order_relaxed);
        if (endReadNotify != nullptr)
            return index != publishedWriteIndex.load(std::memory_order_acquire);
        if (index != knownWriteIndex)
            return true;
        int const end = publishedWriteIndex.load(std::memory_order_acquire);
        knownWriteIndex = end;
        if (index == end)
            return false;
        CountFill(index, end);
        return true;
    }

    // The same for the thread that coordinates readers which share the ring, and counted, as what those find
    // is not.
    bool TestSharedRead() {
        int const index = readIndex.load(std::memory_order_relaxed);
        int const end = publishedWriteIndex.load(std::memory_order_acquire);
        CountFill(index, end);
        if (index == end)
            foundEmpty.Add();
        return index != end;
    }

    // The slot to read, null when the ring is empty. Changes nothing: a second call gives the same slot.
    unsigned char** BeginRead() {
        if (TestRead())
            return ReadSlot();
        CountEmpty();
        return nullptr;
    }

    // As `BeginRead`; `size` becomes the slot's byte count, also when the ring is empty.
    unsigned char** BeginPartialRead(std::size_t& size) {
        if (TestRead()) {
            size = ReadSize().load(std::memory_order_relaxed);
            return ReadSlot();
        }
        size = bufferCount == 0 ? 0 : ReadSize().load(std::memory_order_relaxed);
        CountEmpty();
        return nullptr;
    }

    // The block of the slot that is next to read, whether or not it has been written.
    unsigned char* ForPeekRead() { return *ReadSlot(); }

    // As `ForPeekRead`, with the slot's byte count.
    unsigned char* ForPartialPeekRead(std::size_t& size) {
        size = ReadSize().load(std::memory_order_relaxed);
        return *ReadSlot();
    }

    // Exchanges the caller's block with that of the slot being read.
    void ReadSwap(unsigned char** block) { std::swap(*block, *ReadSlot()); }

    // As `ReadSwap`, with the byte counts.
    void PartialReadSwap(unsigned char** block, std::size_t* size) {
        SwapSize(ReadSize(), size);
        ReadSwap(block);
    }

    // Frees the slot for the writer and sets its byte count to 0; with an end-of-read semaphore it only
    // signals that.
    void EndRead() {
        if (endReadNotify != nullptr)
            endReadNotify->Signal();
        else
            AdvanceReader();
    }

    // Frees the slot also when an end-of-read semaphore is set, and signals nothing.
    void ForceEndRead() { AdvanceReader(); }

    // The writer's side. True when there is a free slot.
    bool TestWrite() {
        int const next = NextIndex(writeIndex.load(std::memory_order_relaxed));
        if (next == knownReadIndex)
            knownReadIndex = publishedReadIndex.load(std::memory_order_acquire);
        return next != knownReadIndex;
    }

    // The slot to write, null when the ring is full. Changes nothing: a second call gives the same slot.
    unsigned char** BeginWrite() {
        if (TestWrite())
            return WriteSlot();
        foundFull.Add();
        return nullptr;
    }

    // The block of the slot that is next to write, whether or not it is free.
    unsigned char* ForOverWrite() { return *WriteSlot(); }

    // Frees the slot's block and puts `block` in its place. Enters the allocator.
    void WriteReplace(unsigned char* block) {
        FreeBlock(*WriteSlot());
        *WriteSlot() = block;
    }

    // As `WriteReplace`, and sets the slot's byte count.
    void PartialWriteReplace(unsigned char* block, std::size_t size) {
        WriteReplace(block);
        WriteSize().store(size, std::memory_order_relaxed);
    }

    // Exchanges the caller's block with that of the slot being written.
    void WriteSwap(unsigned char** block) { std::swap(*block, *WriteSlot()); }

    // As `WriteSwap`, with the byte counts.
    void PartialWriteSwap(unsigned char** block, std::size_t* size) {
        SwapSize(WriteSize(), size);
        WriteSwap(block);
    }

    // Publishes the slot to the reader; its byte count stays as it is. Then signals the end-of-write
    // semaphore, if one is set.
    void EndWrite() {
        int const next = NextIndex(writeIndex.load(std::memory_order_relaxed));
        writeIndex.store(next, std::memory_order_relaxed);
        publishedWriteIndex.store(next, std::memory_order_release);
        FetchAhead(next);
        if (endWriteNotify != nullptr)
            endWriteNotify->Signal();
    }

    // As `EndWrite`, with a byte count for the slot.
    void PartialEndWrite(std::size_t size) {
        WriteSize().store(size, std::memory_order_relaxed);
        EndWrite();
    }

private:
    friend class ChainLink;
    friend class CountsAccess;

    using Size = std::atomic<std::size_t>;

    // Each index has a cache line of its own, so that the two sides disturb each other only where they must.
    // By room between them: aligned members would make every link an over-aligned object.
    using Apart = unsigned char[64];

    void ReleaseBuffers();

    unsigned char** ReadSlot() { return buffers + readIndex.load(std::memory_order_relaxed); }

    unsigned char** WriteSlot() { return buffers + writeIndex.load(std::memory_order_relaxed); }

    Size& ReadSize() { return partialSizes[readIndex.load(std::memory_order_relaxed)]; }

    Size& WriteSize() { return partialSizes[writeIndex.load(std::memory_order_relaxed)]; }

    static void SwapSize(Size& slotSize, std::size_t* size) {
        std::size_t const old = slotSize.load(std::memory_order_relaxed);
        slotSize.store(*size, std::memory_order_relaxed);
        *size = old;
    }

    // The reader's side: between the two indices stand all buffers there are at this moment.
    void CountFill(int begin, int end) {
        int const held = end - begin;
        highestFill.RaiseTo(static_cast<std::uint64_t>(held < 0 ? held + bufferCount : held));
    }

    void CountEmpty() {
        if (endReadNotify == nullptr)
            foundEmpty.Add();
    }

    // Not configured gives 0, so that such a ring counts as full.
    int NextIndex(int index) const { return index + 1 >= bufferCount ? 0 : index + 1; }

    // The blocks that the writer comes to next lie in the reader's cache. Fetching one some slots ahead hides
    // the way; not one that the reader may still hold.
    void FetchAhead(int index) const {
        constexpr int slotsAhead = 4;
        int const room = knownReadIndex - index;
        if ((room > 0 ? room : room + bufferCount) <= slotsAhead)
            return;
        int const ahead = index + slotsAhead;
        platform::FetchForWriting(buffers[ahead >= bufferCount ? ahead - bufferCount : ahead]);
    }

    // Readers that share the ring look at `readIndex` meanwhile: it never holds `bufferCount`.
    void AdvanceReader() {
        // Neighbouring sizes share a cache line with the writer, so a size is written only if it must be.
        if (Size& size = ReadSize(); size.load(std::memory_order_relaxed) != 0)
            size.store(0, std::memory_order_relaxed);
        int const next = NextIndex(readIndex.load(std::memory_order_relaxed));
        readIndex.store(next, std::memory_order_relaxed);
        publishedReadIndex.store(next, std::memory_order_release);
    }

    unsigned char** buffers = nullptr;
    Size* partialSizes = nullptr;
    int bufferCount = 0;
    std::size_t fixedBufferSize = 0;

    // Beside each private index stands what its side last saw of the other's published one; it is looked up
    // again only when the ring seems empty or full. While an end-of-read semaphore is set several readers
    // would write the reader's copy, so it is not used then. Behind these stands what the side counts, so
    // that counting touches no line that it does not own.
    [[maybe_unused]] Apart apart1;
    std::atomic<int> readIndex{0};
    int knownWriteIndex = 0;
    Tally highestFill;
    Tally foundEmpty;
    Tally pulls; // at the link that owns the ring, but for those that a semaphore counts
    [[maybe_unused]] Apart apart2;
    std::atomic<int> writeIndex{0};
    int knownReadIndex = 0;
    Tally foundFull;
    Tally pushes;    // at the link behind the ring, likewise
    Tally processed; // calls of `Process` of the link that owns the ring
    [[maybe_unused]] Apart apart3;
    std::atomic<int> publishedReadIndex{0};
    [[maybe_unused]] Apart apart4;
    std::atomic<int> publishedWriteIndex{0};

    [[maybe_unused]] Apart apart5;
    CountingSemaphore* endReadNotify = nullptr;
    CountingSemaphore* endWriteNotify = nullptr;
    String traceName;
};

} // namespace QMT
