// Reads gettext's .po files.
#pragma once

#include "html/table_entries.h"
#include "qmt/general/errors.h"
#include "qmt/general/files.h"
#include "qmt/general/string.h"

namespace QMT {

// Adds the translated entries of the file in their order. After a failure, whose error the caller owns and
// which quotes path and line, the entries hold what stood in front of it.
ErrorInfo* ReadPoFile(String path, FileMedium* medium, TableEntries& entries);

} // namespace QMT
