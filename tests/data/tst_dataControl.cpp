#include "storeFolder.h"
#include "tests/columns.h"

#include <QtTest>

#include <limits>
#include <random>

using namespace Qt::StringLiterals;

namespace {

/// A run of values that a statement could stumble over, and plain ones.
Batch oddRun(std::mt19937& random) {
  static const QStringList texts{{},   "",   "a",  "O'Brien", "it''s",     "?1",         "\"T_ID\"",
                                 "--", "12", "%s", "x');",    u"A\0\0B"_s, u"35\u00b0"_s};
  using Limits = std::numeric_limits<qint64>;
  const auto text = [&random] { return texts[qMin<qsizetype>(qsizetype(random() % 40), 12)]; };
  const auto number = [&random] {
    return std::array{qint64{-1}, Limits::max(), Limits::min(), qint64{7} << 32}[random() % 4];
  };
  Batch batch;
  batch.add(1, text(), 1, 1);
  batch.runs["01"].T_IdNumber = text();
  batch.runs["01"].T_Cnumber = qMin<qint64>(number(), 7);
  batch.laps["01-00001"].T_LapTime = text();
  batch.laps["01-00001"].T_Cnumber = number();
  trackPointData& point = batch.points["01-00001"];
  point = {text(), text(), {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, text(), number(), number()};
  return batch;
}

/// The same as texts.
dataControl::Statements statementsOf(const Batch& batch) {
  return {dataControl::runSqlStr(batch.runs["01"]), dataControl::lapSqlStr(batch.laps["01-00001"]),
          dataControl::trackPointSqlStr(batch.points["01-00001"])};
}

}  // namespace

class tst_dataControl : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  static void columnsThereAndBack() {
    const StoreFolder folder;
    runData run("r1", "r2", "r3", "250050", "r5", 6, "r7", "r8", "r9", "r10", "r11", "r12", 13,
                "r14", "r15", "r16", "r17", "r18", "r19", 20, "r21", "r22");
    lapData lap("l1", "l2", "l3", "l4", 5, "l6", "l7", "l8", "l9", "l10", "l11", "l12", "asc",
                "dsc", 15);
    const trackData track("t1", "t2", "name", "t4", 5, "t6", "t7", "t8", "t9", "t10", "t11", "t12",
                          "user", "77 id", 99);
    const trackPointData point("p1", "p2", "p3", "p4", "p5", "p6", "p7", "p8", "p9", "p10", "p11",
                               "p12", "p13", 14, 15);
    trackPointData largePoint;  // only half of its numbers is stored
    largePoint.T_Setid = (qint64{7} << 32) + 5;
    largePoint.T_Cnumber = qint64{1} << 31;
    QCOMPARE(
        dataControl().inData({dataControl::runSqlStr(run), dataControl::lapSqlStr(lap),
                              dataControl::trackSqlStr(track), dataControl::trackPointSqlStr(point),
                              dataControl::trackPointSqlStr(largePoint)}),
        1);
    QCOMPARE(folder.ask("select * from T_RunData"),
             "1|r1|r2|r3|250050|r5|6|r7|r8|r9|r10|r11|r12|13|r14|r15|r16|r17|r18|r19|20|r15|r22");
    QCOMPARE(folder.ask("select * from T_LapData"),
             "1|l1|l2|l3|l4|5|l6|l7|l8|l9|l10|l11|l12|dsc|asc|15");
    QCOMPARE(folder.ask("select * from T_TrackData"),
             "1|t1|t2|name|t4|5|t6|t7|t8|t9|t10|t11|t12|name|user|77");
    QCOMPARE(folder.ask("select * from T_TrackPointData where ID=1"),
             "1|p1|p2|p3|p4|p5|p6|p7|p8|p9|p10|p11|p12|p13|14|15");
    QCOMPARE(folder.ask("select T_Setid,T_Cnumber from T_TrackPointData where ID=2"),
             "5|-2147483648");

