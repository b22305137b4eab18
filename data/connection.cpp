#include "data/connection.h"

#include "data/text.h"

#include <sqlite3.h>

Q_LOGGING_CATEGORY(dataLog, "trakko.data", QtInfoMsg)

namespace {

/// The value as a C string; null when absent. Numbers are printed by SQLite.
const char* characters(sqlite3_stmt* statement, int column) {
  return reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
}

}  // namespace

void CloseConnection::operator()(sqlite3* connection) const {
  sqlite3_close(connection);
}

bool execute(sqlite3* connection, const char* sql) {
  return connection != nullptr &&
         sqlite3_exec(connection, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

Query::Query(sqlite3* connection, const QByteArray& sql) : result_(SQLITE_MISUSE) {
  if (connection != nullptr) {
    const int length = static_cast<int>(sql.size()) + 1;  // with the zero: spares SQLite a copy
    result_ = sqlite3_prepare_v2(connection, sql.constData(), length, &statement_, nullptr);
  }
}

Query::~Query() {
  sqlite3_finalize(statement_);
}

bool Query::next() {
  if (statement_ == nullptr || (result_ != SQLITE_OK && result_ != SQLITE_ROW)) {
    return false;
  }
  result_ = sqlite3_step(statement_);
  return result_ == SQLITE_ROW;
}

bool Query::failed() const {
  return result_ != SQLITE_OK && result_ != SQLITE_ROW && result_ != SQLITE_DONE;
}

QString Query::text(int column) {
  return QString::fromUtf8(characters(statement_, column));
}

qint64 Query::integer(int column) {
  if (sqlite3_column_type(statement_, column) == SQLITE_INTEGER) {
    return sqlite3_column_int64(statement_, column);
  }
  return text::toInteger(text(column));
}

void Query::append(QByteArray& out, int column) {
  if (sqlite3_column_type(statement_, column) == SQLITE_INTEGER) {
    text::appendNumber(out, sqlite3_column_int64(statement_, column));
  } else {
    text::appendShown(out, text(column));
  }
}

QString Query::joined(int first, int second) {
  QByteArray result;
  append(result, first);
  result.append('-');
  append(result, second);
  return QString::fromUtf8(result);
}
