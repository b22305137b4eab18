#include "app/DFView.h"
#include "app/messageBoxes.h"
#include "storedRuns.h"
#include "tests/columns.h"
#include "tests/files.h"

#include <QApplication>
#include <QDropEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMimeData>
#include <QTableView>
#include <QTimer>

namespace {

/// Counts how often a widget is painted.
struct Paintings : QObject {
  int count = 0;
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    count += event->type() == QEvent::Paint ? 1 : 0;
    return false;
  }
};

}  // namespace

/// The commands as the user gives them: keys in the real window.
class tst_commands : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void keys_data() {
    const auto row = columns<QKeySequence, QString>("keys", "asked");
    const QString day = "20260502073000";
    row("TCX", QKeySequence("Ctrl+T"), "Save File|" + day + "|TCX");
    row("GPX", QKeySequence("Ctrl+G"), "Save File|" + day + "|GPX");
    row("backup", QKeySequence("Ctrl+B"), "Backup Data|");
    row("restore", QKeySequence("Ctrl+O"), "Recover Data|db3");
    row("delete", QKeySequence("Del"), "このデータを消去しますか？");
    row("delete all", QKeySequence("Ctrl+Shift+Del"), "全てのデータを消去しますか？");
    row("download", QKeySequence("Ctrl+D"), "時計を認識出来ません、再度USB接続を確認して下さい。");
  }
  void keys() {
    QFETCH(QKeySequence, keys);
    QFETCH(QString, asked);
    StartedWindow fixture(2);
    const QByteArray before = bytesOf(fixture.file("gpsData.db3"));
    QVERIFY(QTest::qWaitForWindowActive(fixture.window.get()));
    QTest::keySequence(fixture.window.get(), keys);
    fixture.settle();
    const QStringList said =
        fixture.dialogs->panels + fixture.dialogs->questions + fixture.dialogs->messages();
    QCOMPARE(said.size(), 1);
    QVERIFY2(said[0].startsWith(asked), qUtf8Printable(said[0]));
    QCOMPARE(bytesOf(fixture.file("gpsData.db3")), before);  // every question was answered with no
  }

  // The panels themselves offer files of their type alone.
  void panels_data() {
    const auto row = columns<bool, QString, QString, QString>("saves", "name", "type", "shown");
    row("save", true, "name", "TCX", "title|TCX (*.TCX)|name.TCX");
    row("save under a name without end", true, QString(1000000, u'\u0301'), "TCX",
        "title|TCX (*.TCX)|" + QString(96, u'\u0301') + ".TCX");
    row("save under many bytes", true, "x" + QString(99, u'文'), "TCX",
        "title|TCX (*.TCX)|x" + QString(83, u'文') + ".TCX");
    row("open", false, {}, "db3", "title|db3 (*.db3)|");
  }
  void panels() {
    QFETCH(bool, saves);
    QFETCH(QString, name);
    QFETCH(QString, type);
    QString shown;
    QTimer::singleShot(0, this, [&] {
      for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* panel = qobject_cast<QFileDialog*>(widget)) {
          shown = panel->windowTitle() + '|' + panel->nameFilters().join(' ') + '|' +
                  (saves ? panel->selectedFiles().value(0).section('/', -1) : QString());
          panel->reject();
        }
      }
    });
    MessageBoxes boxes;
    QVERIFY(
        (saves ? boxes.fileToSave("title", name, type) : boxes.fileToOpen("title", type)).isNull());
    QTEST(shown, "shown");
  }

  void backUpAndRestore() {
    StartedWindow fixture(2);
    fixture.dialogs->fileAnswer = fixture.file("copy.db3");
    fixture.controller->BackupData();
    fixture.settle();
    QCOMPARE(bytesOf(fixture.file("copy.db3")), bytesOf(fixture.file("gpsData.db3")));
    fixture.dialogs->eraseAnswer = true;
    fixture.controller->deleteOneData();
    fixture.settle();
    QCOMPARE(fixture.controller->tView->model()->rowCount(), 1);
    Paintings calendar;
    fixture.controller->viewMonth->installEventFilter(&calendar);
    fixture.controller->RecoverData();
    QTRY_COMPARE(fixture.controller->runKArr, QStringList({"02", "01"}));
    fixture.settle();
    QVERIFY(calendar.count > 0);
    QCOMPARE(dataControl().getMaxCnumber("T_RunData"), 2);
    QCOMPARE(fixture.controller->getNewData, 0);
    QCOMPARE(fixture.dialogs->questions.size(), 1);
  }

  void restoreOfDoubtfulFiles_data() {
    const auto row = columns<QByteArray, bool, bool, QString>("bytes", "dropped", "goesOn", "told");
    row("declined", "not a database", false, false, "復元しませんでした。");
    row("no database", "not a database", false, true, "データベースではない");
    row("empty, dropped", "", true, true, "空のファイル");
  }
  void restoreOfDoubtfulFiles() {
    QFETCH(QByteArray, bytes);
    QFETCH(bool, dropped);
    QFETCH(bool, goesOn);
    QFETCH(QString, told);
    StartedWindow fixture(2);
    const QByteArray before = bytesOf(fixture.file("gpsData.db3"));
    fixture.dialogs->fileAnswer = fixture.file("photo.db3");
    fixture.dialogs->confirmAnswer = goesOn;
    writeBytes(fixture.file("photo.db3"), bytes);
    QMimeData dragged;
    dragged.setUrls({QUrl::fromLocalFile(fixture.file("photo.db3"))});
    QDropEvent drop({}, Qt::CopyAction, &dragged, Qt::LeftButton, {});
    if (dropped) {
      static_cast<QObject*>(fixture.window.get())->event(&drop);
    } else {
      fixture.controller->RecoverData();
    }
    QTRY_VERIFY(fixture.controller->statusLine->text().contains(told) &&
                fixture.dialogs->questions.size() == 1);
    fixture.settle();
    QVERIFY(fixture.dialogs->questions[0].endsWith("|復元"));
    QCOMPARE(bytesOf(fixture.file(goesOn ? "gpsData-before-restore.db3" : "gpsData.db3")), before);
    QCOMPARE(dataControl().getRunData("all", {}).size(), goesOn ? 0 : 2);
    QCOMPARE(fixture.controller->tView->model()->rowCount(), 2);  // without runs the rows stay
    if (goesOn) {  // the old runs come back from where they were put aside
      QVERIFY(fixture.controller->statusLine->text().contains("gpsData-before-restore.db3"));
      fixture.controller->recoverFrom(fixture.file("gpsData-before-restore.db3"));
      QTRY_COMPARE(dataControl().getRunData("all", {}).size(), 2);
    }
  }

  void closingQuits() {
    WindowFixture fixture;
    fixture.start();
    QSignalSpy quits(qApp, &QCoreApplication::aboutToQuit);
    QTimer::singleShot(0, fixture.window.get(), &QWidget::close);
    QCOMPARE(QCoreApplication::exec(), 0);
    QCOMPARE(quits.size(), 1);
  }
};

QTEST_MAIN(tst_commands)
#include "tst_commands.moc"
