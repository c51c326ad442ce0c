// Settings in files: the work behind FileTreeConfig.
#pragma once

#include "qmt/config/settings_store.h"
#include "qmt/general/files.h"

namespace QMT {

class FileTreeConfigImp : public AppConfigImpInterface {
public:
    explicit FileTreeConfigImp(String path);

    ErrorInfo* CheckExists(bool readOnly) override;
    ErrorInfo* WriteProfileStr(String section, String entry, String value) override;
    String GetStringNoDefault(String section, String entry) override;
    String GetReadOnlyString(String section, String entry) override;
    ErrorInfo* EnumSections(VArray<String, String>& names) override;
    ErrorInfo* EnumEntries(String section, VArray<String, String>& names) override;
    ErrorInfo* DeleteEntry(String section, String entry) override;
    ErrorInfo* DeleteSection(String section) override;

private:
    // Makes the section when it is missing.
    ErrorInfo* OpenForWriting(FormatableTextFile& file, String const& section) const;

    String SectionPath(String const& section) const;
    String EntryPath(String const& section, String const& entry) const;

    String configDirectory; // without a separator at its end
};

} // namespace QMT
