#include "config/app_config_imp.h"

#include "qmt/helpers/system.h"

namespace QMT {

namespace {

constexpr std::size_t chainIncrease = 18;

// The registry's error, on every system, for a key that is not there.
constexpr std::uint32_t keyIsMissing = 2;

// Between the names of a registry path, on every system.
constexpr CodeUnit registrySeparator = u'\\';

// Null for success, otherwise an error with the complaint, the place and the system's text.
ErrorInfo* Outcome(std::uint32_t result, char16_t const* complaint, String const& place) {
    return result ? MakeError(complaint + place + u": " + GetSystemErrMsge(result)) : nullptr;
}

} // namespace

AppConfigImp::AppConfigImp(String first, String second, String, bool machineWide)
    : rootKey(machineWide ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER),
      rootName(machineWide ? u"HKEY_LOCAL_MACHINE" : u"HKEY_CURRENT_USER") {
    keys.SetCapacityIncrease(chainIncrease);
    if (!first.IsEmpty() && first[first.Len() - 1] != registrySeparator) {
        first << registrySeparator;
    }
    MakeApplicationKey(first, second);
    AppendChain(keys, u"Software\\" + first + second);
}

AppConfigImp::~AppConfigImp() {
    CloseChain(keys);
}

// Nothing is reported: CheckExists shows what has failed.
void AppConfigImp::MakeApplicationKey(String const& first, String const& second) const {
    auto const openOrMake = [](void* parent, String const& name, ShortlyOpenKey& key) {
        return key.OpenExisting(parent, name, KEY_ALL_ACCESS) == 0 || key.OpenOrCreate(parent, name) == 0;
    };
    ShortlyOpenKey software;
    ShortlyOpenKey middle;
    ShortlyOpenKey application;
    if (software.OpenExisting(rootKey, u"Software", KEY_ALL_ACCESS) == 0 &&
        openOrMake(software.Handle(), first, middle)) {
        openOrMake(middle.Handle(), second, application);
    }
}

void* AppConfigImp::CurrentKey() const {
    return keys[keys.Size() - 1].handle;
}

String AppConfigImp::PlaceOf(String const& section) const {
    return ChainText(rootName, keys, keys.Size()) + u"\\" + section;
}

ErrorInfo* AppConfigImp::CheckExists(bool readOnly) {
    std::size_t reached = 0;
    std::uint32_t const result = OpenChain(rootKey, keys, readOnly, MissingKeys::Fail, reached);
    return result ? Outcome(result, u"Couldn't open ", ChainText(rootName, keys, reached + 1)) : nullptr;
}

ErrorInfo* AppConfigImp::WriteProfileStr(String section, String entry, String value) {
    String const place = PlaceOf(section);
    ShortlyOpenKey key;
    if (std::uint32_t const result = key.OpenOrCreate(CurrentKey(), section)) {
        return Outcome(result, u"Couldn't open reg key: ", place);
    }
    return Outcome(WriteStringValue(key.Handle(), entry, value), u"Couldn't open reg key: ",
                   place + u"\\" + entry);
}

String AppConfigImp::GetStringNoDefault(String section, String entry) {
    return ReadStringOfSection(CurrentKey(), section, entry);
}

String AppConfigImp::GetReadOnlyString(String section, String entry) {
    ShortlyOpenKey key;
    return key.OpenExisting(CurrentKey(), section, KEY_READ) == 0 ? ReadStringValue(key.Handle(), entry)
                                                                  : String();
}

ErrorInfo* AppConfigImp::EnumSections(VArray<String, String>& names) {
    return Outcome(AppendSubKeyNames(CurrentKey(), NameRoom::Grows, names), u"Couldn't list the keys of ",
                   ChainText(rootName, keys, keys.Size()));
}

ErrorInfo* AppConfigImp::EnumEntries(String section, VArray<String, String>& names) {
    ShortlyOpenKey key;
    std::uint32_t result = key.OpenExisting(CurrentKey(), section, KEY_READ);
    if (result == keyIsMissing) {
        return nullptr;
    }
    if (!result) {
        result = AppendValueNames(key.Handle(), NameRoom::Grows, names);
    }
    return Outcome(result, u"Couldn't list the values of ", PlaceOf(section));
}

ErrorInfo* AppConfigImp::DeleteEntry(String section, String entry) {
    ShortlyOpenKey key;
    std::uint32_t result = key.OpenExisting(CurrentKey(), section, KEY_ALL_ACCESS);
    if (!result) {
        result = GetRegistry().RegDeleteValueW(key.Handle(), entry);
    }
    return Outcome(result, u"Couldn't delete value ", PlaceOf(section) + u"\\" + entry);
}

ErrorInfo* AppConfigImp::DeleteSection(String section) {
    return Outcome(GetRegistry().RegDeleteKeyW(CurrentKey(), section), u"Couldn't delete key ",
                   PlaceOf(section));
}

} // namespace QMT
