#include "qmt/config/app_config.h"

#include <utility>

#include "config/app_config_imp.h"

namespace QMT {

AppConfigImpInterface::~AppConfigImpInterface() = default;

AppConfig::AppConfig(String first, String second, String third, bool machineWide)
    : imp(std::make_unique<AppConfigImp>(std::move(first), std::move(second), std::move(third),
                                         machineWide)) {}

AppConfig::~AppConfig() = default;

String AppConfig::GetString(String section, String entry, String defaultText) {
    String text = imp->GetStringNoDefault(section, entry);
    if (text.IsEmpty()) {
        text = std::move(defaultText);
        std::unique_ptr<ErrorInfo> const nobodyToTell(
            WriteProfileStr(std::move(section), std::move(entry), text));
    }
    return text;
}

String AppConfig::GetReadOnlyString(String section, String entry) {
    return imp->GetReadOnlyString(std::move(section), std::move(entry));
}

ErrorInfo* AppConfig::CheckExists(bool readOnly) {
    return imp->CheckExists(readOnly);
}

ErrorInfo* AppConfig::WriteProfileStr(String section, String entry, String value) {
    return imp->WriteProfileStr(std::move(section), std::move(entry), std::move(value));
}

ErrorInfo* AppConfig::EnumSections(VArray<String, String>& names) {
    return imp->EnumSections(names);
}

ErrorInfo* AppConfig::EnumEntries(String section, VArray<String, String>& names) {
    return imp->EnumEntries(std::move(section), names);
}

ErrorInfo* AppConfig::DeleteEntry(String section, String entry) {
    return imp->DeleteEntry(std::move(section), std::move(entry));
}

ErrorInfo* AppConfig::DeleteSection(String section) {
    return imp->DeleteSection(std::move(section));
}

} // namespace QMT
