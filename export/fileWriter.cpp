#include "export/fileWriter.h"

#include <QFileInfo>
#include <QLoggingCategory>
#include <QSaveFile>

#include <cerrno>
#include <unistd.h>

namespace {

Q_LOGGING_CATEGORY(logExport, "trakko.export", QtInfoMsg)

// Null, or why it failed. Buffered, a full disk would go unnoticed: the last bytes would be written
// only while the file is closed, and commit() does not hear of their failure. So what write() took
// is what the disk took.
QString failureOfWriting(QSaveFile& file, const QByteArray& bytes) {
  const QFileInfo target(file.fileName());
  if (target.exists() && !target.isFile()) {
    return QStringLiteral("not a regular file");  // a device must not give way to a file
  }
  if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
    return file.errorString();
  }
  const qint64 written = file.write(bytes);
  if (written < 0) {
    return file.errorString();
  }
  if (written < bytes.size()) {
    return QStringLiteral("only %1 of %2 bytes fit").arg(written).arg(bytes.size());
  }
  if (::fsync(file.handle()) != 0) {
    return qt_error_string(errno);
  }
  return file.commit() ? QString() : file.errorString();
}

}  // namespace

bool writeFileAtomically(const QString& path, const QByteArray& bytes, QString* error) {
  QSaveFile file(path);
  const QString reason = failureOfWriting(file, bytes);
  if (reason.isNull()) {
    return true;
  }
  qCWarning(logExport).noquote() << "cannot write" << path << '-' << reason;
  if (error != nullptr) {
    *error = reason;
  }
  return false;
}
