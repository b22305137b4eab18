// The restore: another file takes the database's place.

#include "data/databaseCopy.h"
#include "data/databaseFile.h"
#include "data/databaseUse.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace databaseFile {

namespace {

constexpr int copied = 100;  // percent: all that follows are names

Result keptAs(const QString& place) {
  return {Failure::none, {}, place};
}

bool hasCompanions(const QString& path) {
  const QString place = QFileInfo(path).canonicalFilePath();
  return std::any_of(companions.begin(), companions.end(),
                     [&](const QString& companion) { return isThere(place + companion); });
}

/// Whether the file's bytes are all of the database: no journal or log beside it holds a part.
/// The last companion is but an index of the log.
bool isAlone(const QString& path) {
  const QString place = QFileInfo(path).canonicalFilePath();
  return std::all_of(companions.begin(), companions.end() - 1, [&](const QString& companion) {
    const QFileInfo found(place + companion);
    return !found.exists() || (found.isFile() && found.size() == 0);
  });
}

/// Reads the chosen file as a backup reads the database: through SQLite, which puts in what a
/// journal or log beside it holds. What SQLite does not take for a database is copied as it is,
/// unless it has such a companion: then a part of it would be missing.
Result copyChosen(const QString& chosen, const QString& database, NewFile& copy,
                  const Watcher& watcher) {
  if (!isPlainFile(chosen)) {
    return unreadable(qt_error_string(ENOENT));
  }
  const HeldDatabase held(chosen, HeldDatabase::Against::changes);
  if (held.result() == SQLITE_BUSY) {
    return {Failure::chosenBusy, held.message()};
  }
  if (held.result() != SQLITE_OK && !isNoDatabase(held) && hasCompanions(chosen)) {
    return unreadable(held.message());
  }
  watcher(0);
  if (Result done = copyHeld(held, database, copy, watcher); !done) {
    return done;
  }
  return copy.sync() ? Result{} : unwritable(copy.error());
}

void removeCompanions(const QString& database) {
  for (const QString& companion : companions) {
    QFile::remove(database + companion);
  }
}

/// A journal that SQLite could not work off goes with the database that it belongs to.
Result moveCompanions(const QString& database, const QString& place, const Watcher& watcher) {
  for (const QString& companion : companions) {
    watcher(copied);
    if (rename(QFile::encodeName(database + companion).constData(),
               QFile::encodeName(place + companion).constData()) != 0 &&
        errno != ENOENT) {
      return unwritable(errno);
    }
  }
  return {};
}

/// Prepares a second name of the old database. A hard link keeps its first name in use until the
/// new file takes it; where there are no hard links, a copy does.
Result nameAgain(const QString& database, const QString& place, const HeldDatabase& held,
                 NewFile& second) {
  NewFile::removeLeftovers(place);
  if (second.linkTo(database)) {
    return {};
  }
  Result done = copyHeld(held, database, second, [](int) {});
  return done && !second.sync() ? unwritable(second.error()) : done;
}

/// What the last restore has put aside gives way to the database, and takes the place of what the
/// restore before has: a wrong file and then the right one leave the first database there.
Result makeRoomAside(const QString& database, const Watcher& watcher) {
  const QString newer = beforeRestore(database);
  const QString older = beforeEarlierRestore(database);
  if (!isPlainFile(newer) || isSameFile(newer, database)) {
    return {};  // the same when a restore was killed just before its end
  }
  // Works off a journal, so that the file stands alone while its name changes.
  const HeldDatabase held(newer, HeldDatabase::Against::writers);
  if (held.result() == SQLITE_BUSY) {
    return {Failure::busy, held.message()};
  }
  removeCompanions(older);
  watcher(copied);
  if (rename(QFile::encodeName(newer).constData(), QFile::encodeName(older).constData()) != 0) {
    return unwritable(errno);
  }
  return moveCompanions(newer, older, watcher);
}

/// What SQLite takes for no database must not push out one that an earlier restore has kept.
bool needsOwnPlace(const QString& database, const HeldDatabase& held) {
  return held.result() == SQLITE_NOTADB && isThere(beforeRestore(database));
}

/// The first name for what is no database that no folder or pipe has; an older file gives way to a
/// file alone.
QString placeForDamaged(const QString& database, bool isFile) {
  int number = 1;
  QString place = damagedBeforeRestore(database, number);
  while (isThere(place) && !(isFile && isPlainFile(place))) {
    place = damagedBeforeRestore(database, ++number);
  }
  return place;
}

bool isCopyOf(const QString& database, const HeldDatabase& held, const NewFile& copy) {
  return isAlone(database) &&
         isEqual(held, copy.size(), [&](char* bytes, int count, qint64 offset) {
           return copy.read(bytes, count, offset);
         });
}

/// Puts the new file in the place of the database, which is put aside first.
Result replaceKeeping(const QString& database, const HeldDatabase& held, NewFile& copy,
                      const Watcher& watcher) {
  const bool ownPlace = needsOwnPlace(database, held);
  const QString aside = ownPlace ? placeForDamaged(database, true) : beforeRestore(database);
  watcher(copied);
  NewFile second(aside);
  if (Result named = nameAgain(database, aside, held, second); !named) {
    return named;
  }
  if (Result free = ownPlace ? Result{} : makeRoomAside(database, watcher); !free) {
    return free;
  }
  watcher(copied);
  removeCompanions(aside);  // of no file any more
  if (!second.replace()) {
    return unwritable(second.error());
  }
  if (Result moved = moveCompanions(database, aside, watcher); !moved) {
    return moved;
  }
  syncFolderOf(database);
  watcher(copied);
  return copy.replace() ? keptAs(aside) : unwritable(copy.error());
}

/// The undo of a restore: the file `kept`, which was put aside, and the database change names. In
/// one step, so that both are there under one of the names at any time; where the file system
/// cannot, the copy of the kept one takes the place first.
Result exchange(const QString& database, const QString& kept, const HeldDatabase& held,
                NewFile& copy, const Watcher& watcher) {
  const HeldDatabase other(kept, HeldDatabase::Against::writers);
  if (other.result() == SQLITE_BUSY) {
    return {Failure::chosenBusy, other.message()};
  }
  if (other.result() != SQLITE_OK && hasCompanions(kept)) {
    return unreadable(other.message());  // what they hold would be lost
  }
  removeCompanions(kept);  // worked off when the file was opened
  if (Result moved = moveCompanions(database, kept, watcher); !moved) {
    return moved;
  }
  // Files that were only readable are put aside as they are.
  QFile::setPermissions(kept, QFile::permissions(kept) | QFile::ReadOwner | QFile::WriteOwner);
  watcher(copied);
  if (renameat2(AT_FDCWD, QFile::encodeName(kept).constData(), AT_FDCWD,
                QFile::encodeName(database).constData(), RENAME_EXCHANGE) == 0) {
    return keptAs(kept);
  }
  NewFile second(kept);
  if (Result named = nameAgain(database, kept, held, second); !named) {
    return named;
  }
  if (!copy.replace()) {
    return unwritable(copy.error());
  }
  return second.replace() ? keptAs(kept) : unwritable(second.error());
}

/// Nothing is in the place but perhaps a journal, which belongs to no database any more.
Result fillPlace(const QString& database, NewFile& copy, const Watcher& watcher) {
  watcher(copied);
  removeCompanions(database);
  watcher(copied);
  return copy.replace() ? Result{} : unwritable(copy.error());
}

/// A folder, a pipe, a link to nowhere: nobody can hold it, but it is kept as well, under a name
/// where it is in no later restore's way.
Result replaceOddity(const QString& database, NewFile& copy, const Watcher& watcher) {
  const QString aside = placeForDamaged(database, false);
  watcher(copied);
  if (rename(QFile::encodeName(database).constData(), QFile::encodeName(aside).constData()) != 0) {
    return unwritable(errno);
  }
  Result replaced = fillPlace(database, copy, watcher);
  return replaced ? keptAs(aside) : replaced;
}

/// The name under which an earlier restore has kept the very bytes of the database; null when it is
/// needed itself.
QString keptAlready(const QString& database, const HeldDatabase& held) {
  for (const QString& kept : {beforeRestore(database), beforeEarlierRestore(database)}) {
    if (!isPlainFile(kept) || isSameFile(kept, database) || QFileInfo(kept).size() != held.size() ||
        !isAlone(database)) {
      continue;
    }
    const HeldDatabase other(kept, HeldDatabase::Against::changes);
    if (other.result() != SQLITE_BUSY && isAlone(kept) &&
        isEqual(held, other.size(), [&](char* bytes, int count, qint64 offset) {
          return other.read(bytes, count, offset);
        })) {
      return kept;
    }
  }
  return {};
}

/// Whether an earlier restore has put aside, as `kept`, what comes back now.
bool comesBack(const QString& database, const QString& kept, const QString& chosen,
               const NewFile& copy) {
  if (isSameFile(kept, chosen)) {
    return true;
  }
  if (!isPlainFile(kept) || isSameFile(kept, database)) {
    return false;
  }
  const HeldDatabase other(kept, HeldDatabase::Against::changes);
  return other.result() != SQLITE_BUSY && isCopyOf(kept, other, copy);
}

/// Puts the new file in the place of the database, if there is one.
Result takePlace(const QString& database, const QString& chosen, NewFile& copy,
                 const Watcher& watcher) {
  if (!isThere(database)) {
    return fillPlace(database, copy, watcher);
  }
  if (!isPlainFile(database)) {
    return replaceOddity(database, copy, watcher);
  }
  // Held until the new file has taken the place: a transaction begun in between would leave its
  // journal beside the wrong database. One begun later finds its file moved and fails.
  const HeldDatabase held(database, HeldDatabase::Against::writers);
  if (held.result() == SQLITE_BUSY) {
    return {Failure::busy, held.message()};
  }
  // Put aside once more, it would push out another: whoever restores one file again and again keeps
  // what was there before.
  const bool isNothing = held.size() == 0 && isAlone(database);
  if (isNothing || isCopyOf(database, held, copy)) {
    return fillPlace(database, copy, watcher);
  }
  if (const QString kept = keptAlready(database, held); !kept.isNull()) {
    Result replaced = fillPlace(database, copy, watcher);
    return replaced ? keptAs(kept) : replaced;
  }
  if (needsOwnPlace(database, held)) {
    return replaceKeeping(database, held, copy, watcher);
  }
  for (const QString& kept : {beforeRestore(database), beforeEarlierRestore(database)}) {
    if (comesBack(database, kept, chosen, copy)) {
      return exchange(database, kept, held, copy, watcher);
    }
  }
  return replaceKeeping(database, held, copy, watcher);
}

}  // namespace

Result restore(const QString& database, const QString& chosen, const Watcher& watcher) {
  const databaseUse::Turn turn = databaseUse::ifFree();
  if (!turn) {
    return {Failure::busy, u"this process is storing"_s};
  }
  if (isSameFile(database, chosen)) {
    return {};
  }
  const Watcher told = watcher ? watcher : [](int) {};
  NewFile::removeLeftovers(database);
  NewFile copy(database);
  if (Result done = copyChosen(chosen, database, copy, told); !done) {
    return done;
  }
  Result taken = takePlace(database, chosen, copy, told);
  if (taken) {
    told(copied);
    syncFolderOf(database);
  }
  return taken;
}

}  // namespace databaseFile
