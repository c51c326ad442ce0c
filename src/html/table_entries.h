// Entries on their way from a file into a table of native strings.
#pragma once

#include <utility>
#include <vector>

#include "qmt/general/containers.h"
#include "qmt/general/string.h"

namespace QMT {

// Gathers entries and puts them into a table at once: in ascending order of their keys, since an insertion
// between others takes time in proportion to the table.
class TableEntries {
public:
    void Add(String key, String value) { entries.emplace_back(std::move(key), std::move(value)); }

    // Inserts the entries whose key the table does not hold yet, the first that was added of equal keys.
    void AddTo(Map<String, String>& table);

private:
    std::vector<std::pair<String, String>> entries;
};

} // namespace QMT
