#include "platform/registry_database.h"

#include <utility>

namespace QMT::platform {

namespace {

constexpr std::int64_t formatVersion = 1;

// 0 for a file with nothing in it, -1 for one of another program.
constexpr char selectVersion[] = R"(
    SELECT CASE
        WHEN application_id = 0x514D5452 THEN user_version
        WHEN user_version = 0 AND NOT EXISTS (SELECT 1 FROM sqlite_master) THEN 0
        ELSE -1 END
    FROM pragma_application_id, pragma_user_version
)";

// The number in front marks the file as one of this library.
constexpr char makeTables[] = R"(
    PRAGMA application_id = 0x514D5452;
    PRAGMA user_version = 1;
    CREATE TABLE keys (
        number INTEGER PRIMARY KEY AUTOINCREMENT,
        parent INTEGER REFERENCES keys,
        name   TEXT NOT NULL COLLATE NOCASE,
        UNIQUE (parent, name));
    CREATE TABLE entries (
        key  INTEGER NOT NULL REFERENCES keys,
        name TEXT NOT NULL COLLATE NOCASE,
        type INTEGER NOT NULL,
        data BLOB NOT NULL,
        PRIMARY KEY (key, name)) WITHOUT ROWID;
    INSERT INTO keys VALUES (1, NULL, ''), (2, 1, 'Software');
)";

} // namespace

std::array<char const*, DatabaseStore::StatementCount> const DatabaseStore::statementTexts = {
    "BEGIN",
    "BEGIN IMMEDIATE",
    "COMMIT",
    "ROLLBACK",
    "SELECT number FROM keys WHERE parent = ? AND name = ?",
    "INSERT INTO keys (parent, name) VALUES (?, ?) RETURNING number",
    "DELETE FROM entries WHERE key = ?",
    "DELETE FROM keys WHERE number = ?",
    "SELECT parent, name FROM keys WHERE number = ?",
    "SELECT name FROM keys WHERE parent = ? ORDER BY name LIMIT 1 OFFSET ?",
    "SELECT name FROM keys WHERE parent = ? AND name > ? ORDER BY name LIMIT 1",
    "SELECT name, type FROM entries WHERE key = ? ORDER BY name LIMIT 1 OFFSET ?",
    "SELECT name, type FROM entries WHERE key = ? AND name > ? ORDER BY name LIMIT 1",
    "SELECT type, data FROM entries WHERE key = ? AND name = ?",
    "DELETE FROM entries WHERE key = ? AND name = ?",
    "INSERT INTO entries SELECT ?1, ?2, ?3, ?4 WHERE EXISTS (SELECT 1 FROM keys WHERE number = ?1) "
    "ON CONFLICT DO UPDATE SET type = excluded.type, data = excluded.data",
};

DatabaseStore::DatabaseStore(std::string filePath, Readers fileReaders)
    : path(std::move(filePath)), readers(fileReaders) {}

// ---- opening

SystemError DatabaseStore::MakeReady(bool forWriting) {
    SystemError const error = database.IsOpen() ? 0 : Connect(forWriting);
    if (error || !forWriting) {
        return error;
    }
    return database.IsReadOnly() ? accessRefused : 0;
}

SystemError DatabaseStore::Connect(bool forWriting) {
    if (path.empty()) {
        return nothingThere;
    }
    SystemError error = forWriting ? MakeDatabaseFile(path, readers) : 0;
    if (!error) {
        error = database.Open(path);
    }
    if (!error) {
        error = SetUp();
    }
    if (error) {
        for (Database::Statement& statement : statements) {
            statement.reset();
        }
        database.Close();
    }
    return error;
}

SystemError DatabaseStore::SetUp() {
    if (readers == Readers::Everyone) {
        if (SystemError const error = database.KeepLog()) {
            return error;
        }
    }
    if (SystemError const error = MakeTables()) {
        return error;
    }
    for (std::size_t i = 0; i < statements.size(); ++i) {
        if (SystemError const error = database.Prepare(statementTexts[i], statements[i])) {
            return error;
        }
    }
    return 0;
}

// Turns the log on, and makes the tables in a file that has none yet, which several processes may find at
// once. A file that is none of the library's stays as it is.
SystemError DatabaseStore::MakeTables() {
    std::int64_t version = 0;
    if (SystemError const error = database.ReadNumber(selectVersion, version)) {
        return error;
    }
    bool const isEmpty = version == 0;
    if (!isEmpty && version != formatVersion) {
        return ENOTSUP;
    }
    if (database.IsReadOnly()) {
        return isEmpty ? nothingThere : 0;
    }
    SystemError error = database.UseWriteAheadLog();
    if (!error && isEmpty) {
        error = database.Run("BEGIN IMMEDIATE");
        if (!error) {
            error = database.ReadNumber(selectVersion, version);
        }
        if (!error && version == 0) {
            error = database.Run(makeTables);
        }
        if (!error) {
            error = database.Run("COMMIT");
        }
    }
    return error;
}

