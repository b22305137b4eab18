#pragma once

#include "data/connection.h"
#include "data/stepLimit.h"

#include <QString>

struct sqlite3;
struct sqlite3_file;

/// A database file that stands still while it is copied or replaced as a whole.
///
/// Its bytes are read through SQLite's own descriptor. A second descriptor would do harm: closing
/// it gives up every lock that this process holds on the file, also those of a transaction that
/// another thread is just storing.
class HeldDatabase {
 public:
  enum class Against {
    changes,  ///< Others may read; a transaction that has begun before may not be finished.
    writers,  ///< Others may read, and no transaction can be begun.
  };

  /// Opens the file, which must be there, finishes or undoes what a killed process has left in a
  /// journal beside it, and holds the file. Waits up to five seconds for others. A file that is no
  /// database is opened but not held.
  HeldDatabase(const QString& path, Against against);

  /// SQLite's result: SQLITE_OK when held, SQLITE_NOTADB or SQLITE_CORRUPT when it is no database.
  int result() const { return result_; }
  /// What SQLite said about the result.
  QString message() const;

  /// For questions about what the file holds; belongs to this object. Null when nothing was opened.
  sqlite3* connection() const { return connection_.get(); }

  /// Bytes of the file, -1 when it cannot be read.
  qint64 size() const;
  /// Reads `count` bytes at `offset`, all of them or false.
  bool read(char* bytes, int count, qint64 offset) const;

 private:
  int begin(const char* beginning);
  int hold(bool writable);

  StepLimit steps_;
  Connection connection_;
  sqlite3_file* file_ = nullptr;  // belongs to the connection
  int result_;
};
