#include "app/application.h"
#include "app/messageBoxes.h"
#include "app/shortText.h"
#include "app/statusLine.h"
#include "app/windowState.h"
#include "base/mainQueue.h"
#include "storedRuns.h"
#include "tests/columns.h"
#include "tests/files.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>
#include <QToolButton>

/// The window itself: its keys, its boxes and what it keeps.
class tst_window : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void longTexts() {
    QCOMPARE(shortened(QString(1000000, u'\u0301')).size(), 301);
    WindowFixture fixture;
    storeRuns(1);
    dataControl().deleteRecord("update T_LapData set T_LapType=printf('%.1000000c','x')");
    fixture.start();
    QCOMPARE(fixture.controller->lapView->model()->index(1, 0).data().toString().size(), 301);
    const QFontMetrics metrics(QGuiApplication::font());
    const QString path = "/home/" + QString(400, u'a') + "/run.tcx";
    const QString line = elidedLine("保存しました：「" + path + "」", metrics, 400);
    QVERIFY(metrics.horizontalAdvance(line) <= 400);
    QVERIFY2(line.startsWith("保存しました：「/home") && line.endsWith("run.tcx」"),
             qUtf8Printable(line));
  }

  void keys_data() {
    const auto row = columns<int, QList<int>, int, int>("table", "keys", "current", "questions");
    row("End", 0, {Qt::Key_End}, 1, 0);
    row("Home", 0, {Qt::Key_End, Qt::Key_Home}, 3, 0);
    row("a date", 0, {'2', '0', '2', '6', '-', '0', '5', '-', '0', '2'}, 2, 0);
    row("Delete", 0, {Qt::Key_Delete}, 3, 1);
    row("Delete among points", 1, {Qt::Key_Delete}, 3, 0);
  }
  void keys() {
    QFETCH(int, table);
    QFETCH(QList<int>, keys);
    StartedWindow fixture(3);
    QVERIFY(QTest::qWaitForWindowActive(fixture.window.get()));
    fixture.window->findChild<QTabWidget*>("trackTabs")->setCurrentIndex(table);
    QTableView* view = table == 0 ? fixture.controller->tView : fixture.controller->pointView;
    view->setCurrentIndex(view->model()->index(0, 1));  // typing is not for this column
    view->setFocus();
    for (const int key : keys) {
      QTest::keyClick(view, static_cast<Qt::Key>(key));
    }
    fixture.settle();
    QTEST(static_cast<int>(fixture.controller->currentNumber), "current");
    QTEST(static_cast<int>(fixture.dialogs->questions.size()), "questions");
    QTest::keySequence(view, QKeySequence::Copy);
    QCOMPARE(QGuiApplication::clipboard()->text().count(u'\t'), view->model()->columnCount() - 1);
  }

  void totalsChooseARun() {
    StartedWindow fixture(9);  // 1 to 9 May 2026, a Friday to a Saturday
    auto* tabs = fixture.window->findChild<QTabWidget*>("runTabs");
    tabs->setCurrentIndex(1);
    auto* totals = tabs->findChild<QTableView*>("totalsView");
    QCOMPARE(totals->model()->rowCount(), 2);
    totals->parentWidget()->findChildren<QToolButton*>().constFirst()->click();
    QCOMPARE(totals->model()->rowCount(), 3);
    QTest::mouseClick(totals->viewport(), Qt::LeftButton, {},
                      totals->visualRect(totals->model()->index(2, 0)).center());
    fixture.settle();
    QCOMPARE(fixture.controller->currentNumber, 3);  // the Sunday is the week's first in the list
  }

  void questions_data() {
    // "answer": a key, 1 for the button, 0 for closing the window, 2 for the key that does so
    const auto row = columns<int, bool>("answer", "erases");
    row("Return keeps", int(Qt::Key_Return), false);
    row("Escape keeps", int(Qt::Key_Escape), false);
    row("the button erases", 1, true);
    row("closing the window keeps and quits", 0, false);
    row("Ctrl+Q keeps and quits", 2, false);
  }
  void questions() {
    QFETCH(int, answer);
    WindowFixture fixture;
    fixture.start();
    MessageBoxes boxes;
    boxes.setWindow(fixture.window.get());
    QTimer::singleShot(100, [&] {
      auto* box = fixture.window->findChild<QMessageBox*>();
      QCOMPARE(box->informativeText(), "question");
      if (answer == 0) {
        // As the desktop asks for it: no window may block another one then.
        QVERIFY(QGuiApplication::modalWindow() == nullptr);
        fixture.window->close();
      } else if (answer == 1) {
        box->buttons().constLast()->click();
      } else if (answer == 2) {
        QTest::keyClick(box, Qt::Key_Q, Qt::ControlModifier);
      } else {
        QTest::keyClick(box, static_cast<Qt::Key>(answer));
      }
    });
    bool erases = true;
    QTimer::singleShot(0, [&] {
      erases = boxes.confirmErase("question");
      QCoreApplication::quit();
    });
    QCoreApplication::exec();
    QTEST(erases, "erases");
  }

  // What fails in a command ends that, and nothing else.
  void failuresInsideCommands() {
    StartedWindow fixture(1);
    QVERIFY(QTest::qWaitForWindowActive(fixture.window.get()));
    fixture.dialogs->fileAnswer = fixture.file("run.TCX");
    fixture.dialogs->duringPanel = [] { throw std::bad_alloc(); };
    QTest::keySequence(fixture.window.get(), QKeySequence("Ctrl+T"));
    fixture.settle();
    const QString line = fixture.controller->statusLine->text();
    QVERIFY2(line.contains("内部エラー"), qUtf8Printable(line));
    QVERIFY(QDir(fixture.folder.path()).entryList({"run*"}).isEmpty());
    fixture.dialogs->duringPanel = {};
    QTest::keySequence(fixture.window.get(), QKeySequence("Ctrl+T"));
    QVERIFY(QFile::exists(fixture.file("run.TCX")));
  }

  void keptState_data() {
    // "width": of the second column, 0: whatever fits
    const auto row = columns<QByteArray, int>("content", "width");
    row("kept", R"({"place":[0,0,700,500],"sizes":{"runs":[0,222,0]}})", 222);
    row("garbled", "{\"place\":[0,0,7", 0);
    row("absurd",
        R"({"place":[-9,1e99,70000,5],"sizes":{"main":[-1,"x"],)"
        R"("right":[0,0,0],"runs":[1e9,-5,{}]}})",
        0);
  }
  void keptState() {
    QFETCH(QByteArray, content);
    QFETCH(int, width);
    WindowFixture fixture;
    const QString path = fixture.file("state/trakko/window.json");
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    writeBytes(path, content);
    fixture.window->keepStateIn(path);
    fixture.start();
    QVERIFY(fixture.window->screen()->availableGeometry().contains(fixture.window->geometry()));
    QVERIFY(fixture.controller->lapView->width() > 100);
    const int shown = fixture.controller->tView->columnWidth(1);
    QVERIFY(width == 0 ? shown > 20 && shown < 700 : shown == width);
    fixture.window->close();
    QCOMPARE(readWindowState(path).sizes.value("runs").at(1), width);
  }
};

int main(int argc, char** argv) {
  const Application application(argc, argv);
  tst_window test;
  return QTest::qExec(&test, argc, argv);
}
#include "tst_window.moc"
