// Growable arrays and sorted maps.
//
// `VArray` is a plain value. `SVArray`, `NonSortableVArray` and `Map` are handles to a shared block: a copy
// of a handle costs one counted reference, and the first write through a handle that shares its block gives
// it a block of its own.
#pragma once

#include <algorithm>
#include <atomic>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "qmt/export.h"
#include "qmt/general/string.h"

namespace QMT {

// One process-wide section for callers who must keep several shared blocks unchanged over more than one
// operation among themselves. The thread that holds it may enter it again. The containers themselves need it
// no more: their counts are atomic. It is innermost: nobody takes another lock while holding it.
QMT_GENU_API void BlockOnCritSection() noexcept;
QMT_GENU_API void UnblockOnCritSection() noexcept;

namespace detail {

// By how much a full array grows: by its set step, or by half of what it holds if that is more, since a fixed
// step makes a long run of additions quadratic.
// A step beyond all bounds asks for all there is, so that the allocation fails.
constexpr std::uint64_t GrownCapacity(std::uint64_t capacity, std::uint64_t increase) {
    std::uint64_t const step = (std::max)({std::uint64_t{1}, increase, capacity / 2});
    return capacity + (std::min)(step, ~capacity);
}

// Elements that are copied and forgotten as they are.
template <typename Pointer>
struct PlainElements {
    using Element = Pointer;

    static Element Copy(Element element) { return element; }

    static void Free(Element) noexcept {}
};

// Elements on the heap that belong to the block.
template <typename T>
struct OwnedElements {
    using Element = T*;

    static Element Copy(Element element) { return new T(*element); }

    static void Free(Element element) noexcept { delete element; }
};

// The storage that the three handle templates share: a handle to a counted block.
//
// Two handles on one block may be used on two threads; one handle is for one thread at a time. A read takes
// no lock and allocates nothing; a write allocates when the block is shared or full.
template <typename Elements>
class SharedBlock {
public:
    using Element = typename Elements::Element;

    SharedBlock() : block(new Block) {}

    SharedBlock(SharedBlock const& other) noexcept : block(other.block) {
        block->references.fetch_add(1, std::memory_order_relaxed);
    }

    SharedBlock& operator=(SharedBlock const& other) noexcept {
        SharedBlock copy(other);
        std::swap(block, copy.block);
        return *this;
    }

    ~SharedBlock() { Release(block); }

    std::size_t Size() const noexcept { return static_cast<std::size_t>(block->count); }

    Element const& At(std::size_t index) const noexcept {
        assert(index < Size());
        return block->storage[index];
    }

    Element& AtForWrite(std::size_t index) {
        assert(index < Size());
        Detach();
        return block->storage[index];
    }

    void SetIncrease(std::size_t increase) {
        Detach();
        block->increase = increase;
    }

    // Takes over `element` once it is in; after an exception it still belongs to the caller.
    void Insert(std::size_t index, Element element) {
        assert(index <= Size());
        Detach();
        if (block->count == block->capacity)
            Grow();
        Element* const storage = block->storage.get();
        std::move_backward(storage + index, storage + Size(), storage + Size() + 1);
        storage[index] = element;
        ++block->count;
    }

    void Remove(std::size_t index) {
        assert(index < Size());
        Detach();
        Element* const storage = block->storage.get();
        Elements::Free(storage[index]);
        std::move(storage + index + 1, storage + Size(), storage + index);
        --block->count;
    }

    void RemoveAll() {
        if (IsShared()) {
            ReplaceBy(new Block(block->increase));
            return;
        }
        block->FreeElements();
        block->storage.reset();
        block->count = 0;
        block->capacity = 0;
    }

private:
    static constexpr std::uint64_t defaultIncrease = 80;

    struct Block {
        Block() = default;

        explicit Block(std::uint64_t sourceIncrease)
            : increase((std::max)(defaultIncrease, sourceIncrease)) {}

        ~Block() { FreeElements(); }

        void FreeElements() noexcept {
            for (std::uint64_t i = 0; i < count; ++i)
                Elements::Free(storage[i]);
        }

