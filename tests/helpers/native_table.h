// A current table of native strings, for as long as an object lives.
#pragma once

#include "qmt/html/native_strings.h"
#include "support/memory_medium.h"

namespace QMT {

class NativeTable {
public:
    // Takes the lines of a table file.
    explicit NativeTable(std::string const& lines) { Read(lines, table); }

    ~NativeTable() {
        static Map<String, String> last;
        Read("", last);
    }

    NativeTable(NativeTable const&) = delete;
    NativeTable& operator=(NativeTable const&) = delete;

private:
    void Read(std::string const& lines, Map<String, String>& into) {
        medium.files[u"table"] = lines;
        ReadNativeStrings(u"table", into, &medium);
    }

    MemoryMedium medium;
    Map<String, String> table;
};

} // namespace QMT
