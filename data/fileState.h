#pragma once

#include <QtGlobal>

#include <ctime>
#include <optional>
#include <sys/types.h>

struct sqlite3;

/// What a database file holds, told by marks instead of its bytes: two connections that find equal
/// marks, each while it keeps writers out, read the same. The counter in the header changes with
/// each transaction of any program; the rest tells files apart that were put in each other's place.
struct FileState {
  dev_t device;
  ino_t node;
  off_t size;
  qint64 modified;  ///< Nanoseconds, as the next one.
  qint64 changed;
  quint32 counter;

  bool operator==(const FileState&) const = default;
};

/// The state that the connection reads. It must be reading, so that writers are kept out, and must
/// not have written. Nothing for what cannot be told apart this way: a file that is not under its
/// name any more, a write-ahead log, a database in memory.
std::optional<FileState> fileState(sqlite3* connection);

/// While it lives, what the connection reads stays as it is; other connections may read.
class Reading {
 public:
  /// Null is allowed. Waits for a writer as the connection does.
  explicit Reading(sqlite3* connection);
  ~Reading();
  Reading(const Reading&) = delete;
  Reading& operator=(const Reading&) = delete;

  /// False when the file could not be read, and when a transaction is under way already.
  explicit operator bool() const { return connection_ != nullptr; }

 private:
  sqlite3* connection_ = nullptr;
};
