#include "qmt/config/file_tree_config.h"

#include <utility>

#include "config/file_tree_config_imp.h"

namespace QMT {

FileTreeConfig::FileTreeConfig(String path) : imp(std::make_unique<FileTreeConfigImp>(std::move(path))) {}

FileTreeConfig::~FileTreeConfig() = default;

String FileTreeConfig::GetString(String section, String entry, String defaultText) {
    String text = imp->GetStringNoDefault(section, entry);
    if (text.IsEmpty()) {
        text = std::move(defaultText);
        std::unique_ptr<ErrorInfo> const nobodyToTell(
            imp->WriteProfileStr(std::move(section), std::move(entry), text));
    }
    return text;
}

String FileTreeConfig::GetStringNoDefault(String section, String entry) {
    return imp->GetStringNoDefault(std::move(section), std::move(entry));
}

String FileTreeConfig::GetReadOnlyString(String section, String entry) {
    return imp->GetReadOnlyString(std::move(section), std::move(entry));
}

ErrorInfo* FileTreeConfig::CheckExists(bool readOnly) {
    return imp->CheckExists(readOnly);
}

ErrorInfo* FileTreeConfig::WriteProfileStr(String section, String entry, String value) {
    return imp->WriteProfileStr(std::move(section), std::move(entry), std::move(value));
}

ErrorInfo* FileTreeConfig::EnumSections(VArray<String, String>& names) {
    return imp->EnumSections(names);
}

ErrorInfo* FileTreeConfig::EnumEntries(String section, VArray<String, String>& names) {
    return imp->EnumEntries(std::move(section), names);
}

ErrorInfo* FileTreeConfig::DeleteEntry(String section, String entry) {
    return imp->DeleteEntry(std::move(section), std::move(entry));
}

ErrorInfo* FileTreeConfig::DeleteSection(String section) {
    return imp->DeleteSection(std::move(section));
}

} // namespace QMT
