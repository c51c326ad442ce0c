// A current table of native strings, for as long as an object lives.
#pragma once

#include "qmt/html/native_strings.h"
#include "support/memory_medium.h"

namespace QMT {

class NativeTable {
public:
    // Takes the lines of a table file.
    explicit NativeTable(std::string const& lines) { MakeCurrent(lines); }

    NativeTable(NativeTable&&) = delete;

    ~NativeTable() { MakeCurrent(""); }

private:
    static void MakeCurrent(std::string const& lines) {
        static Map<String, String> table;
        table.RemoveAll();
        MemoryMedium medium;
        medium.files[u"table"] = lines;
        ReadNativeStrings(u"table", table, &medium);
    }
};

} // namespace QMT
