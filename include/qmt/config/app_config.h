// An application's settings in the registry.
#pragma once

#include <memory>

#include "qmt/config/config_base.h"
#include "qmt/export.h"
#include "qmt/general/containers.h"
#include "qmt/general/errors.h"
#include "qmt/general/string.h"

namespace QMT {

// What does the work behind a settings store. The two stores tell what its operations do.
class QMT_UTILU_API AppConfigImpInterface {
public:
    virtual ~AppConfigImpInterface();

    virtual ErrorInfo* CheckExists(bool readOnly) = 0;
    virtual ErrorInfo* WriteProfileStr(String section, String entry, String value) = 0;
    virtual String GetStringNoDefault(String section, String entry) = 0;
    virtual String GetReadOnlyString(String section, String entry) = 0;

    virtual ErrorInfo* EnumSections(VArray<String, String>& names) = 0;
    virtual ErrorInfo* EnumEntries(String section, VArray<String, String>& names) = 0;
    virtual ErrorInfo* DeleteEntry(String section, String entry) = 0;
    virtual ErrorInfo* DeleteSection(String section) = 0;
};

// Settings by section and entry below one key of the registry: a section is a sub key of it, an entry a text
// value there. docs/settings.md compares it with FileTreeConfig.
//
// The caller constructs it, calls CheckExists, and reads and writes from one thread at a time.
//
// Guaranteed: a setting that is asked for and missing is stored with its default, so that the store fills
// itself with all that the application can be told. Reads never report a failure: an empty text means that
// nothing is there. Results are null for success and otherwise an error that the caller owns and that names
// the key. What is written is there for the next read of any process. Every call enters the system. Until
// CheckExists has succeeded reads give defaults and writes fail.
//
//     AppConfig settings(u"Maker\\Program", u"Audio", u"", false);
//     if (ErrorInfo* error = settings.CheckExists(false)) {
//         return error;
//     }
//     String const device = settings.GetString(u"Input", u"Device", u"default");
class QMT_UTILU_API AppConfig : public ConfigBase {
public:
    // The key is "Software", first, second, each of which may hold several names with backslashes between
    // them; it is created when it is missing, and a failure shows in CheckExists. true puts it below
    // HKEY_LOCAL_MACHINE, false below HKEY_CURRENT_USER. The third text has no effect.
    AppConfig(String first, String second, String third, bool machineWide);
    AppConfig(AppConfig const&) = delete;
    AppConfig& operator=(AppConfig const&) = delete;
    ~AppConfig() override;

    // The text of the entry. When that is missing or empty: the default, which is stored; a failure to store
    // it is not noticed.
    String GetString(String section, String entry, String defaultText) override;

    // The text of the entry, empty when it is missing. Creates and writes nothing.
    String GetReadOnlyString(String section, String entry);

    // Opens the keys that lead to the settings. true: for reading, GetReadOnlyString is enough for a user
    // without more rights. Their access holds until the destructor. After a failure the keys that are open
    // stay open, and the call may be repeated.
    ErrorInfo* CheckExists(bool readOnly);

    // Stores a text, creating section and entry when they are missing. After a failure the entry is as
    // before.
    ErrorInfo* WriteProfileStr(String section, String entry, String value);

    // Add to names those of the sections directly below the key, or of the entries of a section, in their
    // order without regard to case. A missing section has no entries.
    ErrorInfo* EnumSections(VArray<String, String>& names);
    ErrorInfo* EnumEntries(String section, VArray<String, String>& names);

    // Delete an entry, or a section with all its entries. What is missing is a failure.
    ErrorInfo* DeleteEntry(String section, String entry);
    ErrorInfo* DeleteSection(String section);

private:
    std::unique_ptr<AppConfigImpInterface> imp;
};

} // namespace QMT
