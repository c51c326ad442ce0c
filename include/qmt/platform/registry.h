// The registry as the library calls it, and the choice of the one that it calls.
//
// The operations bear the names that Windows gives them, and take the same arguments. Where the system has a
// registry they go straight to it; elsewhere the library keeps one in two databases, which
// docs/registry_store.md describes.
#pragma once

#include <cstdint>
#include <memory>

#include "qmt/export.h"
#include "qmt/general/code_unit.h"

namespace QMT {

// The platform's own vocabulary. Its headers define these as macros of the same values.
// NOLINTBEGIN(readability-identifier-naming,performance-no-int-to-ptr): names and values are fixed
#if !defined(HKEY_CURRENT_USER)
inline void* const HKEY_CURRENT_USER = reinterpret_cast<void*>(std::intptr_t{-0x7FFFFFFF});
inline void* const HKEY_LOCAL_MACHINE = reinterpret_cast<void*>(std::intptr_t{-0x7FFFFFFE});
#endif
#if !defined(KEY_READ)
inline constexpr std::uint32_t KEY_READ = 0x20019;
inline constexpr std::uint32_t KEY_ALL_ACCESS = 0xF003F;
#endif
#if !defined(REG_SZ)
inline constexpr std::uint32_t REG_SZ = 1;
inline constexpr std::uint32_t REG_DWORD = 4;
#endif
#if !defined(ERROR_MORE_DATA)
inline constexpr std::uint32_t ERROR_MORE_DATA = 234;
inline constexpr std::uint32_t ERROR_NO_MORE_ITEMS = 259;
#endif
// NOLINTEND(readability-identifier-naming,performance-no-int-to-ptr)

// One value of RegQueryMultipleValuesW: the caller names it, the call fills in the rest.
struct VALENTW {
    CodeUnit const* name;
    std::uint32_t size;  // bytes
    unsigned char* data; // in the caller's buffer, without any alignment
    std::uint32_t type;
};

// A tree of keys below two roots; a key holds named values and sub keys.
//
// The caller closes every key that he opens, before the registry goes, and gives names and paths that end in
// a zero. The roots HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE stand for open keys and need no closing. A sub
// key's name may be a path with backslashes; an empty name is the key itself.
//
// Guaranteed: each call has happened whole or not at all, between processes too, and may come from any
// thread. The result is 0 for success and otherwise the system's error number, besides ERROR_MORE_DATA and
// ERROR_NO_MORE_ITEMS; after a failure nothing is changed, neither in the registry nor behind a pointer but
// as said below. Names are told apart without regard to the case of ASCII letters, and keep the form they
// were made with. A handle of null, or one that is closed, fails the call. Every call may enter the system,
// allocate, and wait for other threads and processes.
//
// A registry of the system's own keeps to its own rules where they differ: it knows the case of all letters,
// refuses a path that begins with a backslash or has two in a row, may change what stands behind pointers
// other than a key's after a failure, and may give the handle of a closed key to another.
//
//     void* key = nullptr;
//     if (GetRegistry().RegOpenKeyExW(HKEY_CURRENT_USER, u"Software", 0, KEY_READ, &key) == 0) {
//         ...
//         GetRegistry().RegCloseKey(key);
//     }
class QMT_UTILU_API Registry {
public:
    virtual ~Registry();

    // Opens an existing key. KEY_READ allows reading and listing, KEY_ALL_ACCESS everything; access that the
    // user does not have is refused.
    virtual std::uint32_t RegOpenKeyExW(void* parent, CodeUnit const* subKey, std::uint32_t options,
                                        std::uint32_t access, void** key) = 0;

    // Opens the key and creates what is missing of its path; whether that is allowed depends on the user, not
    // on the access of parent. The disposition, unless null, becomes 1 for a new key, 2 for one that was
    // there. Class and security are null, options 0.
    virtual std::uint32_t RegCreateKeyExW(void* parent, CodeUnit const* subKey, std::uint32_t reserved,
                                          CodeUnit const* keyClass, std::uint32_t options,
                                          std::uint32_t access, void const* security, void** key,
                                          std::uint32_t* disposition) = 0;

