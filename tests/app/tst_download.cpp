#include "app/messageBoxes.h"
#include "base/mainQueue.h"
#include "data/dataControl.h"
#include "tools/watchsim/emulatedWatch.h"
#include "tools/watchsim/watchMemory.h"
#include "windowFixture.h"

#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

namespace {

constexpr int runCount = 3;

EmulatedWatchOptions smallWatch() {
  return {.memory = makeMemory({.runs = runCount, .pointsPerRun = 20}), .fullSpeed = true};
}

}  // namespace

/// The download command of the real window, over a pseudo-terminal to an emulated watch.
class tst_download : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void runsArriveAndTheWatchIsErased();
  void declinedErasureKeepsTheWatch();
  void anErasureThatFailsIsTold();
  void nothingNewAddsNothing();
  void warningsBeforeTheErasure_data();
  void warningsBeforeTheErasure();
  void aQuestionWaitsForTheMessage();
  void messages_data();
  void messages();
  void statusLines_data();
  void statusLines();
  void secondDownloadWhileOneRuns();
  void aSilentWatchGivesWay();
  void noProgressIsLeftOver();
};

void tst_download::runsArriveAndTheWatchIsErased() {
  WindowFixture fixture;
  fixture.start();
  EmulatedWatch watch(smallWatch());
  QVERIFY(watch.start().isNull());
  fixture.registry->node = watch.path();
  fixture.dialogs->eraseAnswer = true;
  QString before;  // the answer comes before the refresh
  fixture.dialogs->duringQuestion = [&] {
    QTest::qWait(200);
    before = fixture.controller->statusLine->text() +
             QString::number(fixture.controller->runViewData.size());
  };
  fixture.controller->didReceiveTitle("Map Load OK");

  fixture.controller->downloadDataBu();
  QVERIFY(fixture.controller->progressBar->isVisible());
  QTRY_COMPARE_WITH_TIMEOUT(fixture.controller->runViewData.size(), std::size_t{runCount}, 20000);
  QTRY_COMPARE(fixture.controller->pointViewData.size(), 20U);
  QTRY_VERIFY(!fixture.controller->progressBar->isVisible());
  QTRY_COMPARE(fixture.controller->getNewData, 0);
  QTRY_COMPARE(fixture.map.calls.filter("MapPolyline").size(), 1);
  QVERIFY(fixture.controller->lapViewData.size() > 1);
  QCOMPARE(fixture.dialogs->questions, QStringList{"時計本体のデータを消去しますか？"});
  QVERIFY(fixture.dialogs->messages().isEmpty());
  QCOMPARE(before, "新しいラン3件を保存しました。0");
  QTRY_VERIFY(watch.commands().contains("erase"));
  QCOMPARE(fixture.controller->statusLine->text(), "時計に消去の命令を送りました。");

  fixture.controller->downloadDataBu();
  QTRY_COMPARE_WITH_TIMEOUT(fixture.dialogs->messages(), QStringList{"データがありません。"},
                            20000);
  QCOMPARE(dataControl().getRunData("all", {}).size(), runCount);
  watch.stop();
}

void tst_download::declinedErasureKeepsTheWatch() {
  WindowFixture fixture;
  EmulatedWatch watch(smallWatch());
  QVERIFY(watch.start().isNull());
  fixture.registry->node = watch.path();
  fixture.controller->downloadDataBu();
  QTRY_COMPARE_WITH_TIMEOUT(fixture.controller->runViewData.size(), std::size_t{runCount}, 20000);
  fixture.settle();
  QVERIFY(!watch.commands().contains("erase"));
}

void tst_download::anErasureThatFailsIsTold() {
  WindowFixture fixture;
  EmulatedWatch watch(smallWatch());
  QVERIFY(watch.start().isNull());
  fixture.registry->node = watch.path();
  fixture.dialogs->eraseAnswer = true;
  fixture.dialogs->duringQuestion = [&] { fixture.registry->node = QString(); };
  fixture.controller->downloadDataBu();
  fixture.settle();
  QCOMPARE(fixture.controller->statusLine->text(),
           "時計のデータを消去できませんでした。"
           "時計のUSBデバイスが見つかりません。ケーブルの接続を確認して下さい。");
}

