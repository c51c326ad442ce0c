// What the settings stores have in common.
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

// The operations on settings by section and entry, over what does the work. AppConfig and FileTreeConfig make
// it, and tell where the settings are.
//
// Used by one thread at a time.
//
// Guaranteed: a setting that is asked for and missing is stored with its default, so that the store fills
// itself with all that the application can be told. Reads never report a failure: an empty text means that
// nothing is there. Results are null for success and otherwise an error that the caller owns and that names
// the place. What is written is there for the next read of any process. Every call enters the system.
class QMT_UTILU_API SettingsStore : public ConfigBase {
public:
    SettingsStore(SettingsStore const&) = delete;
    SettingsStore& operator=(SettingsStore const&) = delete;
    ~SettingsStore() override;

    // The text of the entry. When that is missing or empty: the default, which is stored; a failure to store
    // it is not noticed.
    String GetString(String section, String entry, String defaultText) override;

    // The text of the entry, empty when it is missing. Creates and writes nothing.
    String GetReadOnlyString(String section, String entry);

    // Null when the store is ready for use.
    ErrorInfo* CheckExists(bool readOnly);

    // Stores a text, creating section and entry when they are missing.
    ErrorInfo* WriteProfileStr(String section, String entry, String value);

    // Add to names those of the sections, or of the entries of a section, in their order. A missing section
    // has no entries.
    ErrorInfo* EnumSections(VArray<String, String>& names);
    ErrorInfo* EnumEntries(String section, VArray<String, String>& names);

    // Delete an entry, or a section with all its entries. What is missing is a failure.
    ErrorInfo* DeleteEntry(String section, String entry);
    ErrorInfo* DeleteSection(String section);

protected:
    explicit SettingsStore(std::unique_ptr<AppConfigImpInterface> implementation);

    // The text of the entry, empty when it is missing. Creates a missing section.
    String GetStringNoDefault(String section, String entry);

private:
    std::unique_ptr<AppConfigImpInterface> imp;
};

} // namespace QMT
