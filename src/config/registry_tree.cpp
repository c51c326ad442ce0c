#include "qmt/config/registry_tree.h"

#include <memory>
#include <utility>
#include <vector>

#include "config/registry_access.h"
#include "qmt/general/files.h"
#include "qmt/helpers/system.h"

namespace QMT {

namespace {

// Gives the values as they stand at one moment to take(record), in order; false, and nothing given, when one
// cannot be read.
template <class Take>
bool QueryValues(void* key, std::vector<VALENTW>& records, Take take) {
    auto const count = static_cast<std::uint32_t>(records.size());
    std::uint32_t size = 0;
    Registry& registry = GetRegistry();
    if (registry.RegQueryMultipleValuesW(key, records.data(), count, nullptr, &size) != ERROR_MORE_DATA) {
        return false;
    }
    auto const buffer = std::make_unique_for_overwrite<unsigned char[]>(size);
    if (registry.RegQueryMultipleValuesW(key, records.data(), count, buffer.get(), &size)) {
        return false;
    }
    for (VALENTW const& record : records) {
        take(record);
    }
    return true;
}

} // namespace

RealRegistryTree::RealRegistryTree(void* root, String nameOfRoot, String keyPath)
    : rootKey(root), rootName(std::move(nameOfRoot)) {
    AppendChain(keys, keyPath);
}

RealRegistryTree::~RealRegistryTree() {
    CloseChain(keys);
}

void* RealRegistryTree::LastKey() const {
    return keys.Size() == 0 ? nullptr : keys[keys.Size() - 1].handle;
}

void* RealRegistryTree::CurrentKey() const {
    return keys.Size() == 0 ? rootKey : LastKey();
}

String RealRegistryTree::PathTo(String const& subKey) const {
    return ChainText(rootName, keys, keys.Size()) + u"\\" + subKey;
}

ErrorInfo* RealRegistryTree::CheckExists(bool readOnly) {
    std::size_t reached = 0;
    std::uint32_t const result = OpenChain(rootKey, keys, readOnly, MissingKeys::Fail, reached);
    if (!result) {
        return nullptr;
    }
    String message = u"Couldn't open " + rootName + u"\\" + std::as_const(keys)[0].name + u"; ";
    for (std::size_t i = 1; i <= reached; ++i) {
        message << u"\\" << std::as_const(keys)[i].name;
    }
    return MakeError(message + GetSystemErrMsge(result));
}

ErrorInfo* RealRegistryTree::EnsureExists(bool readOnly) {
    std::size_t reached = 0;
    if (OpenChain(rootKey, keys, readOnly, MissingKeys::AreCreated, reached) == 0) {
        return nullptr;
    }
    return MakeError(u"Couldn't open " + ChainText(rootName, keys, reached + 1) + u": ");
}

String RealRegistryTree::GetStringNoDefault(String section, String entry) {
    return ReadStringOfSection(CurrentKey(), section, entry);
}

String RealRegistryTree::GetData(String entry) {
    bool const isOpen = keys.Size() > 0 && std::as_const(keys)[keys.Size() - 1].isOpen;
    return isOpen ? ReadStringValue(LastKey(), entry) : String();
}

ErrorInfo* RealRegistryTree::ReadMultipleValues(String section, VArray<String, String> names,
                                                VArray<String, String>& values) {
    ShortlyOpenKey key;
    if (key.OpenOrCreate(CurrentKey(), section)) {
        return MakeError(u"Couldn't open reg key: " + PathTo(section));
    }
    std::vector<VALENTW> records(names.Size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        records[i].name = names[i];
    }
    bool const areRead = QueryValues(key.Handle(), records, [&values](VALENTW const& record) {
        values.Add(TextOfData(record.data, record.size));
    });
    return areRead ? nullptr : MakeError(u"Problem reading multiple values from registry for key " + section);
}

ErrorInfo* RealRegistryTree::WriteProfileStr(String entry, String value) {
    std::uint32_t const result = WriteStringValue(LastKey(), entry, value);
    return result ? MakeError(u"Couldn't open reg key: " + entry + u": ") : nullptr;
}

ErrorInfo* RealRegistryTree::WriteProfileDWORD(String entry, unsigned long int value) {
    auto const number = static_cast<std::uint32_t>(value);
    std::uint32_t const result =
        GetRegistry().RegSetValueExW(LastKey(), entry, 0, REG_DWORD, &number, sizeof(number));
    return result ? MakeError(u"Couldn't open reg key: " + entry + u": ") : nullptr;
}

ErrorInfo* RealRegistryTree::EnumSubKeys(VArray<String, String>& names) {
    return AppendSubKeyNames(CurrentKey(), NameRoom::Is500, names) ? MakeError(u"No more items") : nullptr;
}

ErrorInfo* RealRegistryTree::EnumValueNames(VArray<String, String>& names) {
    bool const fails = keys.Size() > 0 && AppendValueNames(LastKey(), NameRoom::Is500, names) != 0;
    return fails ? MakeError(u"No more items") : nullptr;
}

ErrorInfo* RealRegistryTree::DeleteSubKey(String subKey) {
    std::uint32_t const result = GetRegistry().RegDeleteKeyW(CurrentKey(), subKey);
    return result ? MakeError(u"Couldn't delete key " + subKey + u": ") : nullptr;
}

ErrorInfo* RealRegistryTree::DeleteValue(String entry) {
    return GetRegistry().RegDeleteValueW(LastKey(), entry) ? MakeError(u"Did not succeed") : nullptr;
}

ErrorInfo* RealRegistryTree::Export(String filePath) {
    std::unique_ptr<ErrorInfo> const mayBeMissing(RemoveFile(filePath));
    std::uint32_t const result = GetRegistry().RegSaveKeyW(CurrentKey(), filePath, nullptr);
    return result ? MakeError(u"Couldn't save to regfile " + filePath + u"; " + GetSystemErrMsge(result))
                  : nullptr;
}

ErrorInfo* RealRegistryTree::Import(String) {
    return nullptr;
}

} // namespace QMT
