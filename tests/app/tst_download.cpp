#include "app/messageBoxes.h"
#include "base/mainQueue.h"
#include "data/dataControl.h"
#include "tests/columns.h"
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

/// The window beside a watch that is plugged in; every erase question is declined.
struct PluggedWindow : WindowFixture {
  EmulatedWatch watch;

  explicit PluggedWindow(const EmulatedWatchOptions& options = smallWatch()) : watch(options) {
    if (!watch.start().isNull()) {
      qFatal("no watch");
    }
    registry->plugWatch(watch.path());
  }
  ~PluggedWindow() { settle(); }  // before the watch goes
  PluggedWindow(const PluggedWindow&) = delete;
  PluggedWindow& operator=(const PluggedWindow&) = delete;

  void download() {
    controller->downloadDataBu();
    settle();
  }
  QString line() const { return controller->statusLine->text(); }
};

}  // namespace

/// The download command of the real window, over a pseudo-terminal to an emulated watch.
class tst_download : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void runsArriveAndTheWatchIsErased() {
    PluggedWindow fixture;
    fixture.start();
    fixture.dialogs->eraseAnswer = true;
    QString before;  // the answer comes before the refresh
    fixture.dialogs->duringQuestion = [&] {
      QTest::qWait(200);
      before = fixture.line() + QString::number(fixture.controller->runViewData.size());
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
    QTRY_VERIFY(fixture.watch.commands().contains("erase"));
    QCOMPARE(fixture.line(), "時計に消去の命令を送りました。");

    fixture.controller->downloadDataBu();
    QTRY_COMPARE_WITH_TIMEOUT(fixture.dialogs->messages(), QStringList{"データがありません。"},
                              20000);
    QCOMPARE(dataControl().getRunData("all", {}).size(), runCount);
  }

  void anErasureThatFailsIsTold() {
    PluggedWindow fixture;
    fixture.dialogs->eraseAnswer = true;
    fixture.dialogs->duringQuestion = [&] { fixture.registry->usb.clear(); };
    fixture.download();
    QCOMPARE(fixture.line(),
             "時計のデータを消去できませんでした。"
             "時計のUSBデバイスが見つかりません。ケーブルの接続を確認して下さい。");
  }

  void nothingNewAddsNothing() {
    PluggedWindow fixture;
    fixture.download();
    fixture.download();
    QCOMPARE(dataControl().getRunData("all", {}).size(), runCount);
    QCOMPARE(dataControl().getTrackData(1).size(), 20);
    QCOMPARE(fixture.dialogs->questions.size(), 1);
    QCOMPARE(fixture.line(), "新しいランはありませんでした。");
    QVERIFY(!fixture.watch.commands().contains("erase"));
  }

  // The points of several new runs go by their place among the new ones.
  void newRunsAmongKnownOnesAreDoubtful() {
    PluggedWindow fixture;
    fixture.download();
    QCOMPARE(dataControl().deleteOneData(2), 1);
    QCOMPARE(dataControl().deleteOneData(3), 1);
    fixture.download();
    QVERIFY(fixture.dialogs->messages().join(u'|').contains("別のランに入っているかもしれません"));
    QVERIFY2(fixture.line().startsWith("新しいラン2件を保存しました。"),
             qUtf8Printable(fixture.line()));
  }

  void warningsBeforeTheErasure_data() {
    const auto row =
        columns<bool, bool, QString, QString>("runFails", "fileFails", "message", "line");
    row("a run is not stored", true, false,
        "3件のうち1件のランを保存できませんでした。受信したデータは「/",
        "3件のうち1件のランを保存できませんでした。");
    row("the lines are not kept", false, true, "控えをファイルに残せませんでした",
        "新しいラン3件を保存しました。");
  }
  void warningsBeforeTheErasure() {
    QFETCH(bool, runFails);
    QFETCH(bool, fileFails);
    QFETCH(QString, message);
    QFETCH(QString, line);
    EmulatedWatchOptions options = smallWatch();
    if (runFails) {
      options.memory[0].replace(18, 7, "O'Brien");  // the name, in the first run's header
    }
    PluggedWindow fixture(options);
    QVERIFY(!fileFails || QDir().mkpath(fixture.file("lastDownload.txt")));
    QString saidBefore;
    fixture.dialogs->duringQuestion = [&] { saidBefore = fixture.dialogs->messages().join(u'|'); };
    fixture.download();
    QVERIFY2(saidBefore.contains(message), qUtf8Printable(saidBefore));
    QVERIFY2(fixture.line().startsWith(line), qUtf8Printable(fixture.line()));
    QCOMPARE(dataControl().getRunData("all", {}).size(), runFails ? runCount - 1 : runCount);
  }

