#include "platform/registry_calls.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "platform/file_names.h"
#include "platform/registry_files.h"
#include "platform/registry_names.h"

namespace QMT::platform {

namespace {

using Span = RegistryStore::Span;

// Single rights out of KEY_READ and KEY_ALL_ACCESS.
constexpr std::uint32_t rightToQuery = 0x1;
constexpr std::uint32_t rightToSet = 0x2;
constexpr std::uint32_t rightToList = 0x8;

constexpr std::uint32_t wasCreated = 1;
constexpr std::uint32_t wasThere = 2;

constexpr std::size_t largestSize = std::numeric_limits<std::uint32_t>::max();

bool NeedsWriting(std::uint32_t access) {
    return (access & ~KEY_READ) != 0;
}

RegistryTextView ViewOf(CodeUnit const* text) {
    return text ? RegistryTextView(text) : RegistryTextView();
}

// Copies a name with its terminator into the caller's room.
SystemError HandOutName(RegistryText const& name, CodeUnit* room, std::uint32_t* size) {
    if (name.size() >= *size) {
        return ERROR_MORE_DATA;
    }
    *std::copy(name.begin(), name.end(), room) = 0;
    *size = static_cast<std::uint32_t>(name.size());
    return 0;
}

SystemError HandOutValue(RegistryValue const& value, std::uint32_t* type, void* data, std::uint32_t* size) {
    if (type) {
        *type = value.type;
    }
    if (!size) {
        return data ? badArgument : 0;
    }
    std::uint32_t const room = std::exchange(*size, static_cast<std::uint32_t>(value.bytes.size()));
    if (!data) {
        return 0;
    }
    if (room < value.bytes.size()) {
        return ERROR_MORE_DATA;
    }
    std::memcpy(data, value.bytes.data(), value.bytes.size());
    return 0;
}

} // namespace

// ---- handles

StoredRegistry::StoredRegistry(std::unique_ptr<RegistryStore> userStore,
                               std::unique_ptr<RegistryStore> machineStore)
    : user(std::move(userStore), "HKEY_CURRENT_USER"),
      machine(std::move(machineStore), "HKEY_LOCAL_MACHINE") {}

StoredRegistry::OpenKeyPointer StoredRegistry::KeyOf(void* handle) {
    if (handle == HKEY_CURRENT_USER || handle == HKEY_LOCAL_MACHINE) {
        RegistryRoot& root = handle == HKEY_CURRENT_USER ? user : machine;
        return std::make_shared<OpenKey>(root, rootKeyNumber, KEY_ALL_ACCESS);
    }
    std::scoped_lock const lock(mutex);
    auto const found = openKeys.find(reinterpret_cast<std::uintptr_t>(handle));
    return found == openKeys.end() ? nullptr : found->second;
}

void* StoredRegistry::HandOut(OpenKeyPointer key) {
    std::scoped_lock const lock(mutex);
    openKeys[++lastHandle] = std::move(key);
    return reinterpret_cast<void*>(lastHandle); // NOLINT(performance-no-int-to-ptr): nobody follows it
}

// Does operation(store, number) with the key in one transaction.
template <class Operation>
SystemError StoredRegistry::OnKey(OpenKeyPointer const& key, std::uint32_t right, Span span,
                                  Operation operation) {
    if (!key) {
        return noOpenKey;
    }
    if ((key->access & right) == 0) {
        return accessRefused;
    }
    RegistryStore& store = key->root.Store();
    auto const once = [&] {
        Transaction transaction(store, span);
        if (SystemError const error = transaction.Begin()) {
            return error;
        }
        SystemError const error = operation(store, key->number);
        return transaction.End(error == nothingThere ? IfKeyIsThere(store, key->number, error) : error);
    };
    bool const isWriting = span == Span::OneWrite || span == Span::SeveralWrites;
    SystemError error = store.Open(isWriting);
    if (!error) {
        error = once();
    }
    if (key->isUnchecked.exchange(false) && error == keyIsGone) {
        error = MakeAnew(*key);
        if (!error) {
            error = once();
        }
    }
    changes += isWriting ? 1 : 0;
    return error;
}

template <class Operation>
SystemError StoredRegistry::OnKey(void* handle, std::uint32_t right, Span span, Operation operation) {
    return OnKey(KeyOf(handle), right, span, operation);
}

SystemError StoredRegistry::MakeAnew(OpenKey& key) {
    key.root.Forget(key.number);
    KeyNumber number = 0;
    bool isNew = false;
    bool isKnown = false;
    SystemError const error = key.root.FindOrCreate(key.parent, key.path, number, isNew, isKnown);
    key.number = number;
    return error;
}

// ---- the operations

std::uint32_t StoredRegistry::RegOpenKeyExW(void* parent, CodeUnit const* subKey, std::uint32_t,
                                            std::uint32_t access, void** key) {
    OpenKeyPointer const above = KeyOf(parent);
    if (!above) {
        return noOpenKey;
    }
    SystemError error = above->root.Store().Open(NeedsWriting(access));
    KeyNumber number = 0;
    if (!error) {
        error = above->root.Find(above->number, ViewOf(subKey), number);
    }
    if (!error) {
        *key = HandOut(std::make_shared<OpenKey>(above->root, number, access));
    }
    return error;
}

std::uint32_t StoredRegistry::RegCreateKeyExW(void* parent, CodeUnit const* subKey, std::uint32_t,
                                              CodeUnit const*, std::uint32_t, std::uint32_t access,
                                              void const*, void** key, std::uint32_t* disposition) {
    OpenKeyPointer const above = KeyOf(parent);
    if (!above) {
        return noOpenKey;
    }
    SystemError error = above->root.Store().Open(NeedsWriting(access));
    if (error && (NeedsWriting(access) || error != nothingThere)) {
        return error;
    }
    KeyNumber number = 0;
    bool isNew = false;
    bool isKnown = false;
    error = above->root.FindOrCreate(above->number, ViewOf(subKey), number, isNew, isKnown);
    if (error) {
        return error;
    }
    auto opened = std::make_shared<OpenKey>(above->root, number, access);
    opened->isUnchecked = isKnown;
    opened->parent = above->number;
    opened->path = ViewOf(subKey);
    *key = HandOut(std::move(opened));
    if (disposition) {
        *disposition = isNew ? wasCreated : wasThere;
    }
    return 0;
}

std::uint32_t StoredRegistry::RegCloseKey(void* key) {
    if (key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE) {
        return 0;
    }
    std::scoped_lock const lock(mutex);
    return openKeys.erase(reinterpret_cast<std::uintptr_t>(key)) > 0 ? 0 : noOpenKey;
}

// The value kept for this query, if there is one and nothing has been changed here since. It is kept no more.
bool StoredRegistry::TakeUnfit(OpenKey& key, RegistryTextView name, std::uint32_t room,
                               RegistryValue& value) {
    std::scoped_lock const lock(key.mutex);
    std::optional<UnfitValue> const kept = std::exchange(key.unfit, std::nullopt);
    bool const isMeant =
        kept && kept->name == name && kept->value.bytes.size() == room && kept->change == changes;
    if (isMeant) {
        value = kept->value;
    }
    return isMeant;
}

std::uint32_t StoredRegistry::RegQueryValueExW(void* key, CodeUnit const* name, std::uint32_t*,
                                               std::uint32_t* type, void* data, std::uint32_t* size) {
    OpenKeyPointer const opened = KeyOf(key);
    RegistryValue value;
    if (opened && size && data && TakeUnfit(*opened, ViewOf(name), *size, value)) {
        return HandOutValue(value, type, data, size);
    }
    std::uint64_t const change = changes;
    SystemError error =
        OnKey(opened, rightToQuery, Span::OneRead, [&](RegistryStore& store, KeyNumber number) {
            return store.ReadValue(number, ViewOf(name), value);
        });
    if (error) {
        return error;
    }
    error = HandOutValue(value, type, data, size);
    if (error == ERROR_MORE_DATA) {
        std::scoped_lock const lock(opened->mutex);
        opened->unfit = UnfitValue{RegistryText(ViewOf(name)), std::move(value), change};
    }
    return error;
}

std::uint32_t StoredRegistry::RegQueryMultipleValuesW(void* key, VALENTW* values, std::uint32_t count,
                                                      void* buffer, std::uint32_t* totalSize) {
    std::vector<RegistryValue> found(count);
    std::size_t needed = 0;
    SystemError const error =
        OnKey(key, rightToQuery, Span::SeveralReads, [&](RegistryStore& store, KeyNumber number) {
            SystemError failure = 0;
            for (std::uint32_t i = 0; i < count && !failure; ++i) {
                failure = store.ReadValue(number, ViewOf(values[i].name), found[i]);
                needed += found[i].bytes.size();
            }
            return failure;
        });
    if (error) {
        return error;
    }
    if (needed > largestSize) {
        return tooMuchData;
    }
    std::uint32_t const room = std::exchange(*totalSize, static_cast<std::uint32_t>(needed));
    if (!buffer || room < needed) {
        return ERROR_MORE_DATA;
    }
    auto* place = static_cast<unsigned char*>(buffer);
    for (std::uint32_t i = 0; i < count; ++i) {
        std::string const& bytes = found[i].bytes;
        values[i] = {values[i].name, static_cast<std::uint32_t>(bytes.size()), place, found[i].type};
        place = std::copy(bytes.begin(), bytes.end(), place);
    }
    return 0;
}

std::uint32_t StoredRegistry::RegSetValueExW(void* key, CodeUnit const* name, std::uint32_t,
                                             std::uint32_t type, void const* data, std::uint32_t size) {
    return OnKey(key, rightToSet, Span::OneWrite, [&](RegistryStore& store, KeyNumber number) {
        return store.WriteValue(number, ViewOf(name), type, {static_cast<char const*>(data), size});
    });
}

std::uint32_t StoredRegistry::RegEnumKeyExW(void* key, std::uint32_t index, CodeUnit* name,
                                            std::uint32_t* size, std::uint32_t*, CodeUnit*, std::uint32_t*,
                                            std::uint64_t* lastWritten) {
    RegistryText found;
    SystemError const error =
        OnKey(key, rightToList, Span::OneRead,
              [&](RegistryStore& store, KeyNumber number) { return store.KeyNameAt(number, index, found); });
    if (!error && lastWritten) {
        *lastWritten = 0;
    }
    return error ? (error == nothingThere ? ERROR_NO_MORE_ITEMS : error) : HandOutName(found, name, size);
}

std::uint32_t StoredRegistry::RegEnumValueW(void* key, std::uint32_t index, CodeUnit* name,
                                            std::uint32_t* size, std::uint32_t*, std::uint32_t* type,
                                            void* data, std::uint32_t* dataSize) {
    RegistryText found;
    RegistryValue value;
    SystemError error =
        OnKey(key, rightToQuery, Span::SeveralReads, [&](RegistryStore& store, KeyNumber number) {
            SystemError const failure = store.ValueNameAt(number, index, found, value.type);
            return failure || !data ? failure : store.ReadValue(number, found, value);
        });
    if (error) {
        return error == nothingThere ? ERROR_NO_MORE_ITEMS : error;
    }
    error = HandOutName(found, name, size);
    return error ? error : HandOutValue(value, type, data, data ? dataSize : nullptr);
}

std::uint32_t StoredRegistry::RegDeleteKeyW(void* key, CodeUnit const* subKey) {
    OpenKeyPointer const above = KeyOf(key);
    if (!above) {
        return noOpenKey;
    }
    SystemError const error = above->root.Store().Open(true);
    return error ? error : above->root.Remove(above->number, ViewOf(subKey));
}

std::uint32_t StoredRegistry::RegDeleteValueW(void* key, CodeUnit const* name) {
    return OnKey(key, rightToSet, Span::OneWrite, [&](RegistryStore& store, KeyNumber number) {
        return store.RemoveValue(number, ViewOf(name));
    });
}

std::uint32_t StoredRegistry::RegSaveKeyW(void* key, CodeUnit const* path, void const*) {
    OpenKeyPointer const saved = KeyOf(key);
    if (!saved) {
        return noOpenKey;
    }
    std::vector<SavedKey> keys;
    SystemError const error =
        OnKey(key, rightToQuery, Span::SeveralReads,
              [&](RegistryStore&, KeyNumber number) { return saved->root.ReadTree(number, keys); });
    if (error) {
        return error;
    }
    std::string bytes;
    return MakeRegistryText(keys, bytes) ? WriteNewFile(ToFileName(ViewOf(path)), bytes) : noNameInText;
}

} // namespace QMT::platform
