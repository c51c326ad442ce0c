// Copying all settings of one store into another.
#pragma once

#include "qmt/config/settings_store.h"
#include "qmt/export.h"
#include "qmt/general/errors.h"

namespace QMT {

// Writes every entry of every section that the source lists into the target, over what stands there; what the
// source does not have stays. Both have passed CheckExists.
//
// Gives null for success. An entry that the target cannot hold, or does not give back as it was, such as a
// text with a line break in a file, or the first of two names that are the same there, does not keep the
// others from being copied; the error, which the caller owns, names the first of them.
QMT_UTILU_API ErrorInfo* CopySettings(SettingsStore& source, SettingsStore& target);

} // namespace QMT
