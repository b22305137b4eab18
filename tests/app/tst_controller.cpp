#include "app/startUpCheck.h"
#include "app/tableRows.h"
#include "base/mainQueue.h"
#include "data/connection.h"
#include "data/dataControl.h"
#include "storedRuns.h"
#include "tests/columns.h"
#include "tests/files.h"

#include <QTableView>

#include <algorithm>
#include <sqlite3.h>

namespace {

QString shown(const QTableView* table, int row, int column) {
  return table->model()->index(row, column).data().toString();
}

/// "title: content" of every column.
QStringList shown(const QTableView* table, int row) {
  QStringList cells;
  for (int column = 0; column < table->model()->columnCount(); ++column) {
    cells << table->model()->headerData(column, Qt::Horizontal).toString() + ": " +
                 shown(table, row, column);
  }
  return cells;
}

}  // namespace

class tst_controller : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void emptyStore() {
    StartedWindow fixture(0);
    QVERIFY(fixture.controller->checkFinishGetData);
    QCOMPARE(fixture.map.calls.size(), 1);
    QVERIFY(fixture.map.calls[0].startsWith("load file://"));
    fixture.controller->didReceiveTitle("Map Load OK");
    fixture.controller->deleteOneData();
    fixture.controller->deleteAllData();
    QVERIFY(fixture.dialogs->questions.isEmpty());
    QCOMPARE(fixture.map.calls.size(), 1);
  }

  void theMapDoesNotWaitForTablesThatNeverCome() {
    WindowFixture fixture;
    for (int step = 1; step < 6; ++step) {
      QTest::ignoreMessage(QtInfoMsg, "1");
    }
    fixture.controller->applicationDidFinishLaunching();
    QTRY_COMPARE(fixture.map.calls.size(), 1);
  }

  void firstRunIsShown() {
    StartedWindow fixture(3);
    const auto& controller = *fixture.controller;
    QCOMPARE(controller.runKArr, QStringList({"03", "02", "01"}));
    QCOMPARE(controller.currentNumber, 3);
    QCOMPARE(controller.tView->selectionModel()->selectedRows().value(0).row(), 0);
    QCOMPARE(shown(controller.tView, 0),
             QStringList({"開始日時: 2026-05-03 07:30:00", "終了日時: 2026-05-03 08:00:00",
                          "距離 (km): 5.000"}));
    QCOMPARE(controller.lapView->model()->rowCount(), 3);
    QCOMPARE(
        shown(controller.lapView, 0),
        QStringList({"ラップ: 2026-05-03 07:30:00", "タイム: 00:30:00.00", "距離 (km): 5.000",
                     "平均速度 (km/h): 10.0", "平均ペース (/km): 06'00", "最高速度 (km/h): 18.0",
                     "平均心拍: 140", "最大心拍: 171", "タイムゾーン: 09:00:00", "カロリー: 322"}));
    QCOMPARE(
        shown(controller.lapView, 2),
        QStringList({"ラップ: Lap 2", "タイム: 00:05:12.34", "距離 (km): 1.235",
                     "平均速度 (km/h): 11.8", "平均ペース (/km): 05'05", "最高速度 (km/h): 15.3",
                     "平均心拍: 141", "最大心拍: 160", "タイムゾーン: 08:00:00", "カロリー: 322"}));
    QCOMPARE(controller.pointView->model()->rowCount(), 12);
    QCOMPARE(shown(controller.pointView, 11),
             QStringList({"番号: 12", "時刻: 07:00:12", "距離 (km): 0.037", "平均速度 (km/h): 12.0",
                          "平均ペース (/km): 05'00", "心拍数 (bpm): 130", "カロリー: 42",
                          "高度 (m): 17"}));
  }

  void missingLapLeavesNoGap() {
    lapData lap;
    lap.T_LapType = "Lap 2";
    const auto rows = lapRows({}, {{"7-2", lap}, {"7-3", lapData()}}, 7);
    QCOMPARE(rows.size(), 2U);  // the run's and lap 2: only so many are looked for as there are
    QCOMPARE(rows[1].nsStrName1, "Lap 2");
  }

  void clickShowsThatRunEverywhere() {
    StartedWindow fixture(3);
    fixture.mapLoads();
    dataControl().deleteRecord("Update T_RunData Set T_RunAvgHR='99' Where T_Cnumber=1");
    QTableView* runs = fixture.controller->tView;
    const QRect cell = runs->visualRect(runs->model()->index(2, 0));
    QTest::mouseClick(runs->viewport(), Qt::LeftButton, {}, cell.center());
    fixture.settle();
    QCOMPARE(fixture.controller->currentNumber, 1);
    QCOMPARE(shown(fixture.controller->lapView, 0, 0), "2026-05-01 07:30:00");
    QCOMPARE(shown(fixture.controller->lapView, 0, 6), "99");  // as stored meanwhile
    QCOMPARE(fixture.map.calls.size(), 4);
    QCOMPARE(fixture.map.calls[0], "initMap();");
    QVERIFY(fixture.map.calls[1].startsWith("MapPolyline([{lat: 36.001000, lng: 139.001000}"));
    QVERIFY(fixture.map.calls[1].endsWith(" | 1 | 1)"));
    QCOMPARE(fixture.map.calls[2], "Setfitbounds(36.001000 | 36.012000 | 139.001000 | 139.012000)");
    QVERIFY(fixture.map.calls[3].startsWith("midLineArrows(new Array("));
  }

  void everyWayToHighlightARunChoosesIt() {
    StartedWindow fixture(4);
    QTableView* runs = fixture.controller->tView;
    const auto middle = [runs](int row) {
      return runs->visualRect(runs->model()->index(row, 0)).center();
    };
    QTest::mousePress(runs->viewport(), Qt::LeftButton, {}, middle(0));
    QTest::mouseMove(runs->viewport(), middle(2));
    QTest::mouseRelease(runs->viewport(), Qt::LeftButton, {}, middle(2));
    QCOMPARE(fixture.controller->runKArr.value(runs->currentIndex().row()).toInt(),
             fixture.controller->currentNumber);
    QTest::keyClick(runs, Qt::Key_Down);
    QCOMPARE(fixture.controller->currentNumber, 1);
    // A key that is still down when the command is given.
    QTest::keyPress(runs, Qt::Key_Up);
    QTest::keySequence(fixture.window.get(), QKeySequence("Ctrl+T"));
    QCOMPARE(fixture.dialogs->panels.value(0), "Save File|20260502073000|TCX");
    // The release of a key that was pressed elsewhere is no click.
    fixture.settle();
    fixture.map.calls.clear();
    QTest::keyRelease(runs, Qt::Key_Return);
    fixture.settle();
    QVERIFY(fixture.map.calls.isEmpty());
  }

  void quickKeysReadOneRun() {
    StartedWindow fixture(20);
    fixture.mapLoads();
    int mostThreads = 0;
    for (int press = 1; press < 20; ++press) {
      QTest::keyClick(fixture.controller->tView, Qt::Key_Down);
      mostThreads = std::max(mostThreads, detachedThreadCount());
    }
    fixture.settle();
    QCOMPARE(mostThreads, 1);
    QCOMPARE(fixture.controller->currentNumber, 1);
    QCOMPARE(fixture.controller->pointViewData.size(), 12U);
    const QStringList drawn = fixture.map.calls.filter("MapPolyline");
    QCOMPARE(drawn.size(), 1);
    QVERIFY(drawn[0].contains("lat: 36.001000"));
  }

  void lateLoadDoesNotOverwriteAClick() {
    WindowFixture fixture;
    storeRuns(3);
    fixture.controller->awakeFromNib();
    QTRY_COMPARE(fixture.controller->currentNumber, 3);
    fixture.controller->calltView({1});
    fixture.controller->tableviewClick(1);  // while the first run's laps are still to come
    fixture.controller->refreshData(0);     // a load of the tables that newer ones have overtaken
    fixture.settle();
    QCOMPARE(fixture.controller->currentNumber, 2);
    QCOMPARE(shown(fixture.controller->lapView, 0, 0), "2026-05-02 07:30:00");
    QCOMPARE(fixture.controller->lapView->model()->rowCount(), 3);
    dataControl().deleteRecord("drop table T_TrackPointData");
    fixture.controller->refreshData(0);
    fixture.settle();
    QCOMPARE(fixture.controller->statusLine->text(), "");  // nor does what it fails with
  }

  void onlyTheNewestRefreshDraws() {
    StartedWindow fixture(4);
    fixture.mapLoads();
    fixture.dialogs->eraseAnswer = true;
    fixture.controller->deleteOneData();
    QTRY_COMPARE(fixture.controller->currentNumber, 3);
    mainQueue::post([&] {
      QTest::qWait(100);  // the first refresh ends while a question of the download stands
      fixture.controller->deleteOneData();
    });
    fixture.settle();
    QCOMPARE(fixture.controller->currentNumber, 2);
    QVERIFY(fixture.map.calls.filter("MapPolyline").last().contains("lat: 37.001000"));
  }

  void runThatWasAskedForIsDeleted() {
    StartedWindow fixture(3);
    fixture.controller->calltView({2});
    fixture.controller->tableviewClick(2);
    fixture.dialogs->eraseAnswer = true;
    fixture.dialogs->duringQuestion = [&] { fixture.controller->tableviewClick(0); };
    fixture.controller->deleteOneData();
    fixture.settle();
    QCOMPARE(fixture.controller->runKArr, QStringList({"03", "02"}));
  }

  void firstRunIsDrawnOnce_data() {
    const auto row = columns<bool>("titleFirst");
    row("page before tables", true);
    row("tables before page", false);
  }
  void firstRunIsDrawnOnce() {
    QFETCH(bool, titleFirst);
    WindowFixture fixture;
    storeRuns(2);
    if (titleFirst) {
      fixture.controller->didReceiveTitle("Map Load OK");
    }
    fixture.start();
    if (!titleFirst) {
      fixture.controller->didReceiveTitle("Map Load OK");
    }
    fixture.settle();
    fixture.controller->didReceiveTitle("Map Load OK");  // the page's answer to being drawn on
    fixture.settle();
    QCOMPARE(fixture.map.calls.filter("MapPolyline").size(), 1);
  }

  void deleting_data() {
    const auto row = columns<int, bool, bool, int>("runs", "all", "answer", "left");
    row("one of two", 2, false, true, 1);
    row("the only one", 1, false, true, 0);
    row("one, declined", 2, false, false, 2);
    row("all", 3, true, true, 0);
    row("all, declined", 3, true, false, 3);
  }
  void deleting() {
    QFETCH(int, runs);
    QFETCH(bool, all);
    QFETCH(bool, answer);
    QFETCH(int, left);
    StartedWindow fixture(runs);
    fixture.dialogs->eraseAnswer = answer;
    all ? fixture.controller->deleteAllData() : fixture.controller->deleteOneData();
    fixture.settle();
    QCOMPARE(fixture.dialogs->questions.value(0),
             all ? QString("全てのデータを消去しますか？") : "このデータを消去しますか？");
    QCOMPARE(fixture.controller->tView->model()->rowCount(), left);
    QCOMPARE(dataControl().getRunData("all", {}).size(), left);
    QCOMPARE(fixture.controller->currentNumber, left);
    QCOMPARE(fixture.controller->pointView->model()->rowCount(), left == 0 ? 0 : 12);
    QCOMPARE(fixture.map.calls.contains("SetMapNull();"), left == 0);
    QCOMPARE(fixture.controller->getNewData, 0);
  }

  // Has a page of its own, and nothing is drawn on it.
  void chinaMap() {
    StartedWindow fixture(1);
    fixture.mapLoads();
    fixture.controller->isAvailable = false;
    fixture.controller->webLoadStr();
    fixture.controller->displayMap();
    fixture.settle();
    QCOMPARE(fixture.map.calls.size(), 1);
    QVERIFY(fixture.map.calls[0].endsWith(" AMap"));
    QVERIFY(fixture.controller->getGDMapStr(1).startsWith("new Array(new AMap.LngLat("));
  }

  void exports() {
    qputenv("TZ", "Europe/Moscow");  // four hours east when the run was, three since
    const auto backToUtc = qScopeGuard([] { qputenv("TZ", "UTC"); });
    WindowFixture fixture;
    storeRuns(1);
    dataControl().deleteRecord("update T_RunData set T_RunStartTime='2014-05-01 07:30:00'");
    fixture.start();
    fixture.dialogs->fileAnswer = fixture.file("run.TCX");
    fixture.controller->SaveTCXFile();
    fixture.dialogs->fileAnswer = fixture.file("run.GPX");
    fixture.controller->saveGPXFile();
    fixture.dialogs->fileAnswer = QString();
    fixture.controller->saveGPXFile();
    QCOMPARE(fixture.dialogs->panels,
             QStringList({"Save File|20140501073000|TCX", "Save File|20140501073000|GPX",
                          "Save File|20140501073000|GPX"}));
    QVERIFY(bytesOf(fixture.file("run.TCX")).contains("<Id>2014-05-01T07:30:00+03:00</Id>"));
    QCOMPARE(bytesOf(fixture.file("run.GPX")).count("<trkpt "), 12);
  }

  void exportsThatOfferNothing_data() {
    const auto row = columns<QString, QString, QString, QString>("sql", "panels", "tcx", "gpx");
    const QString tcx = "Save File|20260501073000|TCX";
    row("no run", "delete from T_RunData", "Save File||TCX", "ランがありません",
        "ランがありません");
    row("two points", "delete from T_TrackPointData where T_Setid>2", tcx, "できません", "少ない");
    row("three points", {}, tcx + " Save File|20260501073000|GPX", "できません", "できません");
    row("unreadable", "drop table T_TrackPointData", tcx, "読み取れない", "読み取れない");
    row("no start", "update T_RunData set T_RunStartTime=null; delete from T_TrackPointData",
        "Save File||TCX", "開始日時がない", "少ない");
  }
  void exportsThatOfferNothing() {
    QFETCH(QString, sql);
    QFETCH(QString, tcx);
    QFETCH(QString, gpx);
    WindowFixture fixture;
    storeRuns(1, 3);
    dataControl().deleteRecord(sql);
    fixture.start();
    fixture.dialogs->fileAnswer = fixture.file("missing/run");
    fixture.controller->SaveTCXFile();
    const StatusLine* line = fixture.controller->statusLine;
    QVERIFY2(line->text().contains(tcx), qUtf8Printable(line->text()));
    fixture.controller->saveGPXFile();
    QVERIFY2(line->text().contains(gpx), qUtf8Printable(line->text()));
    QTEST(fixture.dialogs->panels.join(u' '), "panels");
    QVERIFY(!QFile::exists(fixture.file("missing")));
  }

  /// Another program's lock does not freeze the window; elsewhere a question waits for seconds.
  void lockedDatabase() {
    const WindowFixture fixture;
    storeRuns(1);
    sqlite3* opened = nullptr;
    sqlite3_open(fixture.file("gpsData.db3").toUtf8().constData(), &opened);
    const Connection other(opened);
    QVERIFY(execute(opened, "begin exclusive"));
    QElapsedTimer waiting;
    waiting.start();
    dataControl store;
    QCOMPARE(store.getRunDataTF("2026-05-01"), 0);
    QVERIFY(store.queryFailed && waiting.elapsed() < 3000);
  }

  void startUpProblems_data() {
    const auto row = columns<QByteArray, QString>("content", "problem");
    row("none", {}, {});
    row("text", "not a database at all", "データベースではない");
    row("cut off", "SQLite", "データベースではない");
  }
  void startUpProblems() {
    QFETCH(QByteArray, content);
    QFETCH(QString, problem);
    const QTemporaryDir folder;
    writeBytes(folder.filePath("gpsData.db3"), content);
    setMainBundle({folder.filePath("Trakko.app"), "Trakko"});
    const QString found = startUpProblem();
    QCOMPARE(found.isNull(), problem.isNull());
    QVERIFY(found.contains(problem));
    for (const char* path : {"/nowhere/at/all/Trakko.app", "/x"}) {
      setMainBundle({path, "Trakko"});
      QVERIFY(!startUpProblem().isNull());
    }
  }
};

QTEST_MAIN(tst_controller)
#include "tests/columns.h"
#include "tests/files.h"
#include "tst_controller.moc"
