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

/// Writes and syncs a file. What write() returned is looked at: on a full disk a buffered file can
/// report success for a part of its contents.
QString writeSynced(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
    return file.errorString();
  }
  if (file.write(bytes) != bytes.size()) {
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

}  // namespace

QString keepDownload(const QString& path, const QStringList& lines) {
  static std::mutex oneAtATime;  // two watches may finish at the same moment
  const std::lock_guard lock(oneAtATime);
  const QString beside = path + QStringLiteral(".part");
  QString error = writeSynced(beside, contents(lines));
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
