#include "data/bundle.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace Qt::StringLiterals;

class BundleTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  static void databaseBesideTheBundle_data();
  static void databaseBesideTheBundle();
  static void information_data();
  static void information();
  static void pathAsStarted_data();
  static void pathAsStarted();
};

namespace {

void writeFile(const QString& path, const QByteArray& bytes) {
  QVERIFY(QDir().mkpath(QFileInfo(path).path()));
  QFile file(path);
  QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

}  // namespace

void BundleTest::databaseBesideTheBundle_data() {
  QTest::addColumn<QString>("path");
  QTest::addColumn<QString>("name");
  QTest::addColumn<QString>("database");
  QTest::newRow("usual") << u"/home/\u8d70\u8005/Trakko.app"_s << u"Trakko"_s
                         << u"/home/\u8d70\u8005/gpsData.db3"_s;
  QTest::newRow("root") << u"/Trakko.app"_s << u"Trakko"_s << u"/gpsData.db3"_s;
  QTest::newRow("longer name") << u"/a/My Trakko.app"_s << u"Trakko"_s << u"/a/My gpsData.db3"_s;
  QTest::newRow("shorter name") << u"/a/b/c/T.app"_s << u"Trakko"_s << u"/agpsData.db3"_s;
  QTest::newRow("too short") << u"/T.app"_s << u"Trakko"_s << QString();
}

void BundleTest::databaseBesideTheBundle() {
  QFETCH(const QString, path);
  QFETCH(const QString, name);
  const Bundle bundle{.path = path, .name = name};
  QTEST(databasePath(bundle), "database");
  QCOMPARE(folderBeside(bundle).isNull(), databasePath(bundle).isNull());
}

void BundleTest::information_data() {
  QTest::addColumn<QByteArray>("file");
  QTest::addColumn<QString>("name");
  const QByteArray start =
      R"(<?xml version="1.0" encoding="UTF-8"?>)"
      R"(<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://nowhere.invalid/p.dtd">)"
      R"(<plist version="1.0">)";
  QTest::newRow("name") << start +
                               "<dict><key>CFBundleVersion</key><string>1</string>"
                               "<key>CFBundleName</key>\n <string>A &amp; B</string></dict></plist>"
                        << u"A & B"_s;
  QTest::newRow("other kinds and levels before it")
      << start +
             "<dict><key>Inner</key><dict><key>CFBundleName</key><string>no</string></dict>"
             "<key>Yes</key><true/><key>List</key><array><string>no</string></array>"
             "<key>CFBundleName</key><string>Outer</string></dict></plist>"
      << u"Outer"_s;
  QTest::newRow("not a text") << start + "<dict><key>CFBundleName</key><true/></dict></plist>"
                              << u"Trakko"_s;
  QTest::newRow("empty") << start + "<dict><key>CFBundleName</key><string/></dict></plist>"
                         << u"Trakko"_s;
  QTest::newRow("no list") << start + "<array/></plist>" << u"Trakko"_s;
  QTest::newRow("broken") << QByteArray("\0\xff<", 3) << u"Trakko"_s;
  QTest::newRow("none") << QByteArray() << u"Trakko"_s;
}

void BundleTest::information() {
  QFETCH(const QByteArray, file);
  const QTemporaryDir folder;
  if (!file.isEmpty()) {
    writeFile(folder.filePath("Any.app/Contents/Info.plist"), file);
  }
  const Bundle bundle = bundleOfProgram(folder.filePath("Any.app/Contents/Trakko"));
  QCOMPARE(bundle.path, folder.filePath("Any.app"));
  QTEST(bundle.name, "name");
}

void BundleTest::pathAsStarted_data() {
  QTest::addColumn<QString>("directory");  // where it is started from, below the folder
  QTest::addColumn<QString>("program");    // and by which name; "/" stands for the folder
  QTest::addColumn<QString>("found");      // below the folder
  const QString installed = u"opt/Trakko.app/Contents/Trakko"_s;
  const QString linked = u"user/Trakko.app/Contents/Trakko"_s;
  QTest::newRow("bundle") << u""_s << u"/opt/Trakko.app/Contents/Trakko"_s << installed;
  QTest::newRow("linked bundle") << u""_s << u"/user/Trakko.app/Contents/Trakko"_s << linked;
  QTest::newRow("inside the link") << u"user/Trakko.app"_s << u"./Contents/Trakko"_s << linked;
  QTest::newRow("upwards") << u"user"_s << u"../opt/Trakko.app/Contents/Trakko"_s << installed;
  QTest::newRow("link to the program") << u""_s << u"/bin/trakko"_s << linked;
  QTest::newRow("found by name") << u""_s << u"trakko"_s << linked;
  QTest::newRow("another's name") << u""_s << u"exec -a /bin/sh trakko"_s << installed;
}

void BundleTest::pathAsStarted() {
  QFETCH(const QString, directory);
  QFETCH(QString, program);
  QFETCH(const QString, found);
  const QTemporaryDir temporary;
  const QString folder = QFileInfo(temporary.path()).canonicalFilePath();
  const QString real = folder + "/opt/Trakko.app/Contents/Trakko";
  writeFile(folder + "/opt/Trakko.app/Contents/Info.plist", "<plist/>");
  QVERIFY(QFile::copy("/proc/self/exe", real));
  QVERIFY(QDir(folder).mkpath("user") && QDir(folder).mkpath("bin"));
  QVERIFY(QFile::link(folder + "/opt/Trakko.app", folder + "/user/Trakko.app"));
  QVERIFY(QFile::link("../user/Trakko.app/Contents/Trakko", folder + "/bin/trakko"));

  if (program.startsWith(u'/')) {
    program.prepend(folder);
  }
  QProcess shell;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("PATH", folder + "/bin:" + environment.value("PATH"));
  environment.insert("TRAKKO_TELL_PATH", "1");
  shell.setProcessEnvironment(environment);
  shell.start("bash", {"-c", "cd '" + folder + "/" + directory + "' && " + program});
  QVERIFY(shell.waitForFinished());
  QCOMPARE(QString::fromUtf8(shell.readAllStandardOutput()), folder + "/" + found);
}

// Started by the tests above under all sorts of names, it only tells its path.
int main(int argc, char** argv) {
  if (qEnvironmentVariableIsSet("TRAKKO_TELL_PATH")) {
    fputs(qPrintable(programPath(QString::fromLocal8Bit(argv[0]))), stdout);
    return 0;
  }
  const QCoreApplication application(argc, argv);
  BundleTest tests;
  return QTest::qExec(&tests, argc, argv);
}
#include "tst_bundle.moc"
