#pragma once

#include "data/recordColumns.h"

#include <QByteArray>
#include <QByteArrayView>

#include <vector>

struct sqlite3_stmt;

/// The values of one record in the order of its INSERT statement, as a row holds them: texts as
/// they are printed, in UTF-8, and whole numbers. One object serves many records after another.
class RowValues {
 public:
  template <typename Record>
  void take(const Insertion<Record>& insertion, const Record& record);

  /// The values as a statement prints them: "'a',1". Quotes are not escaped.
  QByteArray printed() const;
  /// Whether SQLite reads from printed() what was taken. A quote in a text ends it early, and what
  /// comes of that SQLite shall judge by itself.
  bool readBack() const { return !characters_.contains('\''); }
  /// Hands the values to a statement with as many parameters; they must not change before it has
  /// been reset.
  bool bindTo(sqlite3_stmt* statement) const;

 private:
  struct Value {
    qsizetype end;  ///< Of its characters, which begin where those of the value before end.
    qint64 number;
    bool isText;
  };

  QByteArray characters_;
  std::vector<Value> values_;
};

/// The statement up to its values: "Insert Into ... Values (".
template <typename Record>
QByteArray head(const Insertion<Record>& insertion);

/// The whole statement that stores the record.
template <typename Record>
QByteArray statementOf(const Insertion<Record>& insertion, const Record& record) {
  RowValues values;
  values.take(insertion, record);
  return head(insertion) + values.printed() + ");";
}