void tst_download::nothingNewAddsNothing() {
  WindowFixture fixture;
  EmulatedWatch watch(smallWatch());
  QVERIFY(watch.start().isNull());
  fixture.registry->node = watch.path();
  for (int i = 0; i < 2; ++i) {
    fixture.controller->downloadDataBu();
    fixture.settle();
  }
  QCOMPARE(dataControl().getRunData("all", {}).size(), runCount);
  QCOMPARE(dataControl().getTrackData(1).size(), 20);
  QCOMPARE(fixture.dialogs->questions.size(), 1);
  QCOMPARE(fixture.controller->statusLine->text(), "新しいランはありませんでした。");
}

void tst_download::warningsBeforeTheErasure_data() {
  QTest::addColumn<bool>("runFails");
  QTest::addColumn<bool>("fileFails");
  QTest::addColumn<QString>("message");
  QTest::addColumn<QString>("line");
  QTest::newRow("a run is not stored")
      << true << false
      << "3件のうち1件のランを保存できませんでした。受信したデータは「lastDownload-"
      << "3件のうち1件のランを保存できませんでした。";
  QTest::newRow("the lines are not kept") << false << true << "控えをファイルに残せませんでした"
                                          << "新しいラン3件を保存しました。";
}

void tst_download::warningsBeforeTheErasure() {
  QFETCH(bool, runFails);
  QFETCH(bool, fileFails);
  QFETCH(QString, message);
  QFETCH(QString, line);
  EmulatedWatchOptions options = smallWatch();
  if (runFails) {
    options.memory[0].replace(18, 7, "O'Brien");  // the name, in the first run's header
  }
  WindowFixture fixture;
  EmulatedWatch watch(options);
  QVERIFY(watch.start().isNull());
  fixture.registry->node = watch.path();
  if (fileFails) {
    QVERIFY(QDir().mkpath(fixture.file("lastDownload.txt")));
  }
  QString saidBefore;
  fixture.dialogs->duringQuestion = [&] { saidBefore = fixture.dialogs->messages().join(u'|'); };
  fixture.controller->downloadDataBu();
  fixture.settle();
  QVERIFY2(saidBefore.contains(message), qUtf8Printable(saidBefore));
  const QString status = fixture.controller->statusLine->text();
  QVERIFY2(status.startsWith(line), qUtf8Printable(status));
  QCOMPARE(dataControl().getRunData("all", {}).size(), runFails ? runCount - 1 : runCount);
}

void tst_download::aQuestionWaitsForTheMessage() {
  QWidget window;
  MessageBoxes boxes;
  boxes.setWindow(&window);
  boxes.message("message");
  QStringList shown;
  QTimer clicks;
  connect(&clicks, &QTimer::timeout, [&shown, &window] {
    const auto open = window.findChildren<QMessageBox*>();
    if (!open.isEmpty() && open.constLast()->isVisible()) {
      shown << open.constLast()->informativeText();
      open.constLast()->buttons().constLast()->click();
    }
  });
  clicks.start(10);
  mainQueue::post([&] { boxes.confirmErase("question"); });
  QTRY_COMPARE(shown, (QStringList{"message", "question"}));
}

void tst_download::messages_data() {
  QTest::addColumn<int>("misbehaviour");
  QTest::addColumn<QString>("message");
  QTest::newRow("silent") << 0 << "データが見当たりません、USBの接続を確認して下さい。";
  QTest::newRow("two lines") << 1 << "データがありません。";
  QTest::newRow("not connected") << 2 << "時計を認識出来ません、再度USB接続を確認して下さい。";
}

