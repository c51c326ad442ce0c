// The error numbers of a registry that the library keeps itself. Exported for tests; not public.
//
// Windows: those that its own registry gives. POSIX: the closest ones of the system's.
#pragma once

#include "platform/system_errors.h"
#include "qmt/export.h"

namespace QMT::platform {

QMT_UTILU_API extern SystemError const nothingThere;  // no such key or value
QMT_UTILU_API extern SystemError const keyIsGone;     // the key behind a handle has been deleted
QMT_UTILU_API extern SystemError const accessRefused; // by the user's rights, or by those of the handle
QMT_UTILU_API extern SystemError const noOpenKey;     // null, or a handle that is closed
QMT_UTILU_API extern SystemError const hasSubKeys;    // and so it is not deleted; Windows: as accessRefused
QMT_UTILU_API extern SystemError const badArgument;
QMT_UTILU_API extern SystemError const tooMuchData;  // for one query
QMT_UTILU_API extern SystemError const noNameInText; // a name that no text file can hold

} // namespace QMT::platform
