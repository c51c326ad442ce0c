#include "qmt/html/native_strings.h"

#include <cstddef>
#include <memory>
#include <utility>

#include "html/po_reader.h"
#include "html/table_entries.h"
#include "qmt/diagnostics/error_log.h"

namespace QMT {

namespace {

Map<String, String> const* nativeTable = nullptr;

// A third field and further ones leave the second without a meaning.
void AddLine(String const& line, TableEntries& entries) {
    ParsableText fields(line);
    fields.splitOnFields = true;
    int const count = fields.CountElements();
    String key;
    if (!fields.GetNextElem(&key, 0)) {
        return;
    }
    String value = key;
    if (count == 2) {
        fields.GetNextElem(&value, 0);
    }
    entries.Add(std::move(key), std::move(value));
}

} // namespace

void ReadNativeStrings(String path, Map<String, String>& table) {
    ReadNativeStrings(std::move(path), table, nullptr);
}

void ReadNativeStrings(String path, Map<String, String>& table, FileMedium* medium) {
    LineParsableFile file(std::move(path), medium);
    if (ErrorInfo* error = file.Open()) {
        LogAndResetError(error);
        return;
    }
    nativeTable = &table;
    TableEntries entries;
    ErrorInfo* error = nullptr;
    for (String line; file.NextLine(line, error, 0) != 0;) {
        AddLine(line, entries);
    }
    entries.AddTo(table);
    LogAndResetError(error);
}

ErrorInfo* ReadPoNativeStrings(String path, Map<String, String>& table, FileMedium* medium) {
    TableEntries entries;
    if (std::unique_ptr<ErrorInfo> error{ReadPoFile(std::move(path), medium, entries)}) {
        return error.release();
    }
    entries.AddTo(table);
    nativeTable = &table;
    return nullptr;
}

String NATIVE(String text) {
    int const index = nativeTable ? nativeTable->Find(text) : -1;
    return index == -1 ? text : nativeTable->Value(static_cast<std::size_t>(index));
}

} // namespace QMT
