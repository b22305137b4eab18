#include "device/lastDownload.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <unistd.h>

namespace {

QString systemError() {
  return QString::fromLocal8Bit(std::strerror(errno));
}

QByteArray contents(const QStringList& lines) {
  QByteArray bytes;
  bytes.reserve(lines.size() * 108);
  for (const QString& line : lines) {
    bytes += line.toLatin1();
    bytes += '\n';
  }
  return bytes;
}

/// Writes all bytes; false with the reason in `file`. A disk that becomes full takes a part and
/// gives its reason only when asked to take the rest.
bool writeAll(QFile& file, const QByteArray& bytes) {
  qint64 done = 0;
  while (done < bytes.size()) {
    const qint64 taken = file.write(bytes.constData() + done, bytes.size() - done);
    if (taken <= 0) {
      return false;
    }
    done += taken;
  }
  return true;
}

/// Writes and syncs a file. Unbuffered: on a full disk a buffered file can report success for a
/// part of its contents.
QString writeSynced(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
    return file.errorString();
  }
  if (!writeAll(file, bytes)) {
    return file.errorString();
  }
  if (::fsync(file.handle()) != 0) {
    return systemError();
  }
  return {};
}

void syncFolder(const QString& folder) {
  const int descriptor =
      ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor >= 0) {
    ::fsync(descriptor);
    ::close(descriptor);
  }
}

/// Replaces the file as a whole.
QString replaceFile(const QString& path, const QByteArray& bytes) {
  const QString beside = path + QStringLiteral(".part");
  QString error = writeSynced(beside, bytes);
  if (error.isNull() && std::rename(QFile::encodeName(beside).constData(),
                                    QFile::encodeName(path).constData()) != 0) {
    error = systemError();
  }
  if (!error.isNull()) {
    QFile::remove(beside);
    return error;
  }
  syncFolder(QFileInfo(path).absolutePath());
  return {};
}

bool holds(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) && file.readAll() == bytes;
}

/// "lastDownload-20240518063001.txt"; counts on ("...-2.txt") while there is such a file.
QString lastingName(const QString& path, const QDateTime& end) {
  const QFileInfo name(path);
  const QString stem = name.path() + u'/' + name.completeBaseName() + u'-' +
                       end.toString(QStringLiteral("yyyyMMddHHmmss"));
  QString ending = u'.' + name.suffix();
  for (int i = 2; QFileInfo::exists(stem + ending); ++i) {
    ending = QStringLiteral("-%1.%2").arg(i).arg(name.suffix());
  }
  return stem + ending;
}

std::mutex oneAtATime;  // two watches may finish at the same moment

}  // namespace

QString keepDownload(const QString& path, const QStringList& lines) {
  const std::lock_guard lock(oneAtATime);
  return replaceFile(path, contents(lines));
}

LastingCopy keepForGood(const QString& path, const QStringList& lines, const QDateTime& end) {
  const std::lock_guard lock(oneAtATime);
  LastingCopy copy{lastingName(path, end), {}};
  const QByteArray bytes = contents(lines);
  // A second name for the kept file needs no room on a full disk, and the next download, which
  // replaces the first name, leaves it alone. Not every file system has second names.
  if (holds(path, bytes) &&
      ::link(QFile::encodeName(path).constData(), QFile::encodeName(copy.path).constData()) == 0) {
    syncFolder(QFileInfo(path).absolutePath());
    return copy;
  }
  copy.error = replaceFile(copy.path, bytes);
  return copy.error.isNull() ? copy : LastingCopy{{}, copy.error};
}
