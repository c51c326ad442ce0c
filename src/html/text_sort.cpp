#include "html/text_sort.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <tuple>

#include "html/page_text.h"

namespace QMT {

namespace {

constexpr std::size_t headLength = 4;

// A text with the few units that it is sorted by at the moment.
struct Item {
    String* text;
    std::uint64_t head = 0; // the units at some depth, the first in the highest bits, zeros behind the end
    std::size_t reach = 0;  // how many of them the text has, which tells a zero from the end

    void ReadHead(std::size_t depth) {
        TextView const units = text->View().substr(depth, headLength);
        reach = units.size();
        head = 0;
        for (std::size_t i = 0; i < headLength; ++i) {
            head = head << 16 | (i < reach ? units[i] : 0U);
        }
    }

    auto Key() const { return std::tie(head, reach); }
};

// How many units at the depth all texts have in common.
std::size_t CommonLength(std::span<Item const> items, std::size_t depth) {
    TextView common = items.front().text->View().substr(depth);
    for (Item const& item : items) {
        TextView const other = item.text->View().substr(depth, common.size());
        auto const end = std::mismatch(
            common.begin(), common.begin() + static_cast<std::ptrdiff_t>(other.size()), other.begin());
        common = common.substr(0, static_cast<std::size_t>(end.first - common.begin()));
    }
    return common.size();
}

// Sorts texts that agree in front of the depth.
void SortFrom(std::span<Item> items, std::size_t depth) {
    depth += CommonLength(items, depth);
    for (Item& item : items) {
        item.ReadHead(depth);
    }
    std::sort(items.begin(), items.end(),
              [](Item const& left, Item const& right) { return left.Key() < right.Key(); });
    while (!items.empty()) {
        auto const isOther = [&](Item const& item) { return item.Key() != items.front().Key(); };
        auto const end = std::find_if(items.begin(), items.end(), isOther);
        auto const equal = items.first(static_cast<std::size_t>(end - items.begin()));
        if (equal.size() > 1) {
            SortFrom(equal, depth + headLength);
        }
        items = items.subspan(equal.size());
    }
}

} // namespace

std::vector<String*> SortedPointers(std::deque<String>& texts) {
    std::vector<Item> items;
    items.reserve(texts.size());
    for (String& text : texts) {
        items.push_back({&text});
    }
    if (!items.empty()) {
        SortFrom(items, 0);
    }
    std::vector<String*> sorted;
    sorted.reserve(items.size());
    std::ranges::transform(items, std::back_inserter(sorted), &Item::text);
    return sorted;
}

} // namespace QMT
