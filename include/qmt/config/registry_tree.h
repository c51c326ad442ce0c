// One chain of nested keys of the registry.
#pragma once

#include "qmt/export.h"
#include "qmt/general/containers.h"
#include "qmt/general/errors.h"
#include "qmt/general/string.h"

namespace QMT {

// One link of a chain of keys.
struct TreeKey {
    String name;            // one element of the path
    void* handle = nullptr; // once it is open
    bool isOpen = false;    // true once the chain's owner has opened it and must close it
};

// Direct access to the registry below one key.
//
// The caller names a root, or any open key, which stays his and stays open, and a path of key names below it,
// parted by backslashes. He calls CheckExists or EnsureExists, once is enough, and then the rest, from one
// thread at a time. The root's name stands in messages only.
//
// Guaranteed: the path is walked once, and its keys stay open until the destructor; the access of the first
// walk holds from then on, true for KEY_READ, false for KEY_ALL_ACCESS. A walk that fails keeps what it has
// opened, and the next one goes on from there. Results are null for success and otherwise an error that the
// caller owns; after a failure nothing is changed. Reads never report a failure: a missing value and an empty
// one look the same. Nothing throws. Every call enters the system.
//
// The current key is the last of the path, or the root when the path is empty. What works on the last key of
// the path fails when there is none.
//
//     RealRegistryTree tree(HKEY_CURRENT_USER, u"HKEY_CURRENT_USER", u"Software\\Maker\\Program");
//     if (ErrorInfo* error = tree.EnsureExists(false)) {
//         return error;
//     }
//     return tree.WriteProfileStr(u"Version", u"2.1");
class QMT_UTILU_API RealRegistryTree {
public:
    // Opens nothing.
    RealRegistryTree(void* root, String nameOfRoot, String keyPath);
    RealRegistryTree(RealRegistryTree const&) = delete;
    RealRegistryTree& operator=(RealRegistryTree const&) = delete;
    ~RealRegistryTree();

    // Opens the path's keys; a missing one is a failure.
    ErrorInfo* CheckExists(bool readOnly);

    // The same, but creates what is missing.
    ErrorInfo* EnsureExists(bool readOnly);

    // The text of an entry of a sub key of the current key, which is created when it is missing.
    String GetStringNoDefault(String section, String entry);

    // The text of a value of the path's last key.
    String GetData(String entry);

    // Adds to values the texts of several entries of a sub key of the current key, all as they stand at one
    // moment; the sub key is created when it is missing. One name that cannot be read fails the whole.
    ErrorInfo* ReadMultipleValues(String section, VArray<String, String> names,
                                  VArray<String, String>& values);

    // Store a text or a number in the path's last key. A number is not read back as text.
    ErrorInfo* WriteProfileStr(String entry, String value);
    ErrorInfo* WriteProfileDWORD(String entry, unsigned long int value);

    // Add to names those of the current key's sub keys, or of the values of the path's last key. A name of
    // 500 units or more ends that with an error; those in front of it are added.
    ErrorInfo* EnumSubKeys(VArray<String, String>& names);
    ErrorInfo* EnumValueNames(VArray<String, String>& names);

    // Deletes a sub key of the current key, which must have no sub keys itself.
    ErrorInfo* DeleteSubKey(String subKey);

    // Deletes a value of the path's last key.
    ErrorInfo* DeleteValue(String entry);

    // Saves the current key and all below it in place of the file, as text that registry editors read.
    ErrorInfo* Export(String filePath);

    // Does nothing and gives null.
    ErrorInfo* Import(String filePath);

private:
    void* CurrentKey() const;
    void* LastKey() const;
    String PathTo(String const& subKey) const;

    void* rootKey;
    String rootName;
    NonSortableVArray<TreeKey> keys;
};

} // namespace QMT