    dataControl data;
    run.T_RunDistance = "2.501";
    QVERIFY(data.getRunData("r1", "r1") == (RunDictionary{{"20", run}}));
    std::swap(lap.T_LapAsc, lap.T_LapDsc);
    QVERIFY(data.getLapData(15) == (LapDictionary{{"15-5", lap}}));
    QVERIFY(data.getTrackData(15) == (PointDictionary{{"15-14", point}}));
    QCOMPARE(data.GetTrackName(20), "r1");
    QCOMPARE(data.checkRecord("r1"), 1);
  }

  // Storing binds what it can; the statements' texts say what has to come of it.
  static void storedAsTheStatementsSay() {
    std::mt19937 random(6);
    QMap<qint32, int> results;
    for (int i = 0; i < 40; ++i) {
      const Batch batch = oddRun(random);
      QStringList rows;
      for (const bool plain : {true, false}) {
        const StoreFolder folder;
        const qint32 result = plain ? dataControl().inData(statementsOf(batch)) : batch.store();
        rows << QString::number(result) +
                    folder.ask(
                        "select *,typeof(T_Cnumber) from T_RunData; select * from T_LapData;"
                        "select *,typeof(T_PointTime) from T_TrackPointData");
        ++results[result];
      }
      QCOMPARE(rows[0], rows[1]);
    }
    QCOMPARE(results.size(), 2);  // some of either
  }

  static void batch() {
    const StoreFolder folder;
    Batch batch;
    batch.add(1, "good", 2, 3);
    batch.add(2, "O'Brien", 1, 1);
    batch.add(4, "gaps", 2, 2);
    batch.laps.remove("04-00001");
    batch.points.remove("04-00002");
    batch.keys << "nowhere";
    batch.add(3, "x');drop table T_RunData;--", 1, 1);
    const quint32 before = folder.commits();
    dataControl data;
    QCOMPARE(batch.store(data), 1);
    QCOMPARE(folder.commits(), before + 3);  // one for each run stored
    QCOMPARE(folder.counts(), "3|4|0|5");
    QCOMPARE(folder.ask("select T_RunName,T_Cnumber from T_RunData;"
                        "select T_LapType,T_LapNo from T_LapData where T_Cnumber=0;"
                        "select T_PointTime,T_Setid from T_TrackPointData where T_Cnumber=0"),
             "good|1 gaps|4 (null)|0 (null)|0 (null)|0");
    QCOMPARE(data.getMaxCnumber("T_RunData"), 4);  // opens again what storing has closed
    QCOMPARE(Batch().store(), -1);
    QCOMPARE(dataControl::returnKeyStr("1") + dataControl::returnKeyStr("123456"), "00001123456");
    QCOMPARE(dataControl::returnKeyStr(""), "");
  }

  static void runsOfAPeriod() {
    const StoreFolder folder;
    Batch batch;
    for (const int number : {7, 31, 12}) {
      batch.add(number, "n", 0, 0);
    }
    QCOMPARE(batch.store(), 1);

    dataControl data;
    QCOMPARE(data.getRunData("All", {}).size(), 3);
    QCOMPARE(data.runKeyArray.join(' '), "12 07 31");  // the last started on the 2nd
    QVERIFY(data.getRunData("2015-01-01 00:00:00", "2015-12-31 23:59:59").isEmpty());
    QCOMPARE(data.runKeyArray.size(), 3);  // the last that found any
    data.getRunData("2014-05-02 07:30:05", "2014-05-07 07:30:05");
    QCOMPARE(data.runKeyArray.join(' '), "07 31");
    QCOMPARE(data.getRunDataTF("2014-05-07"), 1);
    QCOMPARE(data.getRunDataTF("2014-05-08"), 0);
    QCOMPARE(data.checkRecord("2014-05-07 07:30:06"), 0);
    QVERIFY(data.GetTrackName(8).isEmpty() && !data.GetTrackName(8).isNull());
    QCOMPARE(data.getMaxCnumber("T_LapData"), 0);
    QVERIFY(!data.queryFailed);
    QCOMPARE(data.checkRecord("'"), -1);
    QVERIFY(data.queryFailed);
  }

