// A registry that counts the calls to another and fails on demand. Exported for tests; not public.
#pragma once

#include <array>
#include <functional>

#include "qmt/export.h"
#include "qmt/platform/registry.h"

namespace QMT {

enum class RegistryCall {
    OpenKey,
    CreateKey,
    CloseKey,
    QueryValue,
    QueryMultipleValues,
    SetValue,
    EnumKey,
    EnumValue,
    DeleteKey,
    DeleteValue,
    SaveKey,
    Count // of the kinds
};

// Passes every call on to the inner registry, which must outlive it. Used by one thread at a time.
//
//     CountingRegistry registry(*inner);
//     registry.Before(RegistryCall::SetValue, [] { return 28u; }); // the disc is full
//     EXPECT_EQ(registry.Calls(RegistryCall::QueryValue), 1);
class QMT_UTILU_API CountingRegistry : public Registry {
public:
    explicit CountingRegistry(Registry& innerRegistry) : inner(innerRegistry) {}

    ~CountingRegistry() override;

    // How many calls of the kind, or of all kinds, there were since the last Reset.
    int Calls(RegistryCall call) const { return counts[static_cast<std::size_t>(call)]; }

    int Calls() const;

    void Reset() { counts = {}; }

    // Does the action in front of each call of the kind. When it gives anything but 0, that is the result,
    // and the call is not passed on. An empty action ends that.
    void Before(RegistryCall call, std::function<std::uint32_t()> action);

    std::uint32_t RegOpenKeyExW(void* parent, CodeUnit const* subKey, std::uint32_t options,
                                std::uint32_t access, void** key) override;
    std::uint32_t RegCreateKeyExW(void* parent, CodeUnit const* subKey, std::uint32_t reserved,
                                  CodeUnit const* keyClass, std::uint32_t options, std::uint32_t access,
                                  void const* security, void** key, std::uint32_t* disposition) override;
    std::uint32_t RegCloseKey(void* key) override;
    std::uint32_t RegQueryValueExW(void* key, CodeUnit const* name, std::uint32_t* reserved,
                                   std::uint32_t* type, void* data, std::uint32_t* size) override;
    std::uint32_t RegQueryMultipleValuesW(void* key, VALENTW* values, std::uint32_t count, void* buffer,
                                          std::uint32_t* totalSize) override;
    std::uint32_t RegSetValueExW(void* key, CodeUnit const* name, std::uint32_t reserved, std::uint32_t type,
                                 void const* data, std::uint32_t size) override;
    std::uint32_t RegEnumKeyExW(void* key, std::uint32_t index, CodeUnit* name, std::uint32_t* size,
                                std::uint32_t* reserved, CodeUnit* keyClass, std::uint32_t* classSize,
                                std::uint64_t* lastWritten) override;
    std::uint32_t RegEnumValueW(void* key, std::uint32_t index, CodeUnit* name, std::uint32_t* size,
                                std::uint32_t* reserved, std::uint32_t* type, void* data,
                                std::uint32_t* dataSize) override;
    std::uint32_t RegDeleteKeyW(void* key, CodeUnit const* subKey) override;
    std::uint32_t RegDeleteValueW(void* key, CodeUnit const* name) override;
    std::uint32_t RegSaveKeyW(void* key, CodeUnit const* path, void const* security) override;

private:
    static constexpr auto kinds = static_cast<std::size_t>(RegistryCall::Count);

    template <class... Parameters, class... Arguments>
    std::uint32_t Pass(RegistryCall call, std::uint32_t (Registry::*operation)(Parameters...),
                       Arguments... arguments);

    Registry& inner;
    std::array<int, kinds> counts{};
    std::array<std::function<std::uint32_t()>, kinds> actions;
};

} // namespace QMT
