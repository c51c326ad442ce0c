#include "qmt/chain/rotating_buffers.h"

#include <algorithm>
#include <memory>
#include <new>
#include <span>
#include <tuple>
#include <utility>

namespace QMT {

namespace {

struct BlockDeleter {
    void operator()(unsigned char* block) const noexcept { FreeBlock(block); }
};

using OwnedBlock = std::unique_ptr<unsigned char, BlockDeleter>;

} // namespace

unsigned char* AllocateBlock(std::size_t size) {
    return new unsigned char[size];
}

void FreeBlock(unsigned char* block) noexcept {
    delete[] block;
}

RotatingFixedBuffers::RotatingFixedBuffers() = default;

RotatingFixedBuffers::RotatingFixedBuffers(int count, std::size_t size) : RotatingFixedBuffers() {
    SetProperties(count, size);
}

RotatingFixedBuffers::~RotatingFixedBuffers() {
    ReleaseBuffers();
}

void RotatingFixedBuffers::SetProperties(int count, std::size_t size) {
    ReleaseBuffers();
    if (count < 0)
        throw std::bad_array_new_length();
    auto const slots = static_cast<std::size_t>(count);
    auto newBuffers = std::make_unique<unsigned char*[]>(slots);
    auto newSizes = std::make_unique<Size[]>(slots);
    auto const newBlocks = std::make_unique<OwnedBlock[]>(slots);
    for (OwnedBlock& block : std::span(newBlocks.get(), slots))
        block.reset(AllocateBlock(size));
    for (std::size_t i = 0; i < slots; ++i)
        newBuffers[i] = newBlocks[i].release();
    buffers = newBuffers.release();
    partialSizes = newSizes.release();
    bufferCount = count;
    fixedBufferSize = size;
    ClearFlags();
    ZeroCounts();
}

void RotatingFixedBuffers::ClearFlags() {
    for (Size& size : std::span(partialSizes, static_cast<std::size_t>(bufferCount)))
        size.store(0, std::memory_order_relaxed);
    readIndex = 0;
    knownWriteIndex = 0;
    writeIndex = 0;
    knownReadIndex = 0;
    publishedReadIndex = 0;
    publishedWriteIndex = 0;
}

void RotatingFixedBuffers::SetEndReadNotifyRequired(CountingSemaphore* semaphore) {
    endReadNotify = semaphore;
    // Readers that shared the ring have moved on without the copy: let it be looked up again.
    knownWriteIndex = readIndex;
}

RingCounts RotatingFixedBuffers::Counts() const {
    std::uint64_t const full = foundFull.Get();
    int const room = bufferCount > 0 ? bufferCount - 1 : 0;
    return {full, foundEmpty.Get(), full > 0 ? room : static_cast<int>(highestFill.Get())};
}

void RotatingFixedBuffers::ZeroCounts() {
    for (Tally* const tally : {&foundFull, &foundEmpty, &highestFill})
        tally->Zero();
}

String RotatingFixedBuffers::GetTraceName() const {
    return traceName;
}

void RotatingFixedBuffers::SetTraceName(String name) {
    traceName = std::move(name);
}

void RotatingFixedBuffers::ReleaseBuffers() {
    for (unsigned char* block : std::span(buffers, static_cast<std::size_t>(bufferCount)))
        FreeBlock(block);
    delete[] buffers;
    delete[] partialSizes;
    buffers = nullptr;
    partialSizes = nullptr;
    bufferCount = 0;
    fixedBufferSize = 0;
    ClearFlags();
}

namespace {

using Ring = RotatingFixedBuffers;

// The data path is inline in the header. Callers that look operations up in the library, such as other
// languages, find them there because this table holds their addresses.
[[gnu::used]] std::tuple const dataPath(&Ring::InternalBuffers, &Ring::FixedBufferSize, &Ring::BufferCount,
                                        &Ring::SetEndWriteNotifyRequired, &Ring::TestRead,
                                        &Ring::TestSharedRead, &Ring::BeginRead, &Ring::BeginPartialRead,
                                        &Ring::ForPeekRead, &Ring::ForPartialPeekRead, &Ring::ReadSwap,
                                        &Ring::PartialReadSwap, &Ring::EndRead, &Ring::ForceEndRead,
                                        &Ring::TestWrite, &Ring::BeginWrite, &Ring::ForOverWrite,
                                        &Ring::WriteReplace, &Ring::PartialWriteReplace, &Ring::WriteSwap,
                                        &Ring::PartialWriteSwap, &Ring::EndWrite, &Ring::PartialEndWrite);

} // namespace

} // namespace QMT
