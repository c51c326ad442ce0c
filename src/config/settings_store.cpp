#include "qmt/config/settings_store.h"

#include <utility>

namespace QMT {

AppConfigImpInterface::~AppConfigImpInterface() = default;

SettingsStore::SettingsStore(std::unique_ptr<AppConfigImpInterface> implementation)
    : imp(std::move(implementation)) {}

SettingsStore::~SettingsStore() = default;

String SettingsStore::GetString(String section, String entry, String defaultText) {
    String text = imp->GetStringNoDefault(section, entry);
    if (text.IsEmpty()) {
        text = std::move(defaultText);
        std::unique_ptr<ErrorInfo> const nobodyToTell(
            WriteProfileStr(std::move(section), std::move(entry), text));
    }
    return text;
}

String SettingsStore::GetStringNoDefault(String section, String entry) {
    return imp->GetStringNoDefault(std::move(section), std::move(entry));
}

String SettingsStore::GetReadOnlyString(String section, String entry) {
    return imp->GetReadOnlyString(std::move(section), std::move(entry));
}

ErrorInfo* SettingsStore::CheckExists(bool readOnly) {
    return imp->CheckExists(readOnly);
}

ErrorInfo* SettingsStore::WriteProfileStr(String section, String entry, String value) {
    return imp->WriteProfileStr(std::move(section), std::move(entry), std::move(value));
}

ErrorInfo* SettingsStore::EnumSections(VArray<String, String>& names) {
    return imp->EnumSections(names);
}

ErrorInfo* SettingsStore::EnumEntries(String section, VArray<String, String>& names) {
    return imp->EnumEntries(std::move(section), names);
}

ErrorInfo* SettingsStore::DeleteEntry(String section, String entry) {
    return imp->DeleteEntry(std::move(section), std::move(entry));
}

ErrorInfo* SettingsStore::DeleteSection(String section) {
    return imp->DeleteSection(std::move(section));
}

} // namespace QMT
