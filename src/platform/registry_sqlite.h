// SQLite as the store of a registry needs it: one connection, statements prepared once, errors as the
// system's numbers.
#pragma once

#include <array>
#include <memory>
#include <sqlite3.h>
#include <string>

#include "platform/registry_store.h"

namespace QMT::platform {

// One use of a prepared statement, which the destructor makes ready for the next.
class Query {
public:
    explicit Query(sqlite3_stmt& preparedStatement) : statement(preparedStatement) {}

    Query(Query const&) = delete;
    Query& operator=(Query const&) = delete;
    ~Query();

    // The next parameter.
    Query& Bind(std::int64_t number);
    Query& Bind(RegistryTextView text);
    Query& BindBytes(std::string_view bytes); // which stay until the query is done

    // Goes to the next row; nothingThere when there is none.
    SystemError NextRow();

    // Does a statement that gives no rows.
    SystemError Run();

    // What the row holds in a column.
    std::int64_t Number(int column) const;
    RegistryText Text(int column) const;
    std::string Bytes(int column) const;

private:
    sqlite3_stmt& statement;
    int parameter = 0;
    int code = SQLITE_OK; // of the first failure to bind
};

// A connection to a database file, closed by the destructor. Used by one thread at a time.
class Database {
public:
    // Opens an existing file, for reading only where the user has no more rights.
    SystemError Open(std::string const& path);

    bool IsOpen() const { return connection != nullptr; }

    void Close() { connection.reset(); }

    bool IsReadOnly() const;

    // True when another file, or none, stands by now where the database was opened.
    bool HasMoved() const;

    // The number of rows that the last statement changed.
    int Changes() const;

    // Leaves the write-ahead log and its index when the last connection is closed.
    SystemError KeepLog();

    // Does the statements, which give nothing.
    SystemError Run(char const* statements);

    // The one number that a statement gives.
    SystemError ReadNumber(char const* statement, std::int64_t& number);

    // Turns the write-ahead log on, as long as that takes while others use the database.
    SystemError UseWriteAheadLog();

    struct Finalizer {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };

    using Statement = std::unique_ptr<sqlite3_stmt, Finalizer>;

    SystemError Prepare(char const* text, Statement& statement);

private:
    struct Closer {
        void operator()(sqlite3* open) const { sqlite3_close_v2(open); }
    };

    SystemError Result(int code) const;

    std::unique_ptr<sqlite3, Closer> connection;
};

} // namespace QMT::platform
