// An application's settings in the registry.
#pragma once

#include "qmt/config/settings_store.h"
#include "qmt/export.h"
#include "qmt/general/string.h"

namespace QMT {

// Settings by section and entry below one key of the registry: a section is a sub key of it, an entry a text
// value there. docs/settings.md compares it with FileTreeConfig.
//
// The caller constructs it, calls CheckExists, and reads and writes.
//
// Guaranteed, besides what SettingsStore tells: until CheckExists has succeeded reads give defaults and
// writes fail. It opens the keys that lead to the settings, and their access holds until the destructor: with
// true for reading, when GetReadOnlyString is enough for a user without more rights. After a failure the keys
// that are open stay open, and the call may be repeated. A write that fails leaves the entry as before. Names
// are listed in their order without regard to case.
//
//     AppConfig settings(u"Maker\\Program", u"Audio", u"", false);
//     if (ErrorInfo* error = settings.CheckExists(false)) {
//         return error;
//     }
//     String const device = settings.GetString(u"Input", u"Device", u"default");
class QMT_UTILU_API AppConfig : public SettingsStore {
public:
    // The key is "Software", first, second, each of which may hold several names with backslashes between
    // them; it is created when it is missing, and a failure shows in CheckExists. true puts it below
    // HKEY_LOCAL_MACHINE, false below HKEY_CURRENT_USER. The third text has no effect.
    AppConfig(String first, String second, String third, bool machineWide);
    ~AppConfig() override;
};

} // namespace QMT