  void aQuestionWaitsForTheMessage() {
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

  void failures_data() {
    const auto row = columns<QString, bool, QString, QString>("node", "silent", "message", "line");
    row("silent", "watch", true, noData, noData);
    row("two lines", "watch", false, "データがありません。", "データがありません。");
    row("no device", {}, false, notRecognised, "USBデバイスが見つかりません");
    row("no terminal", "/dev/null", false, notRecognised, "シリアルポートを開けませんでした");
    row("no such port", "/dev/no-such-port", false, notRecognised, "シリアルポートがありません");
  }
  void failures() {
    QFETCH(QString, node);
    QFETCH(QString, message);
    QFETCH(QString, line);
    QFETCH(bool, silent);
    EmulatedWatchOptions options = smallWatch();
    options.isSilent = silent;
    options.onlyBlocks = 2;
    PluggedWindow fixture(options);
    if (node.isNull()) {
      fixture.registry->usb.clear();
    } else if (node != "watch") {
      fixture.registry->plugWatch(node);
    }
    fixture.controller->downloadDataBu();
    QTRY_VERIFY_WITH_TIMEOUT(fixture.line().contains(line), 20000);
    QTRY_COMPARE(fixture.dialogs->messages().value(0), message);
    QTRY_VERIFY(!fixture.controller->progressBar->isVisible());
    fixture.watch.stop();  // ends a download that waits
    QVERIFY(fixture.dialogs->questions.isEmpty());
    QVERIFY(fixture.controller->runViewData.empty());
  }

  void secondDownloadWhileOneRuns() {
    PluggedWindow fixture({.memory = makeMemory({.runs = runCount, .pointsPerRun = 200})});
    fixture.window->show();
    fixture.controller->downloadDataBu();
    QTRY_VERIFY(fixture.watch.commands().contains("link"));
    fixture.controller->downloadDataBu();
    QTRY_COMPARE(fixture.line(), "ダウンロードは既に実行中です。終わるまでお待ち下さい。");
    QVERIFY(fixture.controller->progressBar->isVisible());
    QTRY_COMPARE_WITH_TIMEOUT(fixture.controller->runViewData.size(), std::size_t{runCount}, 20000);
    fixture.settle();
    QCOMPARE(fixture.dialogs->messages(), QStringList{notRecognised});
    QCOMPARE(dataControl().getTrackData(1).size(), 200);
    QVERIFY(!fixture.controller->progressBar->isVisible());
  }

  /// The line says so, and the next download does not wait for it.
  void aSilentWatchGivesWay() {
    EmulatedWatchOptions options = smallWatch();
    options.sendsEndMarker = false;
    PluggedWindow fixture(options);
    fixture.window->show();
    EmulatedWatch good(smallWatch());
    QVERIFY(good.start().isNull());
    fixture.controller->downloadDataBu();
    QTRY_VERIFY(fixture.line().startsWith("データが届いていません。"));
    QVERIFY(fixture.controller->progressBar->isVisible());
    fixture.registry->plugWatch(good.path());
    fixture.download();
    QCOMPARE(fixture.controller->runViewData.size(), std::size_t{runCount});
    QCOMPARE(fixture.line(), "新しいラン3件を保存しました。");
    QVERIFY(!fixture.controller->progressBar->isVisible());
  }

  void aThreadThatFailsIsTold() {
    const PluggedWindow fixture;
    QVERIFY(detachThread("work", [] { throw 1; }));
    QTRY_VERIFY(fixture.line().contains("内部エラー"));
  }

  /// One that starts before the bar of the last has seen its end: settling needs the end of both.
  void noProgressIsLeftOver() {
    WindowFixture fixture;
    fixture.start();
    for (int download = 0; download < 10; ++download) {
      fixture.controller->downloadDataBu();
      while (fixture.controller->progressBar->isVisible()) {
        QCoreApplication::processEvents();
      }
    }
  }
};

QTEST_MAIN(tst_download)
#include "tst_download.moc"
