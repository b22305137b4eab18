#include "export/fileWriter.h"

#include "data/newFile.h"

#include <QFileInfo>
#include <QLoggingCategory>

#include <cerrno>

namespace {

Q_LOGGING_CATEGORY(logExport, "trakko.export", QtInfoMsg)

int failureOfWriting(const QString& path, const QByteArray& bytes) {
  const QFileInfo target(path);
  if (target.exists() && !target.isFile()) {
    return EISDIR;  // nor must a device give way to a file
  }
  if (target.exists() && !target.isWritable()) {
    return EACCES;
  }
  return replaceFile(target.isSymLink() ? target.symLinkTarget() : path, bytes);
}

}  // namespace

bool writeFileAtomically(const QString& path, const QByteArray& bytes) {
  const int failure = failureOfWriting(path, bytes);
  if (failure != 0) {
    qCWarning(logExport).noquote() << "cannot write" << path << '-' << qt_error_string(failure);
  }
  return failure == 0;
}
