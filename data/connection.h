#pragma once

#include <QLoggingCategory>
#include <QString>

#include <array>
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

/// What SQLite keeps beside a database; beside another one it would be taken for that one's.
extern const std::array<QString, 3> companions;

/// Opens the database file with SQLite's `flags` and runNothingStored(). SQLite's result; on
/// failure the connection may still be there, for sqlite3_errmsg(). What lies beside the file under
/// the name of a companion and is no plain file, such as a pipe, would be waited for for ever: with
/// it nothing is opened.
int openDatabase(const QString& path, int flags, Connection& connection);

/// Bytes of the open file, -1 when it cannot be told or `connection` is null.
qint64 fileSize(sqlite3* connection);

/// Executes all statements of the text. False when one fails or `connection` is null.
bool execute(sqlite3* connection, const char* sql);

/// The first statement of the text; null when SQLite does not take it or `connection` is null.
PreparedStatement prepare(sqlite3* connection, const char* sql);

/// Logs the statement that failed on the connection, and what SQLite says about it.
void logFailure(sqlite3* connection, const char* statement);

/// Makes the connection refuse whatever a stranger's file could run: views, triggers, functions and
/// virtual tables in its schema, extensions, names that turn into texts when no such column is
/// there, and values that are longer than any run's. What the file holds stays as it is.
/// `connection` may be null.
void runNothingStored(sqlite3* connection);