// ---- transactions

SystemError DatabaseStore::Begin(Span span) {
    if (!database.IsOpen()) {
        return nothingThere;
    }
    bool const isReading = span == Span::OneRead || span == Span::SeveralReads;
    // What is written would be lost, and the numbers of open keys mean nothing in another file.
    if (!isReading && database.HasMoved()) {
        return ESTALE;
    }
    if (span == Span::OneRead || span == Span::OneWrite) { // a statement is a transaction by itself
        return 0;
    }
    SystemError const error = Query(Prepared(isReading ? BeginReads : BeginWrites)).Run();
    isInSpan = error == 0;
    return error;
}

SystemError DatabaseStore::Commit() {
    if (!isInSpan) {
        return 0;
    }
    SystemError const error = Query(Prepared(CommitAll)).Run();
    isInSpan = error != 0;
    return error;
}

void DatabaseStore::RollBack() {
    if (std::exchange(isInSpan, false)) {
        Query(Prepared(RollBackAll)).Run(); // fails only where SQLite has done it by itself
    }
}

// ---- operations

// What has been written through this store may stand in front of the name listed last.
void DatabaseStore::ForgetListedNames() {
    listedKey.key = 0;
    listedValue.key = 0;
}

SystemError DatabaseStore::FindKey(KeyNumber parent, RegistryTextView name, KeyNumber& key) {
    Query query(Prepared(SelectKey));
    SystemError const error = query.Bind(parent).Bind(name).NextRow();
    if (!error) {
        key = query.Number(0);
    }
    return error;
}

SystemError DatabaseStore::AddKey(KeyNumber parent, RegistryTextView name, KeyNumber& key) {
    ForgetListedNames();
    Query query(Prepared(InsertKey));
    SystemError const error = query.Bind(parent).Bind(name).NextRow();
    if (!error) {
        key = query.Number(0);
    }
    return error;
}

SystemError DatabaseStore::RemoveKey(KeyNumber key) {
    ForgetListedNames();
    SystemError const error = Query(Prepared(DeleteValuesOfKey)).Bind(key).Run();
    return error ? error : Query(Prepared(DeleteKey)).Bind(key).Run();
}

SystemError DatabaseStore::LocateKey(KeyNumber key, KeyNumber& parent, RegistryText& name) {
    Query query(Prepared(SelectPlace));
    SystemError const error = query.Bind(key).NextRow();
    if (!error) {
        parent = query.Number(0);
        name = query.Text(1);
    }
    return error == nothingThere ? keyIsGone : error;
}

SystemError DatabaseStore::ListName(StatementIndex anywhere, KeyNumber key, std::uint32_t index,
                                    ListedName& last, std::uint32_t* type) {
    bool const goesOn = last.key == key && last.index + 1 == index;
    Query query(Prepared(goesOn ? static_cast<StatementIndex>(anywhere + 1) : anywhere));
    query.Bind(key);
    goesOn ? query.Bind(last.name) : query.Bind(std::int64_t{index});
    SystemError const error = query.NextRow();
    if (!error) {
        last = {key, index, query.Text(0)};
        if (type) {
            *type = static_cast<std::uint32_t>(query.Number(1));
        }
    }
    return error;
}

SystemError DatabaseStore::KeyNameAt(KeyNumber parent, std::uint32_t index, RegistryText& name) {
    SystemError const error = ListName(SelectKeyName, parent, index, listedKey, nullptr);
    if (!error) {
        name = listedKey.name;
    }
    return error;
}

SystemError DatabaseStore::ValueNameAt(KeyNumber key, std::uint32_t index, RegistryText& name,
                                       std::uint32_t& type) {
    SystemError const error = ListName(SelectValueName, key, index, listedValue, &type);
    if (!error) {
        name = listedValue.name;
    }
    return error;
}

SystemError DatabaseStore::ReadValue(KeyNumber key, RegistryTextView name, RegistryValue& value) {
    Query query(Prepared(SelectValue));
    SystemError const error = query.Bind(key).Bind(name).NextRow();
    if (!error) {
        value.type = static_cast<std::uint32_t>(query.Number(0));
        value.bytes = query.Bytes(1);
    }
    return error;
}

SystemError DatabaseStore::RemoveValue(KeyNumber key, RegistryTextView name) {
    ForgetListedNames();
    SystemError const error = Query(Prepared(DeleteValue)).Bind(key).Bind(name).Run();
    return error || database.Changes() > 0 ? error : nothingThere;
}

SystemError DatabaseStore::WriteValue(KeyNumber key, RegistryTextView name, std::uint32_t type,
                                      std::string_view bytes) {
    ForgetListedNames();
    Query query(Prepared(UpsertValue));
    SystemError const error = query.Bind(key).Bind(name).Bind(std::int64_t{type}).BindBytes(bytes).Run();
    return error || database.Changes() > 0 ? error : keyIsGone;
}

} // namespace QMT::platform
