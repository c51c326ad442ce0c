#include "platform/registry_sqlite.h"

#include <chrono>

#include "platform/utf8_text.h"

namespace QMT::platform {

namespace {

constexpr int longestWait = 10'000; // milliseconds, for other processes
constexpr int shortWait = 5;

// The system's number for a result. A cause that the system has given says more than the result.
SystemError ErrorFor(int code, int systemError) {
    switch (code & 0xFF) {
    case SQLITE_OK:
    case SQLITE_DONE:
    case SQLITE_ROW:
        return 0;
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_AUTH:
        return accessRefused;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return EBUSY;
    case SQLITE_FULL:
        return ENOSPC;
    case SQLITE_NOMEM:
        return ENOMEM;
    case SQLITE_TOOBIG:
        return E2BIG;
    default:
        return systemError ? static_cast<SystemError>(systemError) : SystemError{EIO};
    }
}

SystemError ErrorOf(sqlite3* connection, int code) {
    return ErrorFor(code, connection ? sqlite3_system_errno(connection) : 0);
}

} // namespace

// ---- Query

Query::~Query() {
    sqlite3_reset(&statement);
    sqlite3_clear_bindings(&statement);
}

Query& Query::Bind(std::int64_t number) {
    int const result = sqlite3_bind_int64(&statement, ++parameter, number);
    code = code ? code : result;
    return *this;
}

Query& Query::Bind(RegistryTextView text) {
    std::string const bytes = ToUtf8(text);
    int const result = sqlite3_bind_text64(&statement, ++parameter, bytes.data(), bytes.size(),
                                           SQLITE_TRANSIENT, SQLITE_UTF8);
    code = code ? code : result;
    return *this;
}

Query& Query::BindBytes(std::string_view bytes) {
    char const* const data = bytes.empty() ? "" : bytes.data(); // null would not count as bytes
    int const result = sqlite3_bind_blob64(&statement, ++parameter, data, bytes.size(), SQLITE_STATIC);
    code = code ? code : result;
    return *this;
}

SystemError Query::NextRow() {
    int const result = code ? code : sqlite3_step(&statement);
    return result == SQLITE_DONE ? nothingThere : ErrorOf(sqlite3_db_handle(&statement), result);
}

SystemError Query::Run() {
    SystemError const error = NextRow();
    return error == nothingThere ? 0 : error;
}

std::int64_t Query::Number(int column) const {
    return sqlite3_column_int64(&statement, column);
}

RegistryText Query::Text(int column) const {
    return FromUtf8(Bytes(column));
}

std::string Query::Bytes(int column) const {
    auto const* const bytes = static_cast<char const*>(sqlite3_column_blob(&statement, column));
    auto const size = static_cast<std::size_t>(sqlite3_column_bytes(&statement, column));
    return bytes ? std::string(bytes, size) : std::string();
}

// ---- Database

SystemError Database::Result(int code) const {
    return ErrorOf(connection.get(), code);
}

SystemError Database::Open(std::string const& path) {
    sqlite3* opened = nullptr;
    int const code = sqlite3_open_v2(
        path.c_str(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    connection.reset(opened);
    SystemError const error = Result(code);
    if (error) {
        Close();
        return error;
    }
    return Result(sqlite3_busy_timeout(opened, longestWait));
}

bool Database::IsReadOnly() const {
    return sqlite3_db_readonly(connection.get(), "main") != 0;
}

bool Database::HasMoved() const {
    int hasMoved = 0;
    sqlite3_file_control(connection.get(), "main", SQLITE_FCNTL_HAS_MOVED, &hasMoved);
    return hasMoved != 0;
}

int Database::Changes() const {
    return sqlite3_changes(connection.get());
}

SystemError Database::KeepLog() {
    int on = 1;
    return Result(sqlite3_file_control(connection.get(), "main", SQLITE_FCNTL_PERSIST_WAL, &on));
}

SystemError Database::Run(char const* statements) {
    return Result(sqlite3_exec(connection.get(), statements, nullptr, nullptr, nullptr));
}

SystemError Database::ReadNumber(char const* statement, std::int64_t& number) {
    Statement prepared;
    if (SystemError const error = Prepare(statement, prepared)) {
        return error;
    }
    Query query(*prepared);
    SystemError const error = query.NextRow();
    number = error ? 0 : query.Number(0);
    return error;
}

SystemError Database::UseWriteAheadLog() {
    // The change of mode does not always wait for others by itself.
    auto const end = std::chrono::steady_clock::now() + std::chrono::milliseconds(longestWait);
    constexpr char change[] = "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL";
    SystemError error = Run(change);
    while (error == EBUSY && std::chrono::steady_clock::now() < end) {
        sqlite3_sleep(shortWait);
        error = Run(change);
    }
    return error;
}

SystemError Database::Prepare(char const* text, Statement& statement) {
    sqlite3_stmt* prepared = nullptr;
    int const code =
        sqlite3_prepare_v3(connection.get(), text, -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
    statement.reset(prepared);
    return Result(code);
}

} // namespace QMT::platform
