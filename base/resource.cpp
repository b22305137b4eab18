#include "base/resource.h"

#include <QFile>

QByteArray resource(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    qFatal("The program was built without %s", qPrintable(path));
  }
  return file.readAll();
}