        std::uint64_t count = 0;
        std::uint64_t capacity = 0;
        std::uint64_t increase = defaultIncrease;
        std::atomic<std::int32_t> references{1};
        std::unique_ptr<Element[]> storage;
    };

    static void Release(Block* block) noexcept {
        if (block->references.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete block;
    }

    // A block that nobody else holds stays so: only this handle could give another reference.
    bool IsShared() const noexcept { return block->references.load(std::memory_order_acquire) != 1; }

    void ReplaceBy(Block* newBlock) noexcept {
        Release(block);
        block = newBlock;
    }

    void Detach() {
        if (!IsShared())
            return;
        auto copy = std::make_unique<Block>(block->increase);
        copy->storage = std::make_unique<Element[]>(Size());
        copy->capacity = block->count;
        for (; copy->count < block->count; ++copy->count)
            copy->storage[copy->count] = Elements::Copy(block->storage[copy->count]);
        ReplaceBy(copy.release());
    }

    void Grow() {
        std::uint64_t const capacity = GrownCapacity(block->capacity, block->increase);
        auto storage = std::make_unique<Element[]>(static_cast<std::size_t>(capacity));
        std::move(block->storage.get(), block->storage.get() + Size(), storage.get());
        block->storage = std::move(storage);
        block->capacity = capacity;
    }

    Block* block;
};

} // namespace detail

// A growable array of values in order of addition or, through `AddWithSort`, in ascending order. For one
// thread at a time. An index must be below `Size()`, for `Insert` at most `Size()`.
//
//     VArray<String, String> names;
//     if (names.Find(name) == -1)
//         names.AddWithSort(name);
template <typename T, typename Argument>
class VArray {
public:
    // The growth step: a full array grows by it, or by half of what it holds if that is more.
    void SetCapacityIncrease(std::size_t increase) { capacityIncrease = increase; }

    std::size_t Size() const { return elements.size(); }

    T& operator[](std::size_t index) {
        assert(index < Size());
        return elements[index];
    }

    T const& operator[](std::size_t index) const {
        assert(index < Size());
        return elements[index];
    }

    void Add(Argument const& element) { Insert(Size(), element); }

    // Puts `element` behind all elements that are not greater and gives its index. The array must be sorted.
    std::size_t AddWithSort(Argument const& element) {
        auto const place = std::upper_bound(elements.begin(), elements.end(), element);
        auto const index = static_cast<std::size_t>(place - elements.begin());
        Insert(index, element);
        return index;
    }

    // The index of the first equal element, -1 when there is none.
    int Find(Argument const& element) const {
        auto const place = std::find(elements.begin(), elements.end(), element);
        return place == elements.end() ? -1 : static_cast<int>(place - elements.begin());
    }

    // Puts `element` in at `index`; the later elements move up by one.
    void Insert(std::size_t index, Argument const& element) {
        assert(index <= Size());
        T copy(element);
        if (elements.size() == elements.capacity())
            elements.reserve(detail::GrownCapacity(elements.capacity(), capacityIncrease));
        elements.insert(elements.begin() + static_cast<std::ptrdiff_t>(index), std::move(copy));
    }

    // The later elements move down by one.
    void Remove(std::size_t index) {
        assert(index < Size());
        elements.erase(elements.begin() + static_cast<std::ptrdiff_t>(index));
    }

    // Frees the storage too.
    void RemoveAll() { std::vector<T>().swap(elements); }

private:
    std::vector<T> elements;
    std::size_t capacityIncrease = 80;
};

// An array of plain pointers, which it does not own; a handle to a shared block, see `detail::SharedBlock`
// for what that means between threads. An index must be below `Size()`, for `Insert` at most `Size()`.
//
//     SVArray<Event*, Event*> events;
//     events.Add(&stopEvent);
//     events.Add(&semaphore);
//     if (WaitOnEvents(events, -1) == 0) return;
template <typename T, typename Argument>
class SVArray {
public:
    void SetCapacityIncrease(std::size_t increase) { block.SetIncrease(increase); }

