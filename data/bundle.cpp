#include "data/bundle.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QXmlStreamReader>

#include <filesystem>

using namespace Qt::StringLiterals;

namespace {

Bundle& ofThisProcess() {
  static Bundle bundle;
  return bundle;
}

/// The top-level string of a property list under `wanted`; null when there is none.
QString propertyListString(QIODevice& list, QStringView wanted) {
  QXmlStreamReader xml(&list);
  if (!xml.readNextStartElement() || xml.name() != u"plist" || !xml.readNextStartElement() ||
      xml.name() != u"dict") {
    return {};
  }
  QString key;
  while (xml.readNextStartElement()) {
    if (xml.name() == u"key") {
      key = xml.readElementText();
    } else if (key == wanted && xml.name() == u"string") {
      return xml.readElementText();
    } else {
      xml.skipCurrentElement();
    }
  }
  return {};
}

bool isSameFile(const QString& a, const QString& b) {
  std::error_code failed;
  return std::filesystem::equivalent(QFile::encodeName(a).toStdString(),
                                     QFile::encodeName(b).toStdString(), failed);
}

/// The working directory as the shell shows it: by the links that led there, where it is known.
QString workingDirectory() {
  const QString shown = qEnvironmentVariable("PWD");
  const QString real = QDir::currentPath();
  return QDir::isAbsolutePath(shown) && isSameFile(shown, real) ? shown : real;
}

}  // namespace

Bundle bundleOfProgram(const QString& programPath) {
  const QString contents = QFileInfo(programPath).path();
  Bundle bundle{.path = QFileInfo(contents).path(), .name = QString()};
  QFile information(contents + u"/Info.plist"_s);
  if (information.open(QIODevice::ReadOnly)) {
    bundle.name = propertyListString(information, u"CFBundleName");
  }
  if (bundle.name.isEmpty()) {
    bundle.name = QStringLiteral("Trakko");
  }
  return bundle;
}

QString programPath(const QString& argv0) {
  const QString self = QStringLiteral("/proc/self/exe");
  const QString found = argv0.contains(u'/') ? QDir(workingDirectory()).filePath(argv0)
                                             : QStandardPaths::findExecutable(argv0);
  QString path = QDir::cleanPath(found);
  if (found.isEmpty() || !isSameFile(path, self)) {
    return QFile::symLinkTarget(self);
  }
  // A link to the program itself, in a folder of commands, is no bundle; what it points to may be.
  while (QFileInfo(path).isSymLink() && !QFile::exists(QFileInfo(path).path() + u"/Info.plist"_s)) {
    path = QFile::symLinkTarget(path);
  }
  return path;
}

void setMainBundle(const Bundle& bundle) {
  ofThisProcess() = bundle;
}

Bundle mainBundle() {
  return ofThisProcess();
}

QString folderBeside(const Bundle& bundle) {
  const qsizetype cut = bundle.name.size() + 4;
  return bundle.path.size() < cut ? QString() : bundle.path.first(bundle.path.size() - cut);
}

QString databasePath(const Bundle& bundle) {
  const QString folder = folderBeside(bundle);
  return folder.isNull() ? QString() : folder + u"gpsData.db3"_s;
}
