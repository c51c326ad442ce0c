// Registries for tests, and short forms of the calls to them.
#pragma once

#include <set>

#include "platform/registry_errors.h"
#include "qmt/config/registry_tree.h"
#include "qmt/platform/registry.h"
#include "support/temp_directory.h"
#include "support/text.h"

namespace QMT {

inline void* const user = HKEY_CURRENT_USER;
inline void* const machine = HKEY_LOCAL_MACHINE;

using TestRegistry = std::unique_ptr<Registry, std::function<void(Registry*)>>;

// The kind of registry that the library uses by itself, with nothing in it: where the system has a registry,
// keys in that, and one at a time; elsewhere databases in the directory, which stay in it.
TestRegistry RegistryIn(TempDirectory const& directory);

extern bool const systemHasRegistry;
extern std::uint32_t const fileIsThere, noSuchDirectory; // numbers of the system

// Puts a registry in place of the system's until the result, and with it each copy, is gone.
inline std::shared_ptr<Registry> PutInUse(Registry& registry) {
    return {UseRegistry(&registry), &UseRegistry};
}

// What several calls gave, in order: results, errors or names.
using Results = std::vector<std::uint32_t>;
using Texts = std::vector<String>;
using Names = VArray<String, String>;

// The calls with the arguments that tests vary. What is opened becomes the key.
struct RegistryCalls {
    std::uint32_t Open(void* parent, String path, std::uint32_t access = KEY_ALL_ACCESS) {
        return registry.RegOpenKeyExW(parent, path, 0, access, &key);
    }

    std::uint32_t Create(void* parent, String path, std::uint32_t access = KEY_ALL_ACCESS) {
        return registry.RegCreateKeyExW(parent, path, 0, nullptr, 0, access, nullptr, &key, &disposition);
    }

    std::uint32_t Set(void* holder, String name, std::string_view bytes, std::uint32_t typeOfBytes = REG_SZ) {
        auto const size = static_cast<std::uint32_t>(bytes.size());
        return registry.RegSetValueExW(holder, name, 0, typeOfBytes, bytes.data(), size);
    }

    // What was read, or the result.
    std::string Query(void* holder, String name) {
        std::string bytes(1 << 20, '?');
        auto size = static_cast<std::uint32_t>(bytes.size());
        std::uint32_t const result =
            registry.RegQueryValueExW(holder, name, nullptr, &type, bytes.data(), &size);
        return result ? "error " + std::to_string(result) : bytes.substr(0, size);
    }

    // The names of the sub keys or the values, sorted, with bars behind them, and the result that ended the
    // list.
    String Names(void* holder, bool ofKeys, std::uint32_t room = 501) {
        std::set<String> names;
        std::basic_string<CodeUnit> name(room, u'?');
        std::uint32_t result = 0;
        for (std::uint32_t index = 0; result == 0; ++index) {
            std::uint32_t size = room;
            result = ofKeys ? registry.RegEnumKeyExW(holder, index, name.data(), &size, nullptr, nullptr,
                                                     nullptr, nullptr)
                            : registry.RegEnumValueW(holder, index, name.data(), &size, nullptr, &type,
                                                     nullptr, nullptr);
            if (result == 0)
                names.emplace(name.substr(0, size));
        }
        String list;
        for (String const& found : names)
            list << found << u"|";
        return list << result;
    }

    std::uint32_t Delete(void* parent, String path) { return registry.RegDeleteKeyW(parent, path); }

    std::uint32_t DeleteValue(void* holder, String name) { return registry.RegDeleteValueW(holder, name); }

    std::uint32_t Save(void* saved, String file) { return registry.RegSaveKeyW(saved, file, nullptr); }

    Registry& registry;
    void* key = nullptr;
    std::uint32_t disposition = 0, type = 0;
};

} // namespace QMT
