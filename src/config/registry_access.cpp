#include "config/registry_access.h"

#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "qmt/general/files.h"

namespace QMT {

namespace {

constexpr std::uint32_t firstBufferSize = 200; // bytes; most settings fit
constexpr int mostAttempts = 2;

// Code units.
constexpr std::size_t leastNameRoom = 500;
constexpr std::size_t mostNameRoom = 1 << 24;

} // namespace

// ---- single keys

ShortlyOpenKey::~ShortlyOpenKey() {
    if (handle) {
        GetRegistry().RegCloseKey(handle);
    }
}

std::uint32_t ShortlyOpenKey::OpenExisting(void* parent, String const& name, std::uint32_t access) {
    return GetRegistry().RegOpenKeyExW(parent, name, 0, access, &handle);
}

std::uint32_t ShortlyOpenKey::OpenOrCreate(void* parent, String const& name) {
    return GetRegistry().RegCreateKeyExW(parent, name, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &handle,
                                         nullptr);
}

// ---- values

String TextOfData(unsigned char const* data, std::size_t size) {
    std::basic_string<CodeUnit> text(size / sizeof(CodeUnit), CodeUnit());
    std::memcpy(text.data(), data, text.size() * sizeof(CodeUnit));
    text.resize(std::min(text.find(CodeUnit()), text.size()));
    return String(std::move(text));
}

String ReadStringValue(void* key, String const& name) {
    std::uint32_t size = firstBufferSize;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        auto const buffer = std::make_unique_for_overwrite<unsigned char[]>(size);
        std::uint32_t type = 0;
        std::uint32_t const result =
            GetRegistry().RegQueryValueExW(key, name, nullptr, &type, buffer.get(), &size);
        if (result == 0) {
            return TextOfData(buffer.get(), size);
        }
        if (result != ERROR_MORE_DATA) {
            break;
        }
    }
    return String();
}

String ReadStringOfSection(void* parent, String const& section, String const& entry) {
    ShortlyOpenKey key;
    return key.OpenOrCreate(parent, section) == 0 ? ReadStringValue(key.Handle(), entry) : String();
}

std::uint32_t WriteStringValue(void* key, String const& name, String const& value) {
    constexpr std::size_t largestSize = std::numeric_limits<std::uint32_t>::max();
    std::size_t const size = (value.Len() + 1) * sizeof(CodeUnit);
    if (size > largestSize) {
        return ERROR_MORE_DATA;
    }
    CodeUnit const* const text = value;
    return GetRegistry().RegSetValueExW(key, name, 0, REG_SZ, text, static_cast<std::uint32_t>(size));
}

// ---- chains

void AppendChain(NonSortableVArray<TreeKey>& keys, String const& path) {
    ParsableText elements(path);
    elements.splitOnBackslash = true;
    for (TreeKey key; elements.GetNextElem(&key.name, 0);) {
        keys.Add(key);
    }
}

std::uint32_t OpenChain(void* root, NonSortableVArray<TreeKey>& keys, bool readOnly, MissingKeys missing,
                        std::size_t& reached) {
    std::uint32_t const access = readOnly ? KEY_READ : KEY_ALL_ACCESS;
    Registry& registry = GetRegistry();
    void* parent = root;
    for (reached = 0; reached < keys.Size(); ++reached) {
        TreeKey& key = keys[reached];
        if (!key.isOpen) {
            std::uint32_t const result =
                missing == MissingKeys::Fail
                    ? registry.RegOpenKeyExW(parent, key.name, 0, access, &key.handle)
                    : registry.RegCreateKeyExW(parent, key.name, 0, nullptr, 0, access, nullptr, &key.handle,
                                               nullptr);
            if (result) {
                return result;
            }
            key.isOpen = true;
        }
        parent = key.handle;
    }
    return 0;
}

void CloseChain(NonSortableVArray<TreeKey>& keys) {
    for (std::size_t i = keys.Size(); i-- > 0;) {
        TreeKey& key = keys[i];
        if (std::exchange(key.isOpen, false)) {
            GetRegistry().RegCloseKey(std::exchange(key.handle, nullptr));
        }
    }
}

String ChainText(String const& rootName, NonSortableVArray<TreeKey> const& keys, std::size_t count) {
    String text = rootName;
    for (std::size_t i = 0; i < count; ++i) {
        text << u"\\" << keys[i].name;
    }
    return text;
}

// ---- names

namespace {

// Adds the names that next gives to names, until there are no more: next(index, room, size) is a call of the
// registry.
template <class Next>
std::uint32_t AppendNames(NameRoom nameRoom, VArray<String, String>& names, Next next) {
    std::basic_string<CodeUnit> room(leastNameRoom, CodeUnit());
    for (std::uint32_t index = 0;;) {
        auto size = static_cast<std::uint32_t>(room.size());
        std::uint32_t const result = next(index, room.data(), &size);
        if (result == 0) {
            names.Add(String(room.c_str()));
            ++index;
        } else if (result == ERROR_MORE_DATA && nameRoom == NameRoom::Grows && room.size() < mostNameRoom) {
            room.resize(2 * room.size());
        } else {
            return result == ERROR_NO_MORE_ITEMS ? 0 : result;
        }
    }
}

} // namespace

std::uint32_t AppendSubKeyNames(void* key, NameRoom nameRoom, VArray<String, String>& names) {
    return AppendNames(nameRoom, names, [key](std::uint32_t index, CodeUnit* room, std::uint32_t* size) {
        std::uint64_t lastWritten = 0;
        return GetRegistry().RegEnumKeyExW(key, index, room, size, nullptr, nullptr, nullptr, &lastWritten);
    });
}

std::uint32_t AppendValueNames(void* key, NameRoom nameRoom, VArray<String, String>& names) {
    return AppendNames(nameRoom, names, [key](std::uint32_t index, CodeUnit* room, std::uint32_t* size) {
        std::uint32_t type = 0;
        return GetRegistry().RegEnumValueW(key, index, room, size, nullptr, &type, nullptr, nullptr);
    });
}

} // namespace QMT
