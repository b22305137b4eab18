#pragma once

#include "data/connection.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <string>
#include <vector>

/// The answer to a SELECT, row after row. Must go before its connection is closed.
///
/// A query that fails half way has handed rows over before it told; failed() says so behind the
/// last, and what was made of them is no answer.
class Rows {
 public:
  /// With a null connection the query fails.
  Rows(sqlite3* connection, const QByteArray& sql);

  /// Goes to the first or next row; false behind the last and on failure.
  bool next();
  /// Whether the query could not be answered to its end; final once next() was false.
  bool failed() const { return failed_; }

  // The row in hand. Columns count from 0; one that is not there, or holds NULL, is absent.

  /// The value as a text, up to its first zero byte; null when absent.
  QString text(int column);
  /// The text read as an integer as far as it is one, 0 when absent.
  qint64 integer(int column);
  /// The texts of two columns with a "-" between them, as the dictionaries use it for keys.
  QString joined(int first, int second);

 private:
  /// As SQLite prints it, in UTF-8; null when absent.
  QByteArrayView characters(int column);

  // Rows have much in common: hemispheres, zones, the speeds and heart rates that come again and
  // again. Such a text is kept once for all of them, which saves time and half of the memory.
  struct Known {
    std::string characters;
    QString text;
  };
  /// Of one column, each in a place that follows from its characters.
  using KnownTexts = std::vector<Known>;

  sqlite3* connection_;
  PreparedStatement statement_;
  bool failed_ = false;
  qint64 read_ = 0;                ///< Rows.
  std::vector<KnownTexts> known_;  ///< Of each column.
};
