// What all that keeps a chain of registry keys has in common.
#pragma once

#include <cstddef>
#include <cstdint>

#include "qmt/config/registry_tree.h"
#include "qmt/platform/registry.h"

namespace QMT {

// A key opened for one call. Check error before the use of the key.
class ShortlyOpenKey {
public:
    ShortlyOpenKey() = default;
    ShortlyOpenKey(ShortlyOpenKey const&) = delete;
    ShortlyOpenKey& operator=(ShortlyOpenKey const&) = delete;
    ~ShortlyOpenKey();

    // Each gives 0 or the registry's error. The first opens for reading, the second for everything, and
    // creates the key when it is missing.
    std::uint32_t OpenExisting(void* parent, String const& name, std::uint32_t access);
    std::uint32_t OpenOrCreate(void* parent, String const& name);

    void* Handle() const { return handle; }

private:
    void* handle = nullptr;
};

// The text of a value of an open key, whatever its type; it ends at the first zero, or where the data ends.
// Empty when there is no such value, or when it grows while it is read.
String ReadStringValue(void* key, String const& name);

// The text of an entry of a sub key, which is created when it is missing.
String ReadStringOfSection(void* parent, String const& section, String const& entry);

// Stores a text with its terminator; 0 or the registry's error.
std::uint32_t WriteStringValue(void* key, String const& name, String const& value);

// Units up to the first zero of data that need not be aligned. An odd byte at the end counts for nothing.
String TextOfData(unsigned char const* data, std::size_t size);

enum class MissingKeys { Fail, AreCreated };

// Adds the elements of a path to the chain, all closed.
void AppendChain(NonSortableVArray<TreeKey>& keys, String const& path);

// Opens those keys of the chain that are not open yet, in order. 0 for success, otherwise the registry's
// error for the key at the index reached; those in front of it are open.
std::uint32_t OpenChain(void* root, NonSortableVArray<TreeKey>& keys, bool readOnly, MissingKeys missing,
                        std::size_t& reached);

// Closes what is open, deepest first.
void CloseChain(NonSortableVArray<TreeKey>& keys);

// The root's name and the first count keys of the chain, with backslashes between them.
String ChainText(String const& rootName, NonSortableVArray<TreeKey> const& keys, std::size_t count);

// Room for a name and its terminator: for one of any length, or 500 code units.
enum class NameRoom { Grows, Is500 };

// Add the names of the sub keys, or of the values, of an open key to names. 0, or the registry's error that
// ended it; a name without room is one.
std::uint32_t AppendSubKeyNames(void* key, NameRoom room, VArray<String, String>& names);
std::uint32_t AppendValueNames(void* key, NameRoom room, VArray<String, String>& names);

} // namespace QMT
