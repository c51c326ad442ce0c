#include "platform/registry_counting.h"

#include <numeric>
#include <utility>

namespace QMT {

CountingRegistry::~CountingRegistry() = default;

int CountingRegistry::Calls() const {
    return std::accumulate(counts.begin(), counts.end(), 0);
}

void CountingRegistry::Before(RegistryCall call, std::function<std::uint32_t()> action) {
    actions[static_cast<std::size_t>(call)] = std::move(action);
}

template <class... Parameters, class... Arguments>
std::uint32_t CountingRegistry::Pass(RegistryCall call, std::uint32_t (Registry::*operation)(Parameters...),
                                     Arguments... arguments) {
    auto const kind = static_cast<std::size_t>(call);
    ++counts[kind];
    std::uint32_t const forced = actions[kind] ? actions[kind]() : 0;
    return forced ? forced : (inner.*operation)(arguments...);
}

std::uint32_t CountingRegistry::RegOpenKeyExW(void* parent, CodeUnit const* subKey, std::uint32_t options,
                                              std::uint32_t access, void** key) {
    return Pass(RegistryCall::OpenKey, &Registry::RegOpenKeyExW, parent, subKey, options, access, key);
}

std::uint32_t CountingRegistry::RegCreateKeyExW(void* parent, CodeUnit const* subKey, std::uint32_t reserved,
                                                CodeUnit const* keyClass, std::uint32_t options,
                                                std::uint32_t access, void const* security, void** key,
                                                std::uint32_t* disposition) {
    return Pass(RegistryCall::CreateKey, &Registry::RegCreateKeyExW, parent, subKey, reserved, keyClass,
                options, access, security, key, disposition);
}

std::uint32_t CountingRegistry::RegCloseKey(void* key) {
    return Pass(RegistryCall::CloseKey, &Registry::RegCloseKey, key);
}

std::uint32_t CountingRegistry::RegQueryValueExW(void* key, CodeUnit const* name, std::uint32_t* reserved,
                                                 std::uint32_t* type, void* data, std::uint32_t* size) {
    return Pass(RegistryCall::QueryValue, &Registry::RegQueryValueExW, key, name, reserved, type, data, size);
}

std::uint32_t CountingRegistry::RegQueryMultipleValuesW(void* key, VALENTW* values, std::uint32_t count,
                                                        void* buffer, std::uint32_t* totalSize) {
    return Pass(RegistryCall::QueryMultipleValues, &Registry::RegQueryMultipleValuesW, key, values, count,
                buffer, totalSize);
}

std::uint32_t CountingRegistry::RegSetValueExW(void* key, CodeUnit const* name, std::uint32_t reserved,
                                               std::uint32_t type, void const* data, std::uint32_t size) {
    return Pass(RegistryCall::SetValue, &Registry::RegSetValueExW, key, name, reserved, type, data, size);
}

std::uint32_t CountingRegistry::RegEnumKeyExW(void* key, std::uint32_t index, CodeUnit* name,
                                              std::uint32_t* size, std::uint32_t* reserved,
                                              CodeUnit* keyClass, std::uint32_t* classSize,
                                              std::uint64_t* lastWritten) {
    return Pass(RegistryCall::EnumKey, &Registry::RegEnumKeyExW, key, index, name, size, reserved, keyClass,
                classSize, lastWritten);
}

std::uint32_t CountingRegistry::RegEnumValueW(void* key, std::uint32_t index, CodeUnit* name,
                                              std::uint32_t* size, std::uint32_t* reserved,
                                              std::uint32_t* type, void* data, std::uint32_t* dataSize) {
    return Pass(RegistryCall::EnumValue, &Registry::RegEnumValueW, key, index, name, size, reserved, type,
                data, dataSize);
}

std::uint32_t CountingRegistry::RegDeleteKeyW(void* key, CodeUnit const* subKey) {
    return Pass(RegistryCall::DeleteKey, &Registry::RegDeleteKeyW, key, subKey);
}

std::uint32_t CountingRegistry::RegDeleteValueW(void* key, CodeUnit const* name) {
    return Pass(RegistryCall::DeleteValue, &Registry::RegDeleteValueW, key, name);
}

std::uint32_t CountingRegistry::RegSaveKeyW(void* key, CodeUnit const* path, void const* security) {
    return Pass(RegistryCall::SaveKey, &Registry::RegSaveKeyW, key, path, security);
}

} // namespace QMT
