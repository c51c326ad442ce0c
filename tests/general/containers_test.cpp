#include "qmt/general/containers.h"

#include <latch>
#include <stdexcept>

#include "support/text.h"

namespace QMT {

namespace {

// A number whose copying fails on demand.
struct Fragile {
    Fragile(int number) : value(number) {}

    Fragile(Fragile const& other) : value(other.value) {
        if (copiesUntilFailure-- == 0)
            throw std::runtime_error("copying fails");
    }

    Fragile& operator=(Fragile const& other) = default;

    operator int() const { return value; }

    static inline int copiesUntilFailure = -1;
    int value;
};

// Two handles, copied over each other and changed at random, against plain vectors.
template <typename Array>
void CompareWithVectors(std::mt19937& random) {
    std::vector<Array> handles(2);
    std::vector<std::vector<int>> models(2);
    for (int step = 0; step < 4000; ++step) {
        std::size_t const which = random() % 2;
        Array& array = handles[which];
        std::vector<int>& model = models[which];
        std::size_t const index = random() % (model.size() + 1);
        auto const place = model.begin() + static_cast<std::ptrdiff_t>(index);
        auto const action = random() % 100;
        if (action < 50 || index == model.size()) {
            array.Insert(index, step), model.insert(place, step);
        } else if (action < 60) {
            array.Insert(index, std::as_const(array)[model.size() - 1]), model.insert(place, model.back());
        } else if (action < 70) {
            array[index] = model[index] = step;
        } else if (action < 90) {
            array.Remove(index), model.erase(place);
        } else if (action < 99) {
            array.SetCapacityIncrease(random() % 20);
            handles[1] = handles[0], models[1] = models[0];
        } else {
            array.RemoveAll(), model.clear();
        }
        for (std::size_t handle = 0; handle < 2; ++handle) {
            ASSERT_EQ(handles[handle].Size(), models[handle].size()) << "step " << step;
            for (std::size_t i = 0; i < models[handle].size(); ++i)
                ASSERT_EQ(std::as_const(handles[handle])[i], models[handle][i]) << "step " << step;
        }
    }
}

TEST(Containers, HoldWhatPlainVectorsHoldAndLeaveCopiesAlone) {
    std::mt19937 random = SeededGenerator();
    CompareWithVectors<VArray<int, int>>(random);
    CompareWithVectors<SVArray<int, int>>(random);
    CompareWithVectors<NonSortableVArray<Fragile>>(random);
}

TEST(Containers, LeaveBothHandlesAsTheyWereWhenCopyingFails) {
    Map<Fragile, Fragile> map;
    for (int i = 0; i < 3; ++i)
        map.Insert(i, i);
    auto const copy = map;
    for (int copies = 0; copies < 2 * 4; ++copies) {
        Fragile::copiesUntilFailure = copies;
        EXPECT_THROW(map.Insert(7, 7), std::runtime_error);
        EXPECT_TRUE(map.Size() == 3 && copy.Size() == 3 && &copy.Key(2) == &map.Key(2)) << copies;
    }
}

// Every thread writes through a handle of its own to blocks that all of them began with.
TEST(Containers, DetachAlsoInsideOfEachOtherOnSeveralThreadsAtOnce) {
    int underSection = 0;
    for (int round = 0; round < 500; ++round) {
        NonSortableVArray<NonSortableVArray<String>> handle;
        handle.Add({});
        handle[0].Add(u"first");
        std::vector others(2, handle);
        std::latch start(3);
        auto const write = [&](auto& own, char16_t const* text) {
            start.arrive_and_wait();
            own.Add(std::as_const(own)[0]);
            own[0].Insert(0, std::as_const(own)[0][0]);
            own[0][0] << text;
            BlockOnCritSection(), BlockOnCritSection();
            own[1][0] = text;
            UnblockOnCritSection();
            ++underSection;
            UnblockOnCritSection();
            EXPECT_EQ(own[0][0] + own[0][1] + own[1][0], String(u"first") + text + u"first" + text);
        };
        std::jthread const one([&] { write(others[0], u"a"); }), two([&] { write(others[1], u"b"); });
        write(handle, u"c");
    }
    EXPECT_EQ(underSection, 500 * 3);
}

TEST(VArray, SortsBehindEqualsAndFindsTheFirst) {
    VArray<String, String> names;
    for (auto const& [name, place] : {std::pair{u"m", 0u}, {u"zz", 1u}, {u"a", 0u}, {u"m", 2u}, {u"", 0u}})
        EXPECT_EQ(names.AddWithSort(name), place);
    EXPECT_TRUE(names.Find(u"m") == 2 && names.Find(u"") == 0 && names.Find(u"z") == -1);
}

// A pair goes behind all keys that are not greater, but before the last pair when its key is equal.
TEST(Map, KeepsPairsInOrderAndFindsThemByBisection) {
    std::mt19937 random = SeededGenerator();
    Map<int, int> map;
    std::vector<std::pair<int, int>> model;
    for (int step = 0; step < 500; ++step) {
        int const key = static_cast<int>(random() % 300);
        auto place = std::ranges::find_if(model, [key](auto const& pair) { return pair.first > key; });
        if (place == model.end() && !model.empty() && model.back().first == key)
            --place;
        model.emplace(place, key, step);
        map.Insert(key, step);
        for (std::size_t i = 0; i < model.size(); ++i)
            ASSERT_EQ(std::pair(map.Key(i), map.Value(i)), model[i]) << step;
    }
    for (int key = -1; key <= 300; ++key) {
        int const found = map.Find(key);
        EXPECT_EQ(found < 0, std::ranges::count(model, key, &std::pair<int, int>::first) == 0) << key;
        EXPECT_TRUE(found < 0 || map.Key(static_cast<std::size_t>(found)) == key) << key;
    }
    map.RemoveAll();
    for (int count = 0; count < 9; ++count, map.Insert(1, 1))
        EXPECT_EQ(map.Find(1), count == 0 ? -1 : (count - 1) / 2);
}

} // namespace

} // namespace QMT
