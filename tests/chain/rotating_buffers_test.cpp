#include "qmt/chain/rotating_buffers.h"

#include <new>

#include "support/chain_fixtures.h"
#include "support/failing_allocations.h"

namespace QMT {
namespace {

using Ring = RotatingFixedBuffers;

bool Write(Ring& ring, Number number) {
    unsigned char** const slot = ring.BeginWrite();
    if (slot == nullptr || !ring.TestWrite() || ring.BeginWrite() != slot)
        return false;
    FillBlock(*slot, number);
    ring.EndWrite();
    return true;
}

// `torn` when there is nothing to read.
Number Read(Ring& ring) {
    unsigned char** const slot = ring.BeginRead();
    if (slot == nullptr || !ring.TestRead() || ring.BeginRead() != slot)
        return torn;
    Number const number = NumberOf(*slot);
    ring.EndRead();
    return number;
}

// The byte count of the slot that is next to read.
std::size_t SizeNext(Ring& ring) {
    std::size_t size = torn;
    ring.BeginPartialRead(size);
    return size;
}

TEST(RotatingFixedBuffers, HoldsOneBufferLessThanItHasSlots) {
    for (int const slots : {0, 1, 2, 3, 4, 64}) {
        Ring ring(slots, blockSize);
        Number written = 0, read = 0;
        for (int lap = 0; lap <= 2 * slots; ++lap) { // it begins at every slot and wraps everywhere
            while (Write(ring, written))
                ++written;
            ASSERT_EQ(written - read, static_cast<Number>(std::max(0, slots - 1)));
            ASSERT_FALSE(ring.TestWrite());
            for (Number const end = lap % 2 == 0 ? written : std::min(written, read + 3); read < end; ++read)
                ASSERT_EQ(Read(ring), read);
        }
        EXPECT_FALSE(ring.TestRead());
    }
}

TEST(RotatingFixedBuffers, EndOfReadOnlyCountsWhileANotificationIsSet) {
    Ring ring(4, blockSize);
    CountingSemaphore ended(nullptr, 0);
    Number written = 0, read = 0;
    for (int lap = 0; lap < 8; ++lap) { // switched with buffers in flight, at every slot
        while (Write(ring, written))
            ++written;
        EXPECT_EQ(Read(ring), read++); // plain: frees the slot
        ring.SetEndReadNotifyRequired(&ended);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(Read(ring), read) << "the slot stays";
        for (int i = 0; i < 3; ++i, ended.Reset())
            EXPECT_TRUE(EventSignalled(ended));
        EXPECT_TRUE(Write(ring, written++));
        for (int forced = lap % 4; forced > 0; --forced) {
            ring.ForceEndRead();
            EXPECT_EQ(ring.TestRead(), ++read < written);
        }
        EXPECT_FALSE(EventSignalled(ended));
        ring.SetEndReadNotifyRequired(nullptr);
        for (; read < written; ++read)
            ASSERT_EQ(Read(ring), read);
        EXPECT_FALSE(ring.TestRead());
    }
}

TEST(RotatingFixedBuffers, SetUpAnewKeepsWhatIsNotItsContent) {
    static Ring ring(4, blockSize);

    struct LookingSemaphore : CountingSemaphore {
        using CountingSemaphore::CountingSemaphore;

        void Signal() override { sawBuffer = ring.TestRead(); }

        bool sawBuffer = false;
    } written(nullptr, 0);

    CountingSemaphore ended(nullptr, 0);
    ring.SetEndWriteNotifyRequired(&written);
    ring.SetEndReadNotifyRequired(&ended);
    for (int const count : {3, 5, 2}) {
        ring.SetProperties(count, 2 * blockSize);
        EXPECT_TRUE(ring.BufferCount() == count && ring.FixedBufferSize() == 2 * blockSize);
        written.sawBuffer = false;
        ring.PartialEndWrite(9);
        EXPECT_TRUE(written.sawBuffer) << "the buffer is there before the signal";
        ring.EndRead();
        EXPECT_TRUE(ring.TestRead()) << "the notification of the reader is still set";
        ring.ClearFlags();
        EXPECT_TRUE(!ring.TestRead() && SizeNext(ring) == 0 &&
                    ring.ForPeekRead() == ring.InternalBuffers()[0]);
    }
}

TEST(RotatingFixedBuffers, FailedSetUpLeavesItUnconfigured) {
    for (int failing = 0; failing < 100; ++failing) { // 0: the count is at fault
        Ring ring(3, blockSize);
        EXPECT_TRUE(Write(ring, 0));
        try {
            failingAllocation = failing;
            ring.SetProperties(failing == 0 ? -1 : 4, blockSize);
            failing = std::exchange(failingAllocation, 0) + 100;
        } catch (std::bad_alloc const&) {
            EXPECT_TRUE(ring.BufferCount() == 0 && ring.InternalBuffers() == nullptr);
            EXPECT_TRUE(SizeNext(ring) == 0 && !ring.TestRead() && !ring.TestWrite());
        }
    }
}

TEST(RotatingFixedBuffers, PassesWholeBlocksInOrderBetweenTwoThreads) {
    auto const count = static_cast<Number>(StressRounds(300'000));
    auto const salt = SeededGenerator()();
    auto const mixed = [&](Number number) { return (number ^ salt) * 2654435761U >> 8; };
    auto const wayOf = [&](Number number) { return mixed(number) % 6; };
    auto const sizeOf = [&](Number number) { return wayOf(number) % 2 * (1 + mixed(number) % blockSize); };
    for (int const slots : {2, 3, 64}) {
        Ring ring(slots, blockSize);
        std::jthread const writer([&] {
            unsigned char* spare = AllocateBlock(blockSize);
            for (Number i = 0; i < count; ++i) {
                WaitUntil([&] { return ring.TestWrite(); });
                auto const way = wayOf(i); // the odd ones are those with a size
                std::size_t size = sizeOf(i);
                if (way == 2 || way == 3)
                    ring.PartialWriteReplace(AllocateBlock(blockSize), 0);
                else if (way == 4)
                    ring.WriteSwap(&spare);
                else if (way == 5)
                    ring.PartialWriteSwap(&spare, &size);
                FillBlock(ring.ForOverWrite(), i);
                way == 1 || way == 3 ? ring.PartialEndWrite(size) : ring.EndWrite();
            }
            FreeBlock(spare);
        });
        int faults = 0;
        unsigned char* spare = AllocateBlock(blockSize);
        for (Number i = 0; i < count; ++i) {
            std::size_t size = torn;
            WaitUntil([&] { return ring.BeginPartialRead(size) != nullptr; });
            faults += size != sizeOf(i);
            auto const way = wayOf(i + 1);
            if (way == 0)
                ring.ReadSwap(&spare);
            else if (way == 1)
                ring.PartialReadSwap(&spare, &(size = 77));
            faults += NumberOf(way < 2 ? spare : ring.ForPeekRead()) != i || (way == 1 && size != sizeOf(i));
            ring.EndRead();
        }
        FreeBlock(spare);
        EXPECT_EQ(faults, 0) << slots << " slots";
    }
}

} // namespace
} // namespace QMT
