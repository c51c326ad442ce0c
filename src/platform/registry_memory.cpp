// The registry in memory.
#include <iterator>
#include <map>
#include <unordered_map>

#include "platform/registry_calls.h"
#include "platform/registry_names.h"

namespace QMT {

namespace platform {

namespace {

class MemoryStore : public RegistryStore {
public:
    MemoryStore() {
        constexpr std::string_view software = "Software";
        KeyNumber key = 0;
        MemoryStore::AddKey(rootKeyNumber, RegistryText(software.begin(), software.end()), key);
    }

    SystemError FindKey(KeyNumber parent, RegistryTextView name, KeyNumber& key) override {
        Key* const parentKey = KeyOf(parent);
        if (!parentKey) {
            return nothingThere;
        }
        auto const found = parentKey->subKeys.find(FoldedName(name));
        if (found == parentKey->subKeys.end()) {
            return nothingThere;
        }
        key = found->second;
        return 0;
    }

    SystemError AddKey(KeyNumber parent, RegistryTextView name, KeyNumber& key) override {
        key = nextNumber++;
        keys[key] = Key{parent, RegistryText(name), {}, {}};
        keys[parent].subKeys[FoldedName(name)] = key;
        return 0;
    }

    SystemError RemoveKey(KeyNumber key) override {
        Key const& removed = keys[key];
        keys[removed.parent].subKeys.erase(FoldedName(removed.name));
        keys.erase(key);
        return 0;
    }

    SystemError LocateKey(KeyNumber key, KeyNumber& parent, RegistryText& name) override {
        Key const* const located = KeyOf(key);
        if (!located) {
            return keyIsGone;
        }
        parent = located->parent;
        name = located->name;
        return 0;
    }

    SystemError KeyNameAt(KeyNumber parent, std::uint32_t index, RegistryText& name) override {
        Key const* const parentKey = KeyOf(parent);
        if (!parentKey || index >= parentKey->subKeys.size()) {
            return nothingThere;
        }
        name = keys[std::next(parentKey->subKeys.begin(), index)->second].name;
        return 0;
    }

    SystemError ValueNameAt(KeyNumber key, std::uint32_t index, RegistryText& name,
                            std::uint32_t& type) override {
        Key const* const holder = KeyOf(key);
        if (!holder || index >= holder->values.size()) {
            return nothingThere;
        }
        NamedValue const& found = std::next(holder->values.begin(), index)->second;
        name = found.name;
        type = found.value.type;
        return 0;
    }

    SystemError ReadValue(KeyNumber key, RegistryTextView name, RegistryValue& value) override {
        Key* const holder = KeyOf(key);
        auto const* const found = holder ? FindValue(*holder, name) : nullptr;
        if (!found) {
            return nothingThere;
        }
        value = found->value;
        return 0;
    }

    SystemError RemoveValue(KeyNumber key, RegistryTextView name) override {
        Key* const holder = KeyOf(key);
        return holder && holder->values.erase(FoldedName(name)) > 0 ? SystemError{} : nothingThere;
    }

    SystemError WriteValue(KeyNumber key, RegistryTextView name, std::uint32_t type,
                           std::string_view bytes) override {
        Key* const holder = KeyOf(key);
        if (!holder) {
            return keyIsGone;
        }
        NamedValue fresh{RegistryText(name), {}};
        holder->values.try_emplace(FoldedName(name), std::move(fresh)).first->second.value = {
            type, std::string(bytes)};
        return 0;
    }

private:
    struct NamedValue {
        RegistryText name;
        RegistryValue value;
    };

    struct Key {
        KeyNumber parent = 0;
        RegistryText name;
        std::map<RegistryText, KeyNumber> subKeys; // by folded name, as the values are
        std::map<RegistryText, NamedValue> values;
    };

    // Nothing can fail between the changes of one transaction.
    SystemError MakeReady(bool) override { return 0; }

    SystemError Begin(Span) override { return 0; }

    SystemError Commit() override { return 0; }

    void RollBack() override {}

    Key* KeyOf(KeyNumber number) {
        auto const found = keys.find(number);
        return found == keys.end() ? nullptr : &found->second;
    }

    static NamedValue const* FindValue(Key const& key, RegistryTextView name) {
        auto const found = key.values.find(FoldedName(name));
        return found == key.values.end() ? nullptr : &found->second;
    }

    std::unordered_map<KeyNumber, Key> keys{{rootKeyNumber, {}}};
    KeyNumber nextNumber = rootKeyNumber + 1;
};

} // namespace

} // namespace platform

std::unique_ptr<Registry> MakeMemoryRegistry() {
    using platform::MemoryStore;
    return std::make_unique<platform::StoredRegistry>(std::make_unique<MemoryStore>(),
                                                      std::make_unique<MemoryStore>());
}

} // namespace QMT
