#include "data/databaseFile.h"

#include "data/databaseCopy.h"

#include <QFileInfo>

#include <cerrno>
#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace databaseFile {

namespace {

/// Whether SQLite finds no damage. The file's own rules for its rows are a stranger's: not asked.
bool isSound(sqlite3* connection) {
  bool sound = false;
  const auto keep = [](void* target, int, char** values, char**) {
    *static_cast<bool*>(target) = values[0] != nullptr && QByteArrayView(values[0]) == "ok";
    return 0;
  };
  return sqlite3_exec(connection, "PRAGMA ignore_check_constraints=ON; PRAGMA quick_check(1)", keep,
                      &sound, nullptr) == SQLITE_OK &&
         sound;
}

Result exists() {
  return {Failure::exists, qt_error_string(EEXIST)};
}

QString beside(const QString& database, const QString& ending) {
  const QFileInfo info(database);
  return info.path() + u'/' + info.completeBaseName() + ending + u'.' + info.suffix();
}

}  // namespace

Result backUp(const QString& database, const QString& target, const Watcher& watcher) {
  if (isThere(target)) {
    return exists();
  }
  if (!isPlainFile(database)) {
    return unreadable(qt_error_string(ENOENT));
  }
  NewFile copy(target);
  {
    const HeldDatabase held(database, HeldDatabase::Against::changes);
    if (held.result() != SQLITE_OK && !isNoDatabase(held)) {
      return {held.result() == SQLITE_BUSY ? Failure::busy : Failure::unreadable, held.message()};
    }
    if (Result copied = copyHeld(
            held, database, copy, watcher ? watcher : [](int) {});
        !copied) {
      return copied;
    }
  }
  // The database is free again; a slow disk keeps nobody waiting.
  if (!copy.sync()) {
    return unwritable(copy.error());
  }
  if (!copy.placeIfFree()) {
    return copy.error() == EEXIST ? exists() : unwritable(copy.error());
  }
  syncFolderOf(target);
  return {};
}

schemaCheck::Finding inspect(const QString& chosen) {
  using schemaCheck::Finding;
  if (!isPlainFile(chosen)) {
    return Finding::unreadable;
  }
  const HeldDatabase held(chosen, HeldDatabase::Against::changes);
  if (held.result() != SQLITE_OK) {
    return isNoDatabase(held) ? Finding::noDatabase : Finding::unreadable;
  }
  const Finding finding = schemaCheck::check(held.connection());
  return finding == Finding::complete && !isSound(held.connection()) ? Finding::noDatabase
                                                                     : finding;
}

QString beforeRestore(const QString& database) {
  return beside(database, u"-before-restore"_s);
}

QString beforeEarlierRestore(const QString& database) {
  return beside(database, u"-before-restore-2"_s);
}

QString damagedBeforeRestore(const QString& database, int number) {
  const QString ending = u"-before-restore-damaged"_s;
  return beside(database, number == 1 ? ending : ending + QString::number(number));
}

}  // namespace databaseFile
