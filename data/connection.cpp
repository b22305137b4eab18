#include "data/connection.h"

#include <sqlite3.h>

Q_LOGGING_CATEGORY(dataLog, "trakko.data", QtInfoMsg)

void CloseConnection::operator()(sqlite3* connection) const {
  sqlite3_close(connection);
}

void FinalizeStatement::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

bool execute(sqlite3* connection, const char* sql) {
  return connection != nullptr &&
         sqlite3_exec(connection, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

PreparedStatement prepare(sqlite3* connection, const char* sql) {
  sqlite3_stmt* statement = nullptr;
  if (connection != nullptr) {
    sqlite3_prepare_v2(connection, sql, -1, &statement, nullptr);
  }
  return PreparedStatement(statement);
}
