// Settings in a tree of small text files.
#pragma once

#include "qmt/config/settings_store.h"
#include "qmt/export.h"
#include "qmt/general/string.h"

namespace QMT {

// Settings by section and entry below a directory: a section is a directory, an entry a file of one line.
// docs/settings.md describes the files.
//
// The caller names a directory that exists, in which a directory "Configuration" is made, and reads and
// writes. CheckExists makes that directory when it is missing, whatever its argument says.
//
// Guaranteed, besides what SettingsStore tells: writing an entry touches no other. Nothing is kept in memory.
// Reads give the first line of a text. A read beside a write of an entry that exists finds the old or the new
// text, for sure up to 500 bytes and nearly always beyond; it never finds none, and may wait some
// milliseconds. A disc that is full may leave the entry written empty. A section that holds anything but
// entries is not deleted, and neither are its entries.
//
//     FileTreeConfig settings(directory);
//     if (ErrorInfo* error = settings.CheckExists(false)) {
//         return error;
//     }
//     String const device = settings.GetString(u"Input", u"Device", u"default");
class QMT_UTILU_API FileTreeConfig : public SettingsStore {
public:
    // One separator at the path's end is dropped. A failure to make the directory shows in CheckExists.
    explicit FileTreeConfig(String path);
    ~FileTreeConfig() override;

    using SettingsStore::GetStringNoDefault;
};

} // namespace QMT
