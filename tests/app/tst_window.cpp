#include "app/messageBoxes.h"
#include "app/shortText.h"
#include "app/statusLine.h"
#include "app/windowState.h"
#include "base/mainQueue.h"
#include "storedRuns.h"
#include "windowFixture.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>
#include <QToolButton>

/// The window itself: its keys, its boxes and what it keeps.
class TestWindow : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void titles();
  void longTexts();
  void keys_data();
  void keys();
  void totalsChooseARun();
  void questions_data();
  void questions();
  void keptState_data();
  void keptState();
};

void TestWindow::titles() {
  WindowFixture fixture;
  fixture.start();
  QStringList titles;
  for (const QTableView* table :
       {fixture.controller->tView, fixture.controller->lapView, fixture.controller->pointView}) {
    for (int column = 0; column < table->model()->columnCount(); ++column) {
      titles << table->model()->headerData(column, Qt::Horizontal).toString();
    }
  }
  QCOMPARE(titles.join(u'|'),
           "開始日時|終了日時|距離 (km)|ラップ|タイム|距離 (km)|平均速度 (km/h)|平均ペース (/km)|"
           "最高速度 (km/h)|平均心拍|最大心拍|タイムゾーン|カロリー|番号|時刻|距離 (km)|"
           "平均速度 (km/h)|平均ペース (/km)|心拍数 (bpm)|カロリー|高度 (m)");
}

void TestWindow::longTexts() {
  QCOMPARE(shortened(QString(1000000, u'\u0301')).size(), 301);
  const QFontMetrics metrics(QGuiApplication::font());
  const QString path = "/home/" + QString(400, u'a') + "/run.tcx";
  const QString line = elidedLine("保存しました：「" + path + "」", metrics, 400);
  QVERIFY(metrics.horizontalAdvance(line) <= 400);
  QVERIFY2(line.startsWith("保存しました：「/home") && line.endsWith("run.tcx」"),
           qUtf8Printable(line));
}

void TestWindow::keys_data() {
  QTest::addColumn<int>("table");
  QTest::addColumn<QList<int>>("keys");
  QTest::addColumn<int>("current");  // run
  QTest::addColumn<int>("questions");
  QTest::newRow("End") << 0 << QList<int>{Qt::Key_End} << 1 << 0;
  QTest::newRow("Home") << 0 << QList<int>{Qt::Key_End, Qt::Key_Home} << 3 << 0;
  QTest::newRow("a date") << 0 << QList<int>{'2', '0', '2', '6', '-', '0', '5', '-', '0', '2'} << 2
                          << 0;
  QTest::newRow("Delete") << 0 << QList<int>{Qt::Key_Delete} << 3 << 1;
  QTest::newRow("Delete among points") << 1 << QList<int>{Qt::Key_Delete} << 3 << 0;
}

void TestWindow::keys() {
  QFETCH(int, table);
  QFETCH(QList<int>, keys);
  WindowFixture fixture;
  storeRuns(3);
  fixture.start();
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

void TestWindow::totalsChooseARun() {
  WindowFixture fixture;
  storeRuns(9);  // 1 to 9 May 2026, a Friday to a Saturday
  fixture.start();
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

void TestWindow::questions_data() {
  QTest::addColumn<int>("answer");  // a key, 1 for the button, 0 for closing the window
  QTest::addColumn<bool>("erases");
  QTest::newRow("Return keeps") << int(Qt::Key_Return) << false;
  QTest::newRow("Escape keeps") << int(Qt::Key_Escape) << false;
  QTest::newRow("the button erases") << 1 << true;
  QTest::newRow("closing the window keeps and quits") << 0 << false;
}

void TestWindow::questions() {
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

void TestWindow::keptState_data() {
  QTest::addColumn<QByteArray>("content");
  QTest::addColumn<int>("width");  // of the second column, 0: whatever fits
  QTest::newRow("kept") << QByteArray(R"({"place":[0,0,700,500],"sizes":{"runs":[0,222,0]}})")
                        << 222;
  QTest::newRow("garbled") << QByteArray("{\"place\":[0,0,7") << 0;
  QTest::newRow("absurd") << QByteArray(R"({"place":[-9,1e99,70000,5],"sizes":{"main":[-1,"x"],)"
                                        R"("right":[0,0,0],"runs":[1e9,-5,{}]}})")
                          << 0;
}

void TestWindow::keptState() {
  QFETCH(QByteArray, content);
  QFETCH(int, width);
  WindowFixture fixture;
  const QString path = fixture.file("state/trakko/window.json");
  QVERIFY(QDir().mkpath(QFileInfo(path).path()));
  QFile file(path);
  QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
  file.close();
  fixture.window->keepStateIn(path);
  fixture.start();
  QVERIFY(fixture.window->screen()->availableGeometry().contains(fixture.window->geometry()));
  QVERIFY(fixture.controller->lapView->width() > 100);
  const int shown = fixture.controller->tView->columnWidth(1);
  QVERIFY(width == 0 ? shown > 20 && shown < 700 : shown == width);
  fixture.window->close();
  QCOMPARE(readWindowState(path).sizes.value("runs").at(1), width);
}

QTEST_MAIN(TestWindow)
#include "tst_window.moc"
