#pragma once

#include <QString>

#include <functional>

/// Backup and restore of the database as a file: byte copies, whatever the files hold. Nothing is
/// ever half done: a process that is killed or a disk that is full in the middle leaves the files
/// that were there, and at most an unfinished ".part" beside them. Any thread, one at a time.
namespace databaseFile {

enum class Failure {
  none,
  unreadable,  ///< The file to be copied is missing, no plain file, or cannot be read.
  exists,      ///< There is a file with the name of the backup already.
  busy,        ///< Another connection was writing to the database for more than five seconds.
  unwritable,  ///< The copy cannot be written: no room, no permission.
};

struct Result {
  Failure failure = Failure::none;
  QString detail;  ///< What the system said, for the log.

  explicit operator bool() const { return failure == Failure::none; }
};

/// Copies the database to `target`, as it is between two transactions, and never over an existing
/// file. Waits for a transaction that is being stored.
Result backUp(const QString& database, const QString& target);

/// Told of each step before it is done; tests stop the process there.
using Watcher = std::function<void()>;

/// Puts a copy of `chosen` in the place of the database. The old one is kept as
/// beforeRestore(database), with its journal; the place is never empty. On failure the old one
/// stays where it is. Restoring the database from itself changes nothing. A file in the place that
/// is no database is not kept when an earlier restore has kept one. `chosen` may be that one: then
/// the two change names.
Result restore(const QString& database, const QString& chosen, const Watcher& beforeStep = {});

/// Where the last restore has put the database that was there: "gpsData-before-restore.db3" beside
/// "gpsData.db3".
QString beforeRestore(const QString& database);

}  // namespace databaseFile
