#include "data/databaseFile.h"

#include "data/heldDatabase.h"
#include "data/newFile.h"

#include <QFile>
#include <QFileInfo>

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using namespace Qt::StringLiterals;

namespace databaseFile {

namespace {

constexpr int chunkSize = 1 << 20;

/// What SQLite keeps beside a database; beside another one it would be taken for that one's.
const std::array companions{u"-journal"_s, u"-wal"_s, u"-shm"_s};

Result unreadable(int error) {
  return {Failure::unreadable, qt_error_string(error)};
}

Result unwritable(int error) {
  return {error == EEXIST ? Failure::exists : Failure::unwritable, qt_error_string(error)};
}

bool isThere(const QString& path) {
  struct stat found {};
  return lstat(QFile::encodeName(path).constData(), &found) == 0;
}

bool isSameFile(const QString& one, const QString& other) {
  struct stat first {};
  struct stat second {};
  return stat(QFile::encodeName(one).constData(), &first) == 0 &&
         stat(QFile::encodeName(other).constData(), &second) == 0 &&
         first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

bool isNoDatabase(int sqliteResult) {
  return sqliteResult == SQLITE_NOTADB || sqliteResult == SQLITE_CORRUPT;
}

Result copyHeld(const QString& database, const HeldDatabase& held, NewFile& copy) {
  const qint64 size = held.size();
  if (size < 0) {
    return {Failure::unreadable, held.message()};
  }
  if (!copy.create(database)) {
    return unwritable(copy.error());
  }
  std::vector<char> buffer(chunkSize);
  for (qint64 offset = 0; offset < size; offset += chunkSize) {
    const int count = static_cast<int>(qMin<qint64>(chunkSize, size - offset));
    if (!held.read(buffer.data(), count, offset)) {
      return {Failure::unreadable, held.message()};
    }
    if (!copy.write(buffer.data(), count)) {
      return unwritable(copy.error());
    }
  }
  return {};
}

/// A descriptor of a plain file opened for reading; closes it when it goes.
class Source {
 public:
  explicit Source(const QString& path)
      // Without waiting: the name may turn out to be that of a pipe.
      : descriptor(open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
    struct stat found {};
    if (descriptor < 0 || fstat(descriptor, &found) != 0) {
      error = errno;
    } else if (!S_ISREG(found.st_mode)) {
      error = EINVAL;
    }
  }
  ~Source() {
    if (descriptor >= 0) {
      close(descriptor);
    }
  }
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;

  const int descriptor;
  int error = 0;
};

Result copyChosen(const QString& chosen, const QString& database, NewFile& copy,
                  const Watcher& beforeStep) {
  const Source source(chosen);
  if (source.error != 0) {
    return unreadable(source.error);
  }
  beforeStep();
  if (!copy.create(database)) {
    return unwritable(copy.error());
  }
  std::vector<char> buffer(chunkSize);
  for (;;) {
    beforeStep();
    const ssize_t count = read(source.descriptor, buffer.data(), buffer.size());
    if (count == 0) {
      break;
    }
    if (count < 0) {
      return unreadable(errno);
    }
    if (!copy.write(buffer.data(), count)) {
      return unwritable(copy.error());
    }
  }
  beforeStep();
  return copy.sync() ? Result{} : unwritable(copy.error());
}

void removeCompanions(const QString& database) {
  for (const QString& companion : companions) {
    QFile::remove(database + companion);
  }
}

/// Prepares a second name of the old database. A hard link keeps its first name in use until the
/// new file takes it; where there are no hard links, a copy does.
Result nameAgain(const QString& database, const HeldDatabase& held, NewFile& second) {
  NewFile::removeLeftovers(beforeRestore(database));
  if (second.linkTo(database)) {
    return {};
  }
  Result copied = copyHeld(database, held, second);
  return copied && !second.sync() ? unwritable(second.error()) : copied;
}

/// A journal that SQLite could not work off goes with the database that it belongs to.
Result moveCompanions(const QString& database, const Watcher& beforeStep) {
  for (const QString& companion : companions) {
    const QByteArray from = QFile::encodeName(database + companion);
    const QByteArray to = QFile::encodeName(beforeRestore(database) + companion);
    beforeStep();
    if (rename(from.constData(), to.constData()) != 0 && errno != ENOENT) {
      return unwritable(errno);
    }
  }
  return {};
}

/// Puts the new file in the place of the database, which becomes beforeRestore(database) first.
Result replaceKeeping(const QString& database, const HeldDatabase& held, NewFile& copy,
                      const Watcher& beforeStep) {
  const QString aside = beforeRestore(database);
  beforeStep();
  NewFile second(aside);
  if (Result named = nameAgain(database, held, second); !named) {
    return named;
  }
  beforeStep();
  removeCompanions(aside);  // of the older database there, which goes with the next step
  if (!second.replace()) {
    return unwritable(second.error());
  }
  if (Result moved = moveCompanions(database, beforeStep); !moved) {
    return moved;
  }
  syncFolderOf(database);
  beforeStep();
  return copy.replace() ? Result{} : unwritable(copy.error());
}

/// The undo of a restore, with the file at beforeRestore(database) chosen: that one and the
/// database change names. In one step, so that both are there under one of the names at any time;
/// where the file system cannot, the chosen data take the place first.
Result exchange(const QString& database, const HeldDatabase& held, NewFile& copy,
                const Watcher& beforeStep) {
  const QString aside = beforeRestore(database);
  removeCompanions(aside);
  if (Result moved = moveCompanions(database, beforeStep); !moved) {
    return moved;
  }
  beforeStep();
  if (renameat2(AT_FDCWD, QFile::encodeName(aside).constData(), AT_FDCWD,
                QFile::encodeName(database).constData(), RENAME_EXCHANGE) == 0) {
    return {};
  }
  NewFile second(aside);
  if (Result named = nameAgain(database, held, second); !named) {
    return named;
  }
  if (!copy.replace()) {
    return unwritable(copy.error());
  }
  return second.replace() ? Result{} : unwritable(second.error());
}

/// What is in the place is worth nothing, unlike what an earlier restore has put aside.
Result replaceDropping(const QString& database, NewFile& copy, const Watcher& beforeStep) {
  beforeStep();
  removeCompanions(database);
  beforeStep();
  return copy.replace() ? Result{} : unwritable(copy.error());
}

/// Puts the new file in the place of the database, if there is one.
Result takePlace(const QString& database, const QString& chosen, NewFile& copy,
                 const Watcher& beforeStep) {
  if (!isThere(database)) {
    return replaceDropping(database, copy, beforeStep);
  }
  // Held until the new file has taken the place: a transaction begun in between would leave its
  // journal beside the wrong database. One begun later finds its file moved and fails.
  const HeldDatabase held(database, HeldDatabase::Against::writers);
  if (held.result() == SQLITE_BUSY) {
    return {Failure::busy, held.message()};
  }
  const QString aside = beforeRestore(database);
  if (held.result() == SQLITE_NOTADB && isThere(aside)) {
    return replaceDropping(database, copy, beforeStep);
  }
  return isSameFile(aside, chosen) ? exchange(database, held, copy, beforeStep)
                                   : replaceKeeping(database, held, copy, beforeStep);
}

}  // namespace

Result backUp(const QString& database, const QString& target) {
  if (isThere(target)) {
    return unwritable(EEXIST);
  }
  NewFile copy(target);
  {
    const HeldDatabase held(database, HeldDatabase::Against::changes);
    const int result = held.result();
    if (result != SQLITE_OK && !isNoDatabase(result)) {
      return {result == SQLITE_BUSY ? Failure::busy : Failure::unreadable, held.message()};
    }
    if (Result copied = copyHeld(database, held, copy); !copied) {
      return copied;
    }
  }
  // The database is free again; a slow disk keeps nobody waiting.
  if (!copy.sync() || !copy.placeIfFree()) {
    return unwritable(copy.error());
  }
  syncFolderOf(target);
  return {};
}

Result restore(const QString& database, const QString& chosen, const Watcher& watcher) {
  const Watcher beforeStep = watcher ? watcher : [] {};
  if (isSameFile(database, chosen)) {
    return {};
  }
  NewFile::removeLeftovers(database);
  NewFile copy(database);
  if (Result copied = copyChosen(chosen, database, copy, beforeStep); !copied) {
    return copied;
  }
  if (Result taken = takePlace(database, chosen, copy, beforeStep); !taken) {
    return taken;
  }
  beforeStep();
  syncFolderOf(database);
  return {};
}

QString beforeRestore(const QString& database) {
  const QFileInfo info(database);
  return info.path() + u'/' + info.completeBaseName() + u"-before-restore."_s + info.suffix();
}

}  // namespace databaseFile
