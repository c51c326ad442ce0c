// Tables of native strings: what the user sees in place of a text of a page or of the library's messages.
// docs/native_string_tables.md describes the files.
#pragma once

#include "qmt/export.h"
#include "qmt/general/containers.h"
#include "qmt/general/errors.h"
#include "qmt/general/files.h"
#include "qmt/general/string.h"

namespace QMT {

// The library has one current table, the one that was read last; there is none at the start. The caller owns
// it and keeps it alive as long as NATIVE may be called. There is no lock: tables are read while no other
// thread calls NATIVE; from then on any thread may call it.
//
//     static Map<String, String> table;
//     ReadNativeStrings(path, table);
//     Show(NATIVE(u"No postcode supplied."));

// Adds the lines of a text file to the table and makes it the current one. A line holds a key and a value
// with a tab between them, or a key that is its own value. A key that the table holds already keeps its
// value, also one of an earlier line, so that several files can be read into one table.
//
// A file that cannot be opened goes to the error log; the table and the current table stay. A failure later
// on is logged as well, and the lines in front of it stay in the table.
QMT_UTILU_API void ReadNativeStrings(String path, Map<String, String>& table);

// The same with a file of the medium, null for the disc.
QMT_UTILU_API void ReadNativeStrings(String path, Map<String, String>& table, FileMedium* medium);

// Adds the translated entries of a gettext .po file to the table and makes it the current one; entries that
// are fuzzy, obsolete or not translated are left out. The first of equal keys counts, as above. Unlike a line
// of a text file an entry can hold line breaks, as the text of a paragraph over several lines does. The
// medium is null for the disc.
//
// Gives an error, which the caller owns, when the file cannot be read, breaks the format or declares another
// charset than UTF-8; the table and the current table then stay as they were.
QMT_UTILU_API ErrorInfo* ReadPoNativeStrings(String path, Map<String, String>& table,
                                             FileMedium* medium = nullptr);

// The value of the text in the current table, the text itself when there is no table or no such key. Waits
// for nothing.
QMT_UTILU_API String NATIVE(String text);

} // namespace QMT