  // New runs are numbered behind the largest number: none of theirs may be taken.
  static void largestNumber_data() {
    const auto row = columns<qint64>("largest");
    for (const char* values : {"('x'),(3)", "(1e300),(3),(9e18)", "(2147483648),(4294967296),(3)",
                               "(9223372036854775807),(3)"}) {
      row(values, 3);
    }
    row("(2147483647)", 2147483647);
    row("(-7),(null),(0)", 0);
  }
  static void largestNumber() {
    QFETCH(const qint64, largest);
    const StoreFolder folder;
    folder.ask("insert into T_RunData(T_Cnumber) values " + QByteArray(QTest::currentDataTag()));
    dataControl data;
    QCOMPARE(data.getMaxCnumber("T_RunData"), largest);
    const QString before = folder.counts();
    Batch batch;
    batch.add(1, "n", 1, 1);
    batch.add(largest + 1, "n", 1, 1);
    const bool tooLarge = largest == std::numeric_limits<qint32>::max();
    QCOMPARE(batch.store(data), tooLarge ? -1 : 1);
    QCOMPARE(folder.counts() == before, tooLarge);
  }

  static void pointsWithFix() {
    const StoreFolder folder;
    folder.ask(
        "insert into T_TrackPointData(T_Setid,T_PointLogSign,T_PointLatSign,T_Cnumber) "
        "values(1,'E','N',15),(2,'0','N',15),(3,'0','0',15),(4,'0','',15),(5,'','',15)");
    dataControl data;
    for (const auto& [number, found] : {std::pair(15, 5), {16, 0}}) {
      QCOMPARE(data.getTrackData(number).size(), found);
      QCOMPARE(data.trackCount, 3);
    }
  }

  // A restored file may come from anywhere.
  static void foreignValues() {
    const StoreFolder folder;
    folder.ask(
        "insert into T_RunData(T_RunStartTime,T_RunLap,T_RunTrackPoint,T_Cnumber) "
        "values(x'80ff', '3 laps', 2.75, 5),('later',1e15,0,6);"
        "insert into T_LapData(T_LapTime,T_Cnumber) values('a'||char(0)||'b',5);"
        "drop table T_TrackPointData; create table T_TrackPointData(ID,T_Cnumber,T_Setid);"
        "insert into T_TrackPointData values(1,5,null)");
    dataControl data;
    const RunDictionary runs = data.getRunData("ALL", {});
    QCOMPARE(runs["06"].T_RunLap, 2147483647);
    const runData run = runs["05"];
    QCOMPARE(run.T_RunLap, 3);
    QCOMPARE(run.T_RunTrackPoint, 2);
    QCOMPARE(run.T_RunDistance, "0.000");
    QVERIFY(run.T_RunCal.isNull() && run.T_RunStartTime.size() == 2);
    QCOMPARE(data.getLapData(5).value("5-(null)").T_LapTime, "a");
    QCOMPARE(data.getTrackData(5).value("(null)-(null)").T_PointTime, "5");
  }

  static void deletes() {
    const StoreFolder folder;
    Batch batch;
    batch.add(1, "n", 2, 3);
    batch.add(2, "n", 1, 1);
    QCOMPARE(batch.store(), 1);
    folder.ask("insert into T_TrackData(T_Cnumber) values(1),(2)");

    QCOMPARE(dataControl().deleteOneData(1), 1);
    QCOMPARE(folder.counts(), "1|1|1|1");
    QCOMPARE(dataControl().deleteOneData(1), 1);
    folder.ask("alter table T_TrackPointData rename to elsewhere");
    QCOMPARE(dataControl().deleteOneData(2), -1);
    QCOMPARE(dataControl().deleteAllData(), -1);
    folder.ask("alter table elsewhere rename to T_TrackPointData");
    QCOMPARE(folder.counts(), "1|1|1|1");
    QCOMPARE(dataControl().deleteAllData(), 1);
    QCOMPARE(folder.counts(), "0|0|0|0");

    dataControl data;
    QCOMPARE(data.getMaxCnumber("T_RunData"), 0);  // numbers start again at 1
    data.deleteRecord("insert into T_RunData(T_Cnumber) values(4)");
    QCOMPARE(data.getMaxCnumber("T_RunData"), 4);
    QCOMPARE(ask(data.db, "PRAGMA synchronous"),
             "3");  // nothing acknowledged is lost in a power cut
  }
};

QTEST_GUILESS_MAIN(tst_dataControl)
#include "tst_dataControl.moc"
