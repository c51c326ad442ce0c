// A registry over two stores.
#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <unordered_map>

#include "platform/registry_root.h"
#include "qmt/platform/registry.h"

namespace QMT::platform {

// Gives the operations their meaning over what the stores can do.
//
// RegCreateKeyExW for a name that is known is answered from memory: a read or write of an entry then takes
// one transaction and not two. That the key is still there shows at the first use of the handle, which makes
// it anew if another process has deleted it. A value that was too long for the room is kept for the next
// query of it, which brings that room: if another process makes it longer meanwhile, that does not fail.
class StoredRegistry : public Registry {
public:
    StoredRegistry(std::unique_ptr<RegistryStore> userStore, std::unique_ptr<RegistryStore> machineStore);

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
    struct UnfitValue {
        RegistryText name;
        RegistryValue value;
        std::uint64_t change; // the last one in front of it
    };

    struct OpenKey {
        OpenKey(RegistryRoot& keyRoot, KeyNumber keyNumber, std::uint32_t keyAccess)
            : root(keyRoot), number(keyNumber), access(keyAccess) {}

        RegistryRoot& root;
        std::atomic<KeyNumber> number;
        std::uint32_t access;

        // Where to make the key anew while nobody has looked whether it is still there.
        std::atomic<bool> isUnchecked{false};
        KeyNumber parent = 0;
        RegistryText path;

        // The value that did not fit in the caller's room.
        std::mutex mutex;
        std::optional<UnfitValue> unfit;
    };

    using OpenKeyPointer = std::shared_ptr<OpenKey>;

    OpenKeyPointer KeyOf(void* handle);
    void* HandOut(OpenKeyPointer key);

    static SystemError MakeAnew(OpenKey& key);

    bool TakeUnfit(OpenKey& key, RegistryTextView name, std::uint32_t room, RegistryValue& value);

    template <class Operation>
    SystemError OnKey(OpenKeyPointer const& key, std::uint32_t right, RegistryStore::Span span,
                      Operation operation);
    template <class Operation>
    SystemError OnKey(void* handle, std::uint32_t right, RegistryStore::Span span, Operation operation);

    RegistryRoot user;
    RegistryRoot machine;
    std::atomic<std::uint64_t> changes{0}; // through this registry
    std::mutex mutex;                      // guards what follows
    std::unordered_map<std::uintptr_t, OpenKeyPointer> openKeys;
    std::uintptr_t lastHandle = 0;
};

} // namespace QMT::platform
