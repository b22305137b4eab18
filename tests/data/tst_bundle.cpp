#include "storeFolder.h"
#include "tests/columns.h"

#include <QtTest>

class tst_bundle : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  static void databaseBesideTheBundle_data() {
    const auto row = columns<QString>("database");
    row("/home/\u8d70\u8005/Trakko.app", "/home/\u8d70\u8005/gpsData.db3");
    row("/Trakko.app", "/gpsData.db3");
    row("/a/My Trakko.app", "/a/My gpsData.db3");
    row("/a/b/c/T.app", "/agpsData.db3");
    row("/T.app", {});
  }
  static void databaseBesideTheBundle() {
    QFETCH(QString, database);
    const Bundle bundle{.path = QTest::currentDataTag(), .name = "Trakko"};
    QCOMPARE(databasePath(bundle), database);
    QCOMPARE(folderBeside(bundle).isNull(), database.isNull());
  }

  static void information_data() {
    const auto row = columns<QByteArray, QString>("dictionary", "name");
    row("second key",
        "<key>CFBundleVersion</key><string>1</string>"
        "<key>CFBundleName</key>\n <string>A &amp; B</string>",
        "A & B");
    row("key of an inner dictionary",
        "<key>Inner</key><dict><key>CFBundleName</key><string>no</string></dict>"
        "<key>Yes</key><true/><key>List</key><array><string>no</string></array>"
        "<key>CFBundleName</key><string>Outer</string>",
        "Outer");
    row("no text", "<key>CFBundleName</key><true/>", "Trakko");
    row("empty", "<key>CFBundleName</key><string/>", "Trakko");
    row("no XML", QByteArray("\0\xff<", 3), "Trakko");
  }
  static void information() {
    QFETCH(QByteArray, dictionary);
    const QTemporaryDir folder;
    const QString program = folder.filePath("Any.app/Contents/Trakko");
    QCOMPARE(bundleOfProgram(program).name, "Trakko");
    QVERIFY(QDir(folder.path()).mkpath("Any.app/Contents"));
    writeBytes(folder.filePath("Any.app/Contents/Info.plist"),
               "<?xml version=\"1.0\"?><!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
               "\"http://nowhere.invalid/p.dtd\"><plist version=\"1.0\"><dict>" +
                   dictionary + "</dict></plist>");
    QTEST(bundleOfProgram(program).name, "name");
    QCOMPARE(bundleOfProgram(program).path, folder.filePath("Any.app"));
  }

  static void pathAsStarted() {
    const QTemporaryDir temporary;
    const QString folder = QFileInfo(temporary.path()).canonicalFilePath();
    const QString installed = folder + "/opt/Trakko.app/Contents/Trakko";
    const QString linked = folder + "/user/Trakko.app/Contents/Trakko";
    for (const char* path : {"opt/Trakko.app/Contents", "user", "bin"}) {
      QVERIFY(QDir(folder).mkpath(path));
    }
    writeBytes(folder + "/opt/Trakko.app/Contents/Info.plist", "<plist/>");
    QVERIFY(QFile::copy("/proc/self/exe", installed));
    QVERIFY(QFile::link(folder + "/opt/Trakko.app", folder + "/user/Trakko.app"));
    QVERIFY(QFile::link("../user/Trakko.app/Contents/Trakko", folder + "/bin/trakko"));
    qputenv("TRAKKO_TELL_PATH", "1");
    qputenv("PATH", folder.toLocal8Bit() + "/bin:" + qgetenv("PATH"));

    const QList<std::pair<QString, QString>> rows{
        {"$F/user/Trakko.app/Contents/Trakko", linked},
        {"cd $F/user/Trakko.app && ./Contents/Trakko", linked},
        {"cd $F/user && ../opt/Trakko.app/Contents/Trakko", installed},
        {"cd $F/user && PWD=/tmp Trakko.app/Contents/Trakko", linked},
        {"$F/bin/trakko", linked},
        {"trakko", linked},
        {"exec -a /bin/sh trakko", installed}};
    for (const auto& [command, found] : rows) {
      QProcess shell;
      shell.start("bash", {"-c", "F='" + folder + "'; " + command});
      QVERIFY(shell.waitForFinished());
      QCOMPARE(command + " " + shell.readAllStandardOutput(), command + " " + found);
    }
  }
};

// Started by the test above under all sorts of names, it only tells its path.
int main(int argc, char** argv) {
  if (qEnvironmentVariableIsSet("TRAKKO_TELL_PATH")) {
    fputs(qPrintable(programPath(QString::fromLocal8Bit(argv[0]))), stdout);
    return 0;
  }
  const QCoreApplication application(argc, argv);
  tst_bundle tests;
  return QTest::qExec(&tests, argc, argv);
}
#include "tst_bundle.moc"