    std::size_t Size() const { return block.Size(); }

    T& operator[](std::size_t index) { return block.AtForWrite(index); }

    T operator[](std::size_t index) const { return block.At(index); }

    void Add(Argument element) { block.Insert(Size(), element); }

    void Insert(std::size_t index, Argument element) { block.Insert(index, element); }

    // The index of the first equal pointer, -1 when there is none.
    int Find(Argument element) const {
        for (std::size_t i = 0; i < Size(); ++i)
            if (block.At(i) == element)
                return static_cast<int>(i);
        return -1;
    }

    void Remove(std::size_t index) { block.Remove(index); }

    void RemoveAll() { block.RemoveAll(); }

private:
    detail::SharedBlock<detail::PlainElements<T>> block;
};

// An array of values, each on the heap, without sorted insertion; a handle to a shared block, see
// `detail::SharedBlock`. A reference to an element is good until the element is removed or the handle is
// written to while it shares its block. An index must be below `Size()`, for `Insert` at most `Size()`.
template <typename T>
class NonSortableVArray {
public:
    void SetCapacityIncrease(std::size_t increase) { block.SetIncrease(increase); }

    std::size_t Size() const { return block.Size(); }

    T& operator[](std::size_t index) { return *block.AtForWrite(index); }

    T const& operator[](std::size_t index) const { return *block.At(index); }

    void Add(T const& element) { Insert(Size(), element); }

    void Insert(std::size_t index, T const& element) {
        auto copy = std::make_unique<T>(element);
        block.Insert(index, copy.get());
        static_cast<void>(copy.release()); // the block's now
    }

    void Remove(std::size_t index) { block.Remove(index); }

    void RemoveAll() { block.RemoveAll(); }

private:
    detail::SharedBlock<detail::OwnedElements<T>> block;
};

// Pairs of key and value in ascending order of the key; a handle to a shared block, see
// `detail::SharedBlock`. Equal keys are not refused: callers that must not hold duplicates search first.
//
//     Map<String, String> table;
//     if (table.Find(key) == -1)
//         table.Insert(key, value);
template <typename KeyType, typename ValueType>
class Map {
public:
    void SetCapacityIncrease(std::size_t increase) { block.SetIncrease(increase); }

    std::size_t Size() const { return block.Size(); }

    KeyType const& Key(std::size_t index) const { return block.At(index)->first; }

    ValueType const& Value(std::size_t index) const { return block.At(index)->second; }

    ValueType& Value(std::size_t index) { return block.AtForWrite(index)->second; }

    // The index of a pair with this key, -1 when there is none. Among equal keys, whichever bisection meets.
    int Find(KeyType const& key) const {
        int low = 0;
        int high = static_cast<int>(Size()) - 1;
        while (low <= high) {
            int const middle = (low + high) / 2;
            KeyType const& middleKey = Key(static_cast<std::size_t>(middle));
            if (key == middleKey)
                return middle;
            if (key < middleKey)
                high = middle - 1;
            else
                low = middle + 1;
        }
        return -1;
    }

    void Insert(KeyType const& key, ValueType const& value) {
        auto pair = std::make_unique<Pair>(key, value);
        block.Insert(PlaceOf(key), pair.get());
        static_cast<void>(pair.release()); // the block's now
    }

    void Remove(std::size_t index) { block.Remove(index); }

    void RemoveAll() { block.RemoveAll(); }

private:
    using Pair = std::pair<KeyType, ValueType>;

    // Where a new pair goes; it decides the order of equal keys, which is kept as it is.
    std::size_t PlaceOf(KeyType const& key) const {
        std::size_t const count = Size();
        if (count == 0 || key < Key(0))
            return 0;
        if (Key(count - 1) < key)
            return count;
        std::size_t low = 0;
        std::size_t high = count - 1;
        while (high - low >= 2) {
            std::size_t const middle = (low + high) / 2;
            if (key < Key(middle))
                high = middle;
            else
                low = middle;
        }
        return high;
    }

    detail::SharedBlock<detail::OwnedElements<Pair>> block;
};

} // namespace QMT
