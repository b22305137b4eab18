#include "data/connection.h"

#include <QFile>
#include <QFileInfo>

#include <initializer_list>
#include <sqlite3.h>
#include <sys/stat.h>

Q_LOGGING_CATEGORY(dataLog, "trakko.data", QtInfoMsg)

using namespace Qt::StringLiterals;

const std::array<QString, 3> companions{u"-journal"_s, u"-wal"_s, u"-shm"_s};

namespace {

/// A companion that is not there, or a file.
bool canBeOpened(const QString& companion) {
  struct stat found {};
  return stat(QFile::encodeName(companion).constData(), &found) != 0 || S_ISREG(found.st_mode);
}

}  // namespace

void CloseConnection::operator()(sqlite3* connection) const {
  sqlite3_close(connection);
}

void FinalizeStatement::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

int openDatabase(const QString& path, int flags, Connection& connection) {
  // Beside the file itself, where SQLite looks for them, not beside a link to it.
  const QString found = QFileInfo(path).canonicalFilePath();
  const QString file = found.isEmpty() ? path : found;
  for (const QString& companion : companions) {
    if (!canBeOpened(file + companion)) {
      qCWarning(dataLog).noquote() << "no file:" << file + companion;
      return SQLITE_CANTOPEN;
    }
  }
  sqlite3* opened = nullptr;
  const int result = sqlite3_open_v2(QFile::encodeName(path).constData(), &opened, flags, nullptr);
  connection.reset(opened);
  runNothingStored(opened);
  return result;
}

qint64 fileSize(sqlite3* connection) {
  sqlite3_file* file = nullptr;
  sqlite3_int64 bytes = -1;
  const bool told =
      connection != nullptr &&
      sqlite3_file_control(connection, "main", SQLITE_FCNTL_FILE_POINTER, &file) == SQLITE_OK &&
      file != nullptr && file->pMethods != nullptr &&
      file->pMethods->xFileSize(file, &bytes) == SQLITE_OK;
  return told ? bytes : -1;
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
  constexpr int longestValue = 32 << 20;  // bytes
  sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, longestValue);
}
