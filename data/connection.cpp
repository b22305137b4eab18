#include "data/connection.h"

#include <initializer_list>
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

void logFailure(sqlite3* connection, const char* statement) {
  qCWarning(dataLog, "%s", statement);
  qCWarning(dataLog, "%s", sqlite3_errmsg(connection));
}

void runNothingStored(sqlite3* connection) {
  if (connection == nullptr) {
    return;
  }
  for (const int what : {SQLITE_DBCONFIG_ENABLE_VIEW, SQLITE_DBCONFIG_ENABLE_TRIGGER,
                         SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, SQLITE_DBCONFIG_DQS_DDL,
                         SQLITE_DBCONFIG_DQS_DML, SQLITE_DBCONFIG_TRUSTED_SCHEMA}) {
    sqlite3_db_config(connection, what, 0, nullptr);
  }
}
