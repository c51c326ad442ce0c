// The ordinary disc as the storage behind files.
#pragma once

#include "qmt/general/files.h"

namespace QMT {

// The medium of files that are given none. Lives as long as the process; any thread may open files on it.
FileMedium& GetDiscMedium();

} // namespace QMT
