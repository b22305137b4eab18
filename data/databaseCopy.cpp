#include "data/databaseCopy.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <sqlite3.h>
#include <sys/stat.h>
#include <vector>

using namespace Qt::StringLiterals;

namespace databaseFile {

namespace {

constexpr int chunkSize = 1 << 20;

}  // namespace

Result unreadable(const QString& detail) {
  return {Failure::unreadable, detail};
}

Result unwritable(int error) {
  return {error == EEXIST ? Failure::leftovers : Failure::unwritable, qt_error_string(error)};
}

bool isThere(const QString& path) {
  struct stat found {};
  return lstat(QFile::encodeName(path).constData(), &found) == 0 || errno != ENOENT;
}

bool isPlainFile(const QString& path) {
  struct stat found {};
  return stat(QFile::encodeName(path).constData(), &found) == 0 && S_ISREG(found.st_mode);
}

bool isSameFile(const QString& one, const QString& other) {
  struct stat first {};
  struct stat second {};
  return stat(QFile::encodeName(one).constData(), &first) == 0 &&
         stat(QFile::encodeName(other).constData(), &second) == 0 &&
         first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

bool isNoDatabase(const HeldDatabase& held) {
  return held.result() == SQLITE_NOTADB || held.result() == SQLITE_CORRUPT;
}

Result copyHeld(const HeldDatabase& held, const QString& like, NewFile& copy,
                const Watcher& watcher) {
  const qint64 size = held.size();
  if (size < 0) {
    return unreadable(held.message());
  }
  if (!copy.create(like)) {
    return unwritable(copy.error());
  }
  std::vector<char> buffer(chunkSize);
  for (qint64 offset = 0; offset < size; offset += chunkSize) {
    watcher(static_cast<int>(100 * offset / size));
    const int count = static_cast<int>(qMin<qint64>(chunkSize, size - offset));
    if (!held.read(buffer.data(), count, offset)) {
      return unreadable(held.message());
    }
    if (!copy.write(buffer.data(), count)) {
      return unwritable(copy.error());
    }
  }
  watcher(100);
  return {};
}

bool isEqual(const HeldDatabase& held, qint64 size, const Reader& other) {
  if (size < 0 || held.size() != size) {
    return false;
  }
  std::vector<char> first(chunkSize);
  std::vector<char> second(chunkSize);
  for (qint64 offset = 0; offset < size; offset += chunkSize) {
    const int count = static_cast<int>(qMin<qint64>(chunkSize, size - offset));
    if (!held.read(first.data(), count, offset) || !other(second.data(), count, offset) ||
        !std::equal(first.begin(), first.begin() + count, second.begin())) {
      return false;
    }
  }
  return true;
}

}  // namespace databaseFile
