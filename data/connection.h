#pragma once

#include <QLoggingCategory>

#include <memory>

struct sqlite3;
struct sqlite3_stmt;

Q_DECLARE_LOGGING_CATEGORY(dataLog)

/// An open connection to a database; closes it when it goes.
struct CloseConnection {
  void operator()(sqlite3* connection) const;
};
using Connection = std::unique_ptr<sqlite3, CloseConnection>;

/// A statement that SQLite has compiled. Must go before its connection does.
struct FinalizeStatement {
  void operator()(sqlite3_stmt* statement) const;
};
using PreparedStatement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

/// Executes all statements of the text. False when one fails or `connection` is null.
bool execute(sqlite3* connection, const char* sql);

/// The first statement of the text; null when SQLite does not take it or `connection` is null.
PreparedStatement prepare(sqlite3* connection, const char* sql);

/// Logs the statement that failed on the connection, and what SQLite says about it.
void logFailure(sqlite3* connection, const char* statement);

/// Makes the connection refuse whatever a stranger's file could run: views, triggers, functions and
/// virtual tables in its schema, extensions, and names that turn into texts when no such column is
/// there. What the file holds stays as it is. For every connection to a database that was not made
/// in memory; `connection` may be null.
void runNothingStored(sqlite3* connection);
