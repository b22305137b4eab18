#pragma once

#include "data/schemaCheck.h"

#include <QString>

#include <functional>

/// Backup and restore of the database as a file: byte copies, whatever the files hold. Nothing is
/// ever half done: a process that is killed or a disk that is full in the middle leaves the files
/// that were there, and at most an unfinished ".part" beside them. Any thread, one at a time; a
/// slow disk takes its time, so not the main one.
namespace databaseFile {

enum class Failure {
  none,
  unreadable,  ///< The file to be copied is missing, no plain file, or cannot be read.
  exists,      ///< There is a file with the name of the backup already.
  busy,        ///< The database is being stored into, here or by another program.
  chosenBusy,  ///< Another program works on the file to be restored.
  unwritable,  ///< The copy cannot be written: no room, no permission.
  leftovers,   ///< Nor then: all names for an unfinished copy are taken.
};

struct Result {
  Failure failure = Failure::none;
  QString detail = {};  ///< What the system said, for the log.
  /// Where a restore has put the database that was there; null when there was none to keep.
  QString kept = {};

  explicit operator bool() const { return failure == Failure::none; }
};

/// Told before each step how much of the copying is done, in percent. Tests stop the process there.
using Watcher = std::function<void(int percent)>;

/// Copies the database to `target`, as it is between two transactions, and never over an existing
/// file. Waits for a transaction that is being stored.
Result backUp(const QString& database, const QString& target, const Watcher& watcher = {});

/// What a file holds that is to be restored; one that is damaged is no database. Works off a
/// journal beside it first. Reads all of it.
schemaCheck::Finding inspect(const QString& chosen);

/// Puts a copy of `chosen` in the place of the database; what a journal beside `chosen` holds is
/// part of it. Busy at once while a download is stored.
///
/// The old database is kept as beforeRestore(database), with its journal, and the one that was
/// there before as beforeEarlierRestore(database); the place is never empty. On failure the old one
/// stays where it is. Restoring the database from itself changes nothing. A file in the place that
/// is no database takes no other's name: when an earlier restore has kept one, it is kept as
/// damagedBeforeRestore(database), as what is no file always is. Nothing is put aside when it
/// is empty or its bytes are those of `chosen` or of one of the first two. `chosen` may be one of
/// the first two, or equal one: then that and the database change names.
Result restore(const QString& database, const QString& chosen, const Watcher& watcher = {});

/// Where the last restore has put the database that was there: "gpsData-before-restore.db3" beside
/// "gpsData.db3".
QString beforeRestore(const QString& database);
/// Where what the restore before has put aside is: "gpsData-before-restore-2.db3".
QString beforeEarlierRestore(const QString& database);
/// Where the last file that was no database is, if there was a database to keep beside it:
/// "gpsData-before-restore-damaged.db3", where that is no file
/// "gpsData-before-restore-damaged2.db3" and so on.
QString damagedBeforeRestore(const QString& database, int number);

}  // namespace databaseFile
