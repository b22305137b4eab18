#pragma once

#include <QByteArray>
#include <QLoggingCategory>
#include <QString>
#include <memory>

struct sqlite3;
struct sqlite3_stmt;

Q_DECLARE_LOGGING_CATEGORY(dataLog)

/// An open connection to a database; closes it when it goes.
struct CloseConnection {
  void operator()(sqlite3* connection) const;
};
using Connection = std::unique_ptr<sqlite3, CloseConnection>;

/// Executes all statements of the text. False when one fails or `connection` is null.
bool execute(sqlite3* connection, const char* sql);

/// The rows of a SELECT, one after the other. Columns count from 0; one that is not there, or holds
/// NULL, is absent. Must go before its connection does.
class Query {
 public:
  /// With a null connection, or a text that SQLite does not take, the query has failed.
  Query(sqlite3* connection, const QByteArray& sql);
  ~Query();
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;

  /// Goes to the next row; false when there is none, or on an error.
  bool next();
  /// True when an error ended the query: the rows seen so far are not the whole answer.
  bool failed() const;

  /// The text up to its first zero byte; null when absent.
  QString text(int column);
  /// The text read as an integer as far as it is one, 0 when absent.
  qint64 integer(int column);
  /// text() of the two columns with a "-" between them, as the dictionaries use it for keys.
  QString joined(int first, int second);

 private:
  void append(QByteArray& out, int column);

  sqlite3_stmt* statement_ = nullptr;
  int result_ = 0;
};
