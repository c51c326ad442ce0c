// The system's own registry.
#include "platform/registry_system.h"

#include <cstddef>

#include <windows.h>

namespace QMT {

namespace {

static_assert(sizeof(DWORD) == sizeof(std::uint32_t) && sizeof(FILETIME) == sizeof(std::uint64_t));
static_assert(sizeof(VALENTW) == sizeof(::VALENTW) &&
              offsetof(VALENTW, data) == offsetof(VALENT, ve_valueptr) &&
              offsetof(VALENTW, size) == offsetof(VALENT, ve_valuelen) &&
              offsetof(VALENTW, type) == offsetof(VALENT, ve_type));

HKEY KeyOf(void* handle) {
    return static_cast<HKEY>(handle);
}

DWORD* DwordAt(std::uint32_t* number) {
    return reinterpret_cast<DWORD*>(number);
}

// Hands out the key of a call that has succeeded.
std::uint32_t HandOut(LSTATUS result, HKEY opened, void** key) {
    if (result == ERROR_SUCCESS)
        *key = opened;
    return static_cast<std::uint32_t>(result);
}

class WindowsRegistry : public Registry {
public:
    std::uint32_t RegOpenKeyExW(void* parent, CodeUnit const* subKey, std::uint32_t options,
                                std::uint32_t access, void** key) override {
        HKEY opened = nullptr;
        LSTATUS const result = ::RegOpenKeyExW(KeyOf(parent), subKey, options, access, &opened);
        return HandOut(result, opened, key);
    }

    std::uint32_t RegCreateKeyExW(void* parent, CodeUnit const* subKey, std::uint32_t reserved,
                                  CodeUnit const* keyClass, std::uint32_t options, std::uint32_t access,
                                  void const* security, void** key, std::uint32_t* disposition) override {
        HKEY opened = nullptr;
        LSTATUS const result =
            ::RegCreateKeyExW(KeyOf(parent), subKey, reserved, const_cast<LPWSTR>(keyClass), options, access,
                              Attributes(security), &opened, DwordAt(disposition));
        return HandOut(result, opened, key);
    }

    std::uint32_t RegCloseKey(void* key) override { return Number(::RegCloseKey(KeyOf(key))); }

    std::uint32_t RegQueryValueExW(void* key, CodeUnit const* name, std::uint32_t* reserved,
                                   std::uint32_t* type, void* data, std::uint32_t* size) override {
        return Number(::RegQueryValueExW(KeyOf(key), name, DwordAt(reserved), DwordAt(type),
                                         static_cast<BYTE*>(data), DwordAt(size)));
    }

    std::uint32_t RegQueryMultipleValuesW(void* key, VALENTW* values, std::uint32_t count, void* buffer,
                                          std::uint32_t* totalSize) override {
        return Number(::RegQueryMultipleValuesW(KeyOf(key), reinterpret_cast<::VALENTW*>(values), count,
                                                static_cast<LPWSTR>(buffer), DwordAt(totalSize)));
    }

    std::uint32_t RegSetValueExW(void* key, CodeUnit const* name, std::uint32_t reserved, std::uint32_t type,
                                 void const* data, std::uint32_t size) override {
        return Number(
            ::RegSetValueExW(KeyOf(key), name, reserved, type, static_cast<BYTE const*>(data), size));
    }

    std::uint32_t RegEnumKeyExW(void* key, std::uint32_t index, CodeUnit* name, std::uint32_t* size,
                                std::uint32_t* reserved, CodeUnit* keyClass, std::uint32_t* classSize,
                                std::uint64_t* lastWritten) override {
        return Number(::RegEnumKeyExW(KeyOf(key), index, name, DwordAt(size), DwordAt(reserved), keyClass,
                                      DwordAt(classSize), reinterpret_cast<FILETIME*>(lastWritten)));
    }

    std::uint32_t RegEnumValueW(void* key, std::uint32_t index, CodeUnit* name, std::uint32_t* size,
                                std::uint32_t* reserved, std::uint32_t* type, void* data,
                                std::uint32_t* dataSize) override {
        return Number(::RegEnumValueW(KeyOf(key), index, name, DwordAt(size), DwordAt(reserved),
                                      DwordAt(type), static_cast<BYTE*>(data), DwordAt(dataSize)));
    }

    std::uint32_t RegDeleteKeyW(void* key, CodeUnit const* subKey) override {
        return Number(::RegDeleteKeyW(KeyOf(key), subKey));
    }

    std::uint32_t RegDeleteValueW(void* key, CodeUnit const* name) override {
        return Number(::RegDeleteValueW(KeyOf(key), name));
    }

    std::uint32_t RegSaveKeyW(void* key, CodeUnit const* path, void const* security) override {
        return Number(::RegSaveKeyW(KeyOf(key), path, Attributes(security)));
    }

private:
    static std::uint32_t Number(LSTATUS result) { return static_cast<std::uint32_t>(result); }

    // Which the calls do not write to.
    static SECURITY_ATTRIBUTES* Attributes(void const* security) {
        return static_cast<SECURITY_ATTRIBUTES*>(const_cast<void*>(security));
    }
};

} // namespace

Registry& platform::SystemRegistry() {
    static WindowsRegistry& registry = *new WindowsRegistry;
    return registry;
}

bool SetRegistryFiles(CodeUnit const*, CodeUnit const*) {
    return false;
}

std::unique_ptr<Registry> MakeDatabaseRegistry(CodeUnit const*, CodeUnit const*) {
    return nullptr;
}

} // namespace QMT
