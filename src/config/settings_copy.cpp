#include "qmt/config/settings_copy.h"

#include <memory>
#include <vector>

namespace QMT {

namespace {

using Names = VArray<String, String>;

struct Setting {
    String section;
    String entry;
    String value;
    std::unique_ptr<ErrorInfo> error;
};

// Adds the source's settings with their texts; gives the first error, and goes on behind it.
std::unique_ptr<ErrorInfo> ReadSettings(SettingsStore& source, std::vector<Setting>& settings) {
    Names sections;
    std::unique_ptr<ErrorInfo> first(source.EnumSections(sections));
    for (std::size_t i = 0; i < sections.Size(); ++i) {
        Names entries;
        std::unique_ptr<ErrorInfo> error(source.EnumEntries(sections[i], entries));
        if (!first) {
            first = std::move(error);
        }
        for (std::size_t j = 0; j < entries.Size(); ++j) {
            settings.push_back(
                {sections[i], entries[j], source.GetReadOnlyString(sections[i], entries[j]), nullptr});
        }
    }
    return first;
}

bool IsStored(SettingsStore& target, Setting const& setting) {
    return target.GetReadOnlyString(setting.section, setting.entry) == setting.value;
}

} // namespace

ErrorInfo* CopySettings(SettingsStore& source, SettingsStore& target) {
    std::vector<Setting> settings;
    std::unique_ptr<ErrorInfo> error = ReadSettings(source, settings);
    for (Setting& setting : settings) {
        setting.error.reset(target.WriteProfileStr(setting.section, setting.entry, setting.value));
    }
    // When all are written: two names may be one for the target.
    for (Setting& setting : settings) {
        if (!error && setting.error) {
            error = std::move(setting.error);
        } else if (!error && !IsStored(target, setting)) {
            error.reset(MakeError(u"Couldn't copy setting unchanged. In section [" + setting.section +
                                  u"] entry : " + setting.entry));
        }
    }
    return error.release();
}

} // namespace QMT
