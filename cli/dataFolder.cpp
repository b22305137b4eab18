#include "cli/dataFolder.h"

#include "data/bundle.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

QString defaultDataFolder() {
  QString own = QCoreApplication::applicationDirPath() + u'/';
  if (QFile::exists(own + u"Trakko.app/Contents/Info.plist"_s)) {
    return own;
  }
  return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u'/' +
         qEnvironmentVariable("TRAKKO_DATA_NAME", u"trakko"_s) + u'/';
}

void setDataFolder(const QString& folder) {
  // The database lies beside the bundle, whether or not there is one.
  setMainBundle({.path = QDir(folder).absoluteFilePath(u"Trakko.app"_s), .name = u"Trakko"_s});
}
