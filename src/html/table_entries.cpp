#include "html/table_entries.h"

#include <algorithm>

namespace QMT {

void TableEntries::AddTo(Map<String, String>& table) {
    std::stable_sort(entries.begin(), entries.end(),
                     [](auto const& left, auto const& right) { return left.first < right.first; });
    for (auto const& [key, value] : entries) {
        if (table.Find(key) == -1) {
            table.Insert(key, value);
        }
    }
}

} // namespace QMT
