#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <cstddef>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

/// The whole answer to a SELECT, read at once. A query that fails, also in the middle, has no rows.
class Table {
 public:
  /// One row, valid as long as its table. Columns count from 0; one that is not there, or holds
  /// NULL, is absent.
  class Row {
   public:
    /// The value as a text, up to its first zero byte; null when absent.
    QString text(int column) const;
    /// The text read as an integer as far as it is one, 0 when absent.
    qint64 integer(int column) const;
    /// The texts of two columns with a "-" between them, as the dictionaries use it for keys.
    QString joined(int first, int second) const;

   private:
    friend class Table;
    Row(const Table& table, qsizetype number) : table_(table), number_(number) {}
    /// As SQLite prints it, in UTF-8; null when absent.
    QByteArrayView characters(int column) const;

    const Table& table_;
    qsizetype number_;
  };

  /// With a null connection the query fails.
  Table(sqlite3* connection, const QByteArray& sql);

  qsizetype rows() const { return rows_; }
  Row row(qsizetype number) const { return {*this, number}; }

 private:
  void append(sqlite3_stmt* statement);

  int columns_ = 0;
  qsizetype rows_ = 0;
  // All texts stand in one buffer, each with a zero behind it and an absent one with nothing at
  // all. So thousands of cells cost no allocation each, and the number of rows is known before the
  // dictionary for them is made.
  std::string characters_;
  std::vector<std::size_t> starts_{0};  ///< Where each cell starts; one more for the end.
};
