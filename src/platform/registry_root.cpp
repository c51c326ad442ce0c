#include "platform/registry_root.h"

#include "platform/registry_names.h"

namespace QMT::platform {

namespace {

using Span = RegistryStore::Span;

bool IsOneName(RegistryTextView path) {
    return !path.empty() && path.find(u'\\') == RegistryTextView::npos;
}

} // namespace

SystemError IfKeyIsThere(RegistryStore& store, KeyNumber key, SystemError error) {
    KeyNumber parent = 0;
    RegistryText name;
    SystemError const missing = store.LocateKey(key, parent, name);
    return missing ? missing : error;
}

// ---- KnownKeys

bool KnownKeys::Find(KeyNumber parent, RegistryTextView name, KeyNumber& key) const {
    std::scoped_lock const lock(mutex);
    auto const found = numbers.find({parent, FoldedName(name)});
    if (found == numbers.end()) {
        return false;
    }
    key = found->second;
    return true;
}

void KnownKeys::Add(KeyNumber parent, RegistryTextView name, KeyNumber key) {
    std::scoped_lock const lock(mutex);
    numbers[{parent, FoldedName(name)}] = key;
}

void KnownKeys::Forget(KeyNumber key) {
    std::scoped_lock const lock(mutex);
    std::erase_if(numbers, [key](auto const& entry) { return entry.second == key; });
}

// ---- finding, making, removing

// Goes down the path as far as there are keys. After nothingThere the path begins with the name that is
// missing below key.
SystemError RegistryRoot::Walk(KeyNumber& key, RegistryTextView& path) {
    RegistryTextView rest = path;
    for (RegistryTextView element; TakeFirstName(rest, element); path = rest) {
        KeyNumber child = 0;
        if (SystemError const error = store->FindKey(key, element, child)) {
            return error;
        }
        known.Add(key, element, child);
        key = child;
    }
    return 0;
}

SystemError RegistryRoot::Find(KeyNumber parent, RegistryTextView path, KeyNumber& key) {
    Transaction transaction(*store, IsOneName(path) ? Span::OneRead : Span::SeveralReads);
    if (SystemError const error = transaction.Begin()) {
        return error;
    }
    key = parent;
    SystemError const error = Walk(key, path);
    return transaction.End(key == parent ? IfKeyIsThere(*store, parent, error) : error);
}

SystemError RegistryRoot::Create(KeyNumber parent, RegistryTextView path, KeyNumber& key, bool& isNew) {
    Transaction transaction(*store, Span::SeveralWrites);
    if (SystemError const error = transaction.Begin()) {
        return error;
    }
    key = parent;
    SystemError error = IfKeyIsThere(*store, parent, Walk(key, path));
    isNew = error == nothingThere;
    if (isNew) {
        error = 0;
        for (RegistryTextView element; !error && TakeFirstName(path, element);) {
            KeyNumber const above = key;
            error = store->AddKey(above, element, key);
        }
    }
    return transaction.End(error);
}

SystemError RegistryRoot::FindOrCreate(KeyNumber parent, RegistryTextView path, KeyNumber& key, bool& isNew,
                                       bool& isKnown) {
    isNew = false;
    isKnown = IsOneName(path) && known.Find(parent, path, key);
    if (isKnown) {
        return 0;
    }
    SystemError error = Find(parent, path, key);
    if (error == nothingThere) {
        error = store->Open(true);
        if (!error) {
            error = Create(parent, path, key, isNew);
        }
    }
    return error;
}

SystemError RegistryRoot::RemoveFound(KeyNumber key) {
    RegistryText subKey;
    SystemError const error = store->KeyNameAt(key, 0, subKey);
    if (error == nothingThere) {
        return store->RemoveKey(key);
    }
    return error ? error : hasSubKeys;
}

SystemError RegistryRoot::Remove(KeyNumber parent, RegistryTextView path) {
    Transaction transaction(*store, Span::SeveralWrites);
    if (SystemError const error = transaction.Begin()) {
        return error;
    }
    KeyNumber key = parent;
    SystemError error = IfKeyIsThere(*store, parent, Walk(key, path));
    if (!error) {
        error = key == parent ? badArgument : RemoveFound(key);
    }
    error = transaction.End(error);
    if (!error) {
        known.Forget(key);
    }
    return error;
}

// ---- reading all

// Adds the root's name and those that lead to the key, with backslashes between them.
SystemError RegistryRoot::PathOf(KeyNumber key, RegistryText& path) {
    RegistryText below;
    while (key != rootKeyNumber) {
        RegistryText element;
        if (SystemError const error = store->LocateKey(key, key, element)) {
            return error;
        }
        below.insert(0, element);
        below.insert(below.begin(), u'\\');
    }
    path = RegistryText(name.begin(), name.end()) + below;
    return 0;
}

SystemError RegistryRoot::ReadValues(KeyNumber key, std::vector<SavedValue>& values) {
    SystemError error = 0;
    for (std::uint32_t index = 0; !error; ++index) {
        SavedValue value;
        error = store->ValueNameAt(key, index, value.name, value.value.type);
        if (!error) {
            error = store->ReadValue(key, value.name, value.value);
        }
        if (!error) {
            values.push_back(std::move(value));
        }
    }
    return error == nothingThere ? 0 : error;
}

SystemError RegistryRoot::ReadSubKeyNames(KeyNumber key, std::vector<RegistryText>& names) {
    SystemError error = 0;
    for (RegistryText element; !error;) {
        error = store->KeyNameAt(key, static_cast<std::uint32_t>(names.size()), element);
        if (!error) {
            names.push_back(element);
        }
    }
    return error == nothingThere ? 0 : error;
}

SystemError RegistryRoot::ReadTree(KeyNumber key, std::vector<SavedKey>& keys) {
    RegistryText path;
    SystemError error = PathOf(key, path);
    std::vector<PlacedKey> left{
        {key, std::move(path)}}; // the next one is the last; keys may be nested deeply
    while (!error && !left.empty()) {
        PlacedKey const next = std::move(left.back());
        left.pop_back();
        SavedKey saved{next.path, {}};
        error = ReadValues(next.key, saved.values);
        keys.push_back(std::move(saved));
        if (!error) {
            error = AddSubKeys(next, left);
        }
    }
    return error;
}

// Adds them in reverse order.
SystemError RegistryRoot::AddSubKeys(PlacedKey const& key, std::vector<PlacedKey>& keys) {
    std::vector<RegistryText> names;
    SystemError error = ReadSubKeyNames(key.key, names);
    for (std::size_t i = names.size(); i-- > 0 && !error;) {
        KeyNumber subKey = 0;
        error = store->FindKey(key.key, names[i], subKey);
        keys.push_back({subKey, RegistryText(key.path).append(1, u'\\').append(names[i])});
    }
    return error;
}

} // namespace QMT::platform
