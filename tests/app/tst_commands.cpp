#include "storedRuns.h"
#include "windowFixture.h"

#include <QLabel>
#include <QTableView>
#include <QTimer>

namespace {

QByteArray content(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  QVERIFY(file.open(QIODevice::WriteOnly));
  file.write(bytes);
}

}  // namespace

/// The commands as the user gives them: keys in the real window.
class TestCommands : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void keys_data();
  void keys();
  void backUpAndRestore();
  void backupKeepsAnExistingFile();
  void restoreOfNoDatabase();
  void closingQuits();
};

void TestCommands::keys_data() {
  QTest::addColumn<QKeySequence>("keys");
  QTest::addColumn<QString>("asked");
  const QString day = "20260502073000";
  QTest::newRow("TCX") << QKeySequence("Ctrl+T") << "Save File|" + day + "|TCX";
  QTest::newRow("GPX") << QKeySequence("Ctrl+G") << "Save File|" + day + "|GPX";
  QTest::newRow("backup") << QKeySequence("Ctrl+B") << "Backup Data|";
  QTest::newRow("restore") << QKeySequence("Ctrl+O") << "Recover Data|db3";
  QTest::newRow("delete") << QKeySequence("Del") << "このデータを消去しますか？";
  QTest::newRow("delete all") << QKeySequence("Ctrl+Shift+Del") << "全てのデータを消去しますか？";
  QTest::newRow("download") << QKeySequence("Ctrl+D")
                            << "時計を認識出来ません、再度USB接続を確認して下さい。";
}

void TestCommands::keys() {
  QFETCH(QKeySequence, keys);
  QFETCH(QString, asked);
  WindowFixture fixture;
  storeRuns(2);
  fixture.start();
  const QByteArray before = content(fixture.file("gpsData.db3"));
  QVERIFY(QTest::qWaitForWindowActive(fixture.window.get()));
  QTest::keySequence(fixture.window.get(), keys);
  fixture.settle();
  const QStringList said =
      fixture.dialogs->panels + fixture.dialogs->questions + fixture.dialogs->messages();
  QCOMPARE(said.size(), 1);
  QVERIFY2(said[0].startsWith(asked), qUtf8Printable(said[0]));
  QCOMPARE(content(fixture.file("gpsData.db3")), before);  // every question was answered with no
}

void TestCommands::backUpAndRestore() {
  WindowFixture fixture;
  storeRuns(2);
  fixture.start();
  fixture.dialogs->fileAnswer = fixture.file("copy.db3");
  fixture.controller->BackupData();
  QCOMPARE(content(fixture.file("copy.db3")), content(fixture.file("gpsData.db3")));
  fixture.dialogs->eraseAnswer = true;
  fixture.controller->deleteOneData();
  fixture.settle();
  QCOMPARE(fixture.controller->tView->model()->rowCount(), 1);
  fixture.controller->RecoverData();
  fixture.settle();
  QCOMPARE(fixture.controller->runKArr, QStringList({"02", "01"}));
  QCOMPARE(dataControl().getMaxCnumber("T_RunData"), 2);
  QCOMPARE(fixture.controller->getNewData, 0);
}

void TestCommands::backupKeepsAnExistingFile() {
  WindowFixture fixture;
  storeRuns(1);
  fixture.start();
  fixture.dialogs->fileAnswer = fixture.file("old.db3");
  write(fixture.file("old.db3"), "an older backup");
  fixture.controller->BackupData();
  QCOMPARE(content(fixture.file("old.db3")), QByteArray("an older backup"));
  QVERIFY(fixture.controller->statusLine->text().startsWith("バックアップできませんでした"));
}

void TestCommands::restoreOfNoDatabase() {
  WindowFixture fixture;
  storeRuns(2);
  fixture.start();
  const QByteArray before = content(fixture.file("gpsData.db3"));
  fixture.dialogs->fileAnswer = fixture.file("photo.db3");
  write(fixture.file("photo.db3"), "not a database");
  fixture.controller->RecoverData();
  fixture.settle();
  QCOMPARE(content(fixture.file("gpsData-before-restore.db3")), before);
  QCOMPARE(dataControl().getRunData("all", {}).size(), 0);
  QCOMPARE(fixture.controller->tView->model()->rowCount(), 2);  // without runs the rows stay
  const QString told = fixture.controller->statusLine->text();
  QVERIFY(told.contains("データベースではない") && told.contains("gpsData-before-restore.db3"));
  // The old runs come back from where they were put aside.
  fixture.dialogs->fileAnswer = fixture.file("gpsData-before-restore.db3");
  fixture.controller->RecoverData();
  fixture.settle();
  QCOMPARE(dataControl().getRunData("all", {}).size(), 2);
}

void TestCommands::closingQuits() {
  WindowFixture fixture;
  fixture.start();
  QSignalSpy quits(qApp, &QCoreApplication::aboutToQuit);
  QTimer::singleShot(0, fixture.window.get(), &QWidget::close);
  QCOMPARE(QCoreApplication::exec(), 0);
  QCOMPARE(quits.size(), 1);
}

QTEST_MAIN(TestCommands)
#include "tst_commands.moc"
