#include "qmt/config/settings_copy.h"

#include <memory>

namespace QMT {

namespace {

using Names = VArray<String, String>;

ErrorInfo* CopyEntry(SettingsStore& source, SettingsStore& target, String const& section,
                     String const& entry) {
    String const value = source.GetReadOnlyString(section, entry);
    if (ErrorInfo* const error = target.WriteProfileStr(section, entry, value)) {
        return error;
    }
    if (target.GetReadOnlyString(section, entry) == value) {
        return nullptr;
    }
    return MakeError(u"Couldn't copy setting unchanged. In section [" + section + u"] entry : " + entry);
}

// Keeps the first error, and deletes a later one.
void Note(ErrorInfo* error, std::unique_ptr<ErrorInfo>& first) {
    std::unique_ptr<ErrorInfo> owned(error);
    if (!first) {
        first = std::move(owned);
    }
}

} // namespace

ErrorInfo* CopySettings(SettingsStore& source, SettingsStore& target) {
    Names sections;
    std::unique_ptr<ErrorInfo> first(source.EnumSections(sections));
    for (std::size_t i = 0; i < sections.Size(); ++i) {
        Names entries;
        Note(source.EnumEntries(sections[i], entries), first);
        for (std::size_t j = 0; j < entries.Size(); ++j) {
            Note(CopyEntry(source, target, sections[i], entries[j]), first);
        }
    }
    return first.release();
}

} // namespace QMT
