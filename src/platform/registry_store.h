// Where a registry keeps the keys of one root.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/registry_errors.h"
#include "platform/system_errors.h"
#include "qmt/general/code_unit.h"

namespace QMT::platform {

using RegistryText = std::basic_string<CodeUnit>;
using RegistryTextView = std::basic_string_view<CodeUnit>;

// A key's number, never given to another key of the store, not even after the key is deleted.
using KeyNumber = std::int64_t;

inline constexpr KeyNumber rootKeyNumber = 1;

struct RegistryValue {
    std::uint32_t type = 0;
    std::string bytes;
};

// Keys and values behind elementary operations.
//
// The caller opens the store, and calls every other operation within a Transaction. Names hold no zero.
//
// Guaranteed: names are compared without the case of ASCII letters and listed in that order; the root is
// always there, and a new store has a key Software below it. Operations give 0 for success, otherwise an
// error number with nothing changed.
class RegistryStore {
public:
    // What is done in one transaction. A single operation may take less to keep whole.
    enum class Span { OneRead, SeveralReads, OneWrite, SeveralWrites };

    virtual ~RegistryStore() = default;

    // Makes the store ready, and makes it anew for writing when it is missing. nothingThere: it is missing.
    // accessRefused: it may only be read. May be called again at any time outside a transaction.
    SystemError Open(bool forWriting) {
        std::scoped_lock const lock(mutex);
        return MakeReady(forWriting);
    }

    virtual SystemError FindKey(KeyNumber parent, RegistryTextView name, KeyNumber& key) = 0;

    // The key must be missing and its parent there.
    virtual SystemError AddKey(KeyNumber parent, RegistryTextView name, KeyNumber& key) = 0;

    // The key must have no sub keys. Its values go with it.
    virtual SystemError RemoveKey(KeyNumber key) = 0;

    // Where a key stands; keyIsGone when it does no more. The root has no parent, 0, and no name.
    virtual SystemError LocateKey(KeyNumber key, KeyNumber& parent, RegistryText& name) = 0;

    // The name at the index among the sub keys, or among the values. nothingThere: the index is too large,
    // or the key is gone.
    virtual SystemError KeyNameAt(KeyNumber parent, std::uint32_t index, RegistryText& name) = 0;
    virtual SystemError ValueNameAt(KeyNumber key, std::uint32_t index, RegistryText& name,
                                    std::uint32_t& type) = 0;

    // nothingThere: no such value, or the key is gone.
    virtual SystemError ReadValue(KeyNumber key, RegistryTextView name, RegistryValue& value) = 0;
    virtual SystemError RemoveValue(KeyNumber key, RegistryTextView name) = 0;

    // keyIsGone when the key is.
    virtual SystemError WriteValue(KeyNumber key, RegistryTextView name, std::uint32_t type,
                                   std::string_view bytes) = 0;

private:
    friend class Transaction;

    virtual SystemError MakeReady(bool forWriting) = 0;

    // nothingThere when the store is not open.
    virtual SystemError Begin(Span span) = 0;
    virtual SystemError Commit() = 0;
    virtual void RollBack() = 0;

    std::mutex mutex;
};

// One thread's use of a store, at one moment as others see it. Without Commit everything is taken back.
//
//     Transaction transaction(store, RegistryStore::Span::OneRead);
//     SystemError error = transaction.Begin();
//     if (!error) {
//         error = store.ReadValue(key, name, value);
//     }
//     return transaction.End(error);
class Transaction {
public:
    Transaction(RegistryStore& usedStore, RegistryStore::Span usedSpan)
        : store(usedStore), span(usedSpan), lock(usedStore.mutex) {}

    Transaction(Transaction const&) = delete;
    Transaction& operator=(Transaction const&) = delete;

    ~Transaction() {
        if (isOpen) {
            store.RollBack();
        }
    }

    SystemError Begin() {
        SystemError const error = store.Begin(span);
        isOpen = error == 0;
        return error;
    }

    // Keeps what was done when there was no error, and gives the error, or that of keeping it.
    SystemError End(SystemError error) {
        if (!error) {
            error = store.Commit();
            isOpen = error != 0;
        }
        return error;
    }

private:
    RegistryStore& store;
    RegistryStore::Span span;
    std::scoped_lock<std::mutex> lock;
    bool isOpen = false;
};

} // namespace QMT::platform
