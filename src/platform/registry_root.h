// The keys below one root of a registry.
#pragma once

#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "platform/registry_store.h"
#include "platform/registry_text.h"

namespace QMT::platform {

// The keys that have been found once, by parent and name. A key may have been deleted since by another
// process. Used from any thread.
class KnownKeys {
public:
    bool Find(KeyNumber parent, RegistryTextView name, KeyNumber& key) const;
    void Add(KeyNumber parent, RegistryTextView name, KeyNumber key);
    void Forget(KeyNumber key);

private:
    mutable std::mutex mutex;
    std::map<std::pair<KeyNumber, RegistryText>, KeyNumber> numbers;
};

// Ways through the keys of a store by paths of names, each in one transaction. Used from any thread.
class RegistryRoot {
public:
    RegistryRoot(std::unique_ptr<RegistryStore> keyStore, std::string_view rootName)
        : store(std::move(keyStore)), name(rootName) {}

    RegistryStore& Store() { return *store; }

    // Finds the key at the path below parent, which is the parent itself for a path without names.
    SystemError Find(KeyNumber parent, RegistryTextView path, KeyNumber& key);

    // Finds the key or makes it, with all keys that lead there. isKnown: it was there once, and nobody has
    // looked now.
    SystemError FindOrCreate(KeyNumber parent, RegistryTextView path, KeyNumber& key, bool& isNew,
                             bool& isKnown);

    // Takes note that a key has turned out to be gone.
    void Forget(KeyNumber key) { known.Forget(key); }

    // Deletes a key that has no sub keys. A path without names is refused.
    SystemError Remove(KeyNumber parent, RegistryTextView path);

    // Adds the key and all below it, each in front of its sub keys. Within the caller's transaction.
    SystemError ReadTree(KeyNumber key, std::vector<SavedKey>& keys);

private:
    struct PlacedKey {
        KeyNumber key;
        RegistryText path;
    };

    SystemError Walk(KeyNumber& key, RegistryTextView& path);
    SystemError Create(KeyNumber parent, RegistryTextView path, KeyNumber& key, bool& isNew);
    SystemError RemoveFound(KeyNumber key);
    SystemError PathOf(KeyNumber key, RegistryText& path);
    SystemError ReadValues(KeyNumber key, std::vector<SavedValue>& values);
    SystemError ReadSubKeyNames(KeyNumber key, std::vector<RegistryText>& names);
    SystemError AddSubKeys(PlacedKey const& key, std::vector<PlacedKey>& keys);

    std::unique_ptr<RegistryStore> store;
    KnownKeys known;
    std::string_view name;
};

// The error, or keyIsGone when the key is. Within a transaction.
SystemError IfKeyIsThere(RegistryStore& store, KeyNumber key, SystemError error);

} // namespace QMT::platform
