// Settings in the registry: the work behind AppConfig.
#pragma once

#include <cstdint>

#include "config/registry_access.h"
#include "qmt/config/settings_store.h"

namespace QMT {

class AppConfigImp : public AppConfigImpInterface {
public:
    AppConfigImp(String first, String second, String third, bool machineWide);
    ~AppConfigImp() override;

    ErrorInfo* CheckExists(bool readOnly) override;
    ErrorInfo* WriteProfileStr(String section, String entry, String value) override;
    String GetStringNoDefault(String section, String entry) override;
    String GetReadOnlyString(String section, String entry) override;
    ErrorInfo* EnumSections(VArray<String, String>& names) override;
    ErrorInfo* EnumEntries(String section, VArray<String, String>& names) override;
    ErrorInfo* DeleteEntry(String section, String entry) override;
    ErrorInfo* DeleteSection(String section) override;

private:
    void MakeApplicationKey(String const& first, String const& second) const;
    void* CurrentKey() const;
    String PlaceOf(String const& section) const;

    void* rootKey;
    String rootName;
    NonSortableVArray<TreeKey> keys;
};

} // namespace QMT
