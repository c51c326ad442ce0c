// The store of a registry in a database file. docs/registry_store.md tells what is in the file.
#pragma once

#include <array>
#include <string>

#include "platform/registry_files.h"
#include "platform/registry_sqlite.h"

namespace QMT::platform {

class DatabaseStore : public RegistryStore {
public:
    // The file is opened when it is needed. One for everyone keeps what those need who may only read it.
    DatabaseStore(std::string filePath, Readers fileReaders);

    SystemError FindKey(KeyNumber parent, RegistryTextView name, KeyNumber& key) override;
    SystemError AddKey(KeyNumber parent, RegistryTextView name, KeyNumber& key) override;
    SystemError RemoveKey(KeyNumber key) override;
    SystemError LocateKey(KeyNumber key, KeyNumber& parent, RegistryText& name) override;
    SystemError KeyNameAt(KeyNumber parent, std::uint32_t index, RegistryText& name) override;
    SystemError ValueNameAt(KeyNumber key, std::uint32_t index, RegistryText& name,
                            std::uint32_t& type) override;
    SystemError ReadValue(KeyNumber key, RegistryTextView name, RegistryValue& value) override;
    SystemError RemoveValue(KeyNumber key, RegistryTextView name) override;
    SystemError WriteValue(KeyNumber key, RegistryTextView name, std::uint32_t type,
                           std::string_view bytes) override;

private:
    enum StatementIndex {
        BeginReads,
        BeginWrites,
        CommitAll,
        RollBackAll,
        SelectKey,
        InsertKey,
        DeleteValuesOfKey,
        DeleteKey,
        SelectPlace,
        SelectKeyName,
        SelectNextKeyName,
        SelectValueName,
        SelectNextValueName,
        SelectValue,
        DeleteValue,
        UpsertValue,
        StatementCount
    };

    static std::array<char const*, StatementCount> const statementTexts;

    // The name that was listed last, so that the next one is found without counting from the first.
    struct ListedName {
        KeyNumber key = 0;
        std::uint32_t index = 0;
        RegistryText name;
    };

    SystemError MakeReady(bool forWriting) override;
    SystemError Begin(Span span) override;
    SystemError Commit() override;
    void RollBack() override;

    SystemError Connect(bool forWriting);
    SystemError SetUp();
    SystemError MakeTables();

    // The name at the index, by the statement for any index or the one behind it, which goes on from the
    // last. It becomes the last.
    SystemError ListName(StatementIndex anywhere, KeyNumber key, std::uint32_t index, ListedName& last,
                         std::uint32_t* type);
    void ForgetListedNames();

    sqlite3_stmt& Prepared(StatementIndex index) { return *statements[index]; }

    std::string path;
    Readers readers;
    Database database;
    std::array<Database::Statement, StatementCount> statements;
    bool isInSpan = false;
    ListedName listedKey;
    ListedName listedValue;
};

} // namespace QMT::platform
