#include "device/lastDownload.h"

#include "data/newFile.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <mutex>

namespace {

QByteArray contents(const QStringList& lines) {
  QByteArray bytes;
  bytes.reserve(lines.size() * 108);
  for (const QString& line : lines) {
    bytes += line.toLatin1();
    bytes += '\n';
  }
  return bytes;
}

bool holds(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  return file.size() == bytes.size() && file.open(QIODevice::ReadOnly) && file.readAll() == bytes;
}

/// A lasting copy of these very bytes that an earlier download has left; null when there is none.
QString equalCopy(const QFileInfo& name, const QByteArray& bytes) {
  const QDir folder = name.dir();
  const QString pattern = name.completeBaseName() + QStringLiteral("-*.") + name.suffix();
  for (const QString& other : folder.entryList({pattern}, QDir::Files)) {
    if (holds(folder.filePath(other), bytes)) {
      return folder.filePath(other);
    }
  }
  return {};
}

/// "lastDownload-20240518063001.txt"; from the second on "lastDownload-20240518063001-2.txt".
QString lastingName(const QFileInfo& name, const QDateTime& end, int number) {
  const QString counted = number == 1 ? QString() : u'-' + QString::number(number);
  return name.path() + u'/' + name.completeBaseName() + u'-' +
         end.toString(QStringLiteral("yyyyMMddHHmmss")) + counted + u'.' + name.suffix();
}

/// Puts the bytes, which as a rule are those of `existing`, into the file `path`, unless one is
/// there: then EEXIST. Otherwise 0 or another errno.
int keepUnder(const QString& path, const QString& existing, const QByteArray& bytes) {
  NewFile file(path);
  // A second name for the kept file needs no room on a full disk, and the next download, which
  // replaces the first name, leaves it alone. Not every file system has second names.
  const bool linked = holds(existing, bytes) && file.linkTo(existing);
  if (!linked &&
      (!file.create(existing) || !file.write(bytes.constData(), bytes.size()) || !file.sync())) {
    return file.error();
  }
  if (!file.placeIfFree()) {
    return file.error();
  }
  syncFolderOf(path);
  return 0;
}

std::mutex oneAtATime;  // two watches may finish at the same moment

}  // namespace

QString keepDownload(const QString& path, const QStringList& lines) {
  const std::lock_guard lock(oneAtATime);
  NewFile::removeLeftovers(path);
  const int failure = replaceFile(path, contents(lines));
  return failure == 0 ? QString() : qt_error_string(failure);
}

LastingCopy keepForGood(const QString& path, const QStringList& lines, const QDateTime& end) {
  const std::lock_guard lock(oneAtATime);
  const QFileInfo name(path);
  const QByteArray bytes = contents(lines);
  if (QString equal = equalCopy(name, bytes); !equal.isNull()) {
    return {equal, {}};
  }
  for (int number = 1;; ++number) {
    QString lasting = lastingName(name, end, number);
    const int failure = keepUnder(lasting, path, bytes);
    if (failure == 0) {
      return {lasting, {}};
    }
    if (failure != EEXIST) {
      return {{}, qt_error_string(failure)};
    }
  }
}