void tst_download::messages() {
  QFETCH(int, misbehaviour);
  QFETCH(QString, message);
  EmulatedWatchOptions options = smallWatch();
  options.isSilent = misbehaviour == 0;
  options.onlyBlocks = misbehaviour == 1 ? std::optional<qint32>(2) : std::nullopt;
  WindowFixture fixture;
  EmulatedWatch watch(options);
  QVERIFY(watch.start().isNull());
  fixture.registry->node = misbehaviour == 2 ? QString() : watch.path();
  fixture.controller->downloadDataBu();
  QTRY_VERIFY_WITH_TIMEOUT(fixture.dialogs->messages().contains(message), 20000);
  QTRY_VERIFY(!fixture.controller->progressBar->isVisible());
  QVERIFY(fixture.dialogs->questions.isEmpty());
  QVERIFY(fixture.controller->runViewData.empty());
  watch.stop();
}

void tst_download::statusLines_data() {
  QTest::addColumn<QString>("node");
  QTest::addColumn<QString>("line");
  QTest::newRow("no device") << QString() << "USBデバイスが見つかりません";
  QTest::newRow("no terminal") << "/dev/null"
                               << "シリアルポートを開けませんでした";
  QTest::newRow("no such port") << "/dev/no-such-port"
                                << "シリアルポートがありません";
}

void tst_download::statusLines() {
  QFETCH(QString, node);
  QFETCH(QString, line);
  WindowFixture fixture;
  fixture.registry->node = node;
  fixture.controller->downloadDataBu();
  fixture.settle();
  QVERIFY2(fixture.controller->statusLine->text().contains(line),
           qUtf8Printable(fixture.controller->statusLine->text()));
}

void tst_download::secondDownloadWhileOneRuns() {
  WindowFixture fixture;
  fixture.window->show();
  EmulatedWatch watch({.memory = makeMemory({.runs = runCount, .pointsPerRun = 200})});
  QVERIFY(watch.start().isNull());
  fixture.registry->node = watch.path();
  fixture.controller->downloadDataBu();
  QTRY_VERIFY(watch.commands().contains("link"));
  fixture.controller->downloadDataBu();
  QTRY_COMPARE(fixture.controller->statusLine->text(),
               "ダウンロードは既に実行中です。終わるまでお待ち下さい。");
  QVERIFY(fixture.controller->progressBar->isVisible());
  QTRY_COMPARE_WITH_TIMEOUT(fixture.controller->runViewData.size(), std::size_t{runCount}, 20000);
  fixture.settle();
  QCOMPARE(fixture.dialogs->messages(),
           QStringList{"時計を認識出来ません、再度USB接続を確認して下さい。"});
  QCOMPARE(dataControl().getTrackData(1).size(), 200);
  QVERIFY(!fixture.controller->progressBar->isVisible());
}

/// The line says so, and the next download does not wait for it.
void tst_download::aSilentWatchGivesWay() {
  WindowFixture fixture;
  fixture.window->show();
  EmulatedWatchOptions options = smallWatch();
  options.sendsEndMarker = false;
  EmulatedWatch silent(options);
  EmulatedWatch good(smallWatch());
  QVERIFY(silent.start().isNull() && good.start().isNull());
  fixture.registry->node = silent.path();
  fixture.controller->downloadDataBu();
  QTRY_VERIFY(fixture.controller->statusLine->text().startsWith("データが届いていません。"));
  QVERIFY(fixture.controller->progressBar->isVisible());
  fixture.registry->node = good.path();
  fixture.controller->downloadDataBu();
  fixture.settle();
  QCOMPARE(fixture.controller->runViewData.size(), std::size_t{runCount});
  QCOMPARE(fixture.controller->statusLine->text(), "新しいラン3件を保存しました。");
  QVERIFY(!fixture.controller->progressBar->isVisible());
}

/// One that starts before the bar of the last has seen its end: settling needs the end of both.
void tst_download::noProgressIsLeftOver() {
  WindowFixture fixture;
  fixture.start();
  for (int download = 0; download < 10; ++download) {
    fixture.controller->downloadDataBu();
    while (fixture.controller->progressBar->isVisible()) {
      QCoreApplication::processEvents();
    }
  }
}

QTEST_MAIN(tst_download)
#include "tst_download.moc"