    virtual std::uint32_t RegCloseKey(void* key) = 0;

    // Copies a value's data and gives its type and its size in bytes; type and data may be null. A buffer
    // that is too small gives ERROR_MORE_DATA and the size needed; when the very next query of the handle
    // brings that room, no other process can have made the value longer.
    virtual std::uint32_t RegQueryValueExW(void* key, CodeUnit const* name, std::uint32_t* reserved,
                                           std::uint32_t* type, void* data, std::uint32_t* size) = 0;

    // Copies the data of several values, as they stand at one moment, into the buffer, and fills in the
    // records. A null buffer, or one that is too small, gives ERROR_MORE_DATA and the total size needed.
    virtual std::uint32_t RegQueryMultipleValuesW(void* key, VALENTW* values, std::uint32_t count,
                                                  void* buffer, std::uint32_t* totalSize) = 0;

    // Stores or replaces a value: size bytes of data.
    virtual std::uint32_t RegSetValueExW(void* key, CodeUnit const* name, std::uint32_t reserved,
                                         std::uint32_t type, void const* data, std::uint32_t size) = 0;

    // The name of the sub key or value at the index. The size comes in as the room for the name and its
    // terminator, in code units, and goes out as the length without it. A longer name gives ERROR_MORE_DATA,
    // an index behind the last ERROR_NO_MORE_ITEMS. The time, unless null, becomes 0 where it is not known.
    virtual std::uint32_t RegEnumKeyExW(void* key, std::uint32_t index, CodeUnit* name, std::uint32_t* size,
                                        std::uint32_t* reserved, CodeUnit* keyClass, std::uint32_t* classSize,
                                        std::uint64_t* lastWritten) = 0;
    virtual std::uint32_t RegEnumValueW(void* key, std::uint32_t index, CodeUnit* name, std::uint32_t* size,
                                        std::uint32_t* reserved, std::uint32_t* type, void* data,
                                        std::uint32_t* dataSize) = 0;

    // Deletes a sub key with its values. One that has sub keys itself stays, and the call fails.
    virtual std::uint32_t RegDeleteKeyW(void* key, CodeUnit const* subKey) = 0;
    virtual std::uint32_t RegDeleteValueW(void* key, CodeUnit const* name) = 0;

    // Writes the key and all below it, as they stand at one moment, to a new file; one that exists is a
    // failure. It is text that registry editors read; a registry of the system's own writes its own form, and
    // refuses a process that has not turned on its user's right to make backups.
    virtual std::uint32_t RegSaveKeyW(void* key, CodeUnit const* path, void const* security) = 0;
};

// The registry that the library uses: the one put in by UseRegistry, otherwise the system's.
QMT_UTILU_API Registry& GetRegistry();

// Puts a registry in place of the system's, which null brings back; the caller owns it and gets back the one
// in use before, null for the system's. While it is called no RealRegistryTree or AppConfig may exist.
QMT_UTILU_API Registry* UseRegistry(Registry* registry);

// Sets where the system's registry keeps the two databases, where it has any. It counts when called before
// that registry's first use; later it changes nothing and gives false.
QMT_UTILU_API bool SetRegistryFiles(CodeUnit const* userFile, CodeUnit const* machineFile);

// A registry in the two databases; null where the system has a registry of its own. A database is made, with
// the directories that lead to it, when a key of it is first opened for more than reading or created. Until
// then it counts as empty. A process that forks may use it in one of the two only.
QMT_UTILU_API std::unique_ptr<Registry> MakeDatabaseRegistry(CodeUnit const* userFile,
                                                             CodeUnit const* machineFile);

// A registry in memory, empty and gone with the object.
QMT_UTILU_API std::unique_ptr<Registry> MakeMemoryRegistry();

} // namespace QMT
