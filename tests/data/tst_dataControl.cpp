#include "data/insertCache.h"
#include "storeFolder.h"

#include <QtTest>
#include <limits>

using namespace Qt::StringLiterals;

class DataControlTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  static void columns_data();
  static void columns();
  static void recordsComeBack();
  static void compiledAndPlainStatementsDoTheSame_data();
  static void compiledAndPlainStatementsDoTheSame();
  static void batch();
  static void runsOfAPeriod();
  static void pointsWithFix();
  static void foreignValues();
  static void deletes();
};

namespace {

runData numberedRun() {
  return {u"r1"_s,  u"r2"_s,  u"r3"_s,  u"250050"_s, u"r5"_s,  6,        u"r7"_s,  u"r8"_s,
          u"r9"_s,  u"r10"_s, u"r11"_s, u"r12"_s,    13,       u"r14"_s, u"r15"_s, u"r16"_s,
          u"r17"_s, u"r18"_s, u"r19"_s, 20,          u"r21"_s, u"r22"_s};
}

lapData numberedLap() {
  return {u"l1"_s, u"l2"_s,  u"l3"_s,  u"l4"_s,  5,        u"l6"_s,  u"l7"_s, u"l8"_s,
          u"l9"_s, u"l10"_s, u"l11"_s, u"l12"_s, u"asc"_s, u"dsc"_s, 15};
}

trackPointData numberedPoint() {
  return {u"p1"_s, u"p2"_s,  u"p3"_s,  u"p4"_s,  u"p5"_s,  u"p6"_s, u"p7"_s, u"p8"_s,
          u"p9"_s, u"p10"_s, u"p11"_s, u"p12"_s, u"p13"_s, 14,      15};
}

}  // namespace

void DataControlTest::columns_data() {
  QTest::addColumn<QByteArray>("statement");
  QTest::addColumn<QByteArray>("table");
  QTest::addColumn<QString>("row");

  QTest::newRow("run") << dataControl::runSqlStr(numberedRun()) << QByteArray("T_RunData")
                       << u"1|r1|r2|r3|250050|r5|6|r7|r8|r9|r10|r11|r12|13|r14|r15|r16|r17|r18|r19|"
                          "20|r15|r22"_s;
  QTest::newRow("lap") << dataControl::lapSqlStr(numberedLap()) << QByteArray("T_LapData")
                       << u"1|l1|l2|l3|l4|5|l6|l7|l8|l9|l10|l11|l12|dsc|asc|15"_s;
  const trackData track(u"t1"_s, u"t2"_s, u"name"_s, u"t4"_s, 5, u"t6"_s, u"t7"_s, u"t8"_s, u"t9"_s,
                        u"t10"_s, u"t11"_s, u"t12"_s, u"user"_s, u"77 id"_s, 99);
  QTest::newRow("track") << dataControl::trackSqlStr(track) << QByteArray("T_TrackData")
                         << u"1|t1|t2|name|t4|5|t6|t7|t8|t9|t10|t11|t12|name|user|77"_s;
  QTest::newRow("point") << dataControl::trackPointSqlStr(numberedPoint())
                         << QByteArray("T_TrackPointData")
                         << u"1|p1|p2|p3|p4|p5|p6|p7|p8|p9|p10|p11|p12|p13|14|15"_s;

  runData run;
  run.T_RunStartTime = u"\u6771\u4eac "_s + QString(40, u'9');  // longer than declared
  run.T_RunName = u"A\0\0"_s;
  run.T_RunEndTime = u""_s;
  run.T_RunLap = -1;
  run.T_Cnumber = std::numeric_limits<qint64>::max();
  QTest::newRow("odd texts and absent ones")
      << dataControl::runSqlStr(run) << QByteArray("T_RunData")
      << u"1|\u6771\u4eac "_s + QString(40, u'9') +
             u"||(null)|(null)|(null)|-1|(null)|(null)|(null)|(null)|(null)|(null)|0|(null)|A|"
             "(null)|(null)|(null)|(null)|9223372036854775807|(null)|(null)"_s;
  trackPointData point = numberedPoint();
  point.T_Setid = (qint64{7} << 32) + 5;
  point.T_Cnumber = qint64{1} << 31;
  QTest::newRow("only half of a point's numbers")
      << dataControl::trackPointSqlStr(point) << QByteArray("T_TrackPointData")
      << u"1|p1|p2|p3|p4|p5|p6|p7|p8|p9|p10|p11|p12|p13|5|-2147483648"_s;
}

void DataControlTest::columns() {
  QFETCH(const QByteArray, statement);
  QFETCH(const QByteArray, table);
  const StoreFolder folder;
  dataControl data;
  QCOMPARE(data.inData({statement}), 1);
  QTEST(folder.ask("select * from " + table).value(0), "row");
}

void DataControlTest::recordsComeBack() {
  const StoreFolder folder;
  QCOMPARE(dataControl().inData({dataControl::runSqlStr(numberedRun()),
                                 dataControl::lapSqlStr(numberedLap()),
                                 dataControl::trackPointSqlStr(numberedPoint())}),
           1);
  dataControl data;
  runData run = numberedRun();
  run.T_RunDistance = u"2.501"_s;
  QVERIFY(data.getRunData(u"all"_s, QString()) == (RunDictionary{{u"20"_s, run}}));
  lapData lap = numberedLap();
  std::swap(lap.T_LapAsc, lap.T_LapDsc);
  QVERIFY(data.getLapData(15) == (LapDictionary{{u"15-5"_s, lap}}));
  QVERIFY(data.getTrackData(15) == (PointDictionary{{u"15-14"_s, numberedPoint()}}));
  QCOMPARE(data.GetTrackName(20), u"r1"_s);
  QCOMPARE(data.checkRecord(u"r1"_s), 1);
  QCOMPARE(data.getMaxCnumber(u"T_RunData"_s), 20);
}

void DataControlTest::compiledAndPlainStatementsDoTheSame_data() {
  QTest::addColumn<QByteArray>("values");
  const QByteArray list =
      "(1,'a'); # (-5,''); # (9223372036854775807,'b'); # (99999999999999999999,'c'); # (1);"
      " # (1,'O'Brien'); # (1,'it''s'); # (1,'a','b'); # (1,'a') # ( 1, 'a' ); # (1.5,'a');"
      " # (NULL,'a'); # (-,'a'); # (1,'a); # (1,'a'); delete from t; # (1,'a'); -- end"
      " # (1,'a'),(2,'b'); # ('4C','a'); # ('12','a'); # (007,'-1'); # (); # (1,'Values (');"
      " # (1,?);";
  for (const QByteArray& values : list.split('#')) {
    QTest::newRow(values.trimmed().constData()) << values.trimmed();
  }
  QTest::newRow("zero byte") << QByteArrayLiteral("(1,'a\0b');");
  QTest::newRow("query") << QByteArray("Insert Into t (n,s) Select ?1,?2 Union Values (5,'a');");
}

void DataControlTest::compiledAndPlainStatementsDoTheSame() {
  QFETCH(const QByteArray, values);
  const auto outcome = [&](bool compiled) {
    sqlite3* opened = nullptr;
    sqlite3_open(":memory:", &opened);
    const Connection connection(opened);
    sqlite3_exec(opened, "create table t(n INTEGER, s VERCHAR(3))", nullptr, nullptr, nullptr);
    QStringList results;
    InsertCache inserts(opened);
    const QByteArray good = "Insert Into t (n,s) Values (1,'good');";
    const QByteArray head = values.startsWith("Insert") ? "" : "Insert Into t (n,s) Values ";
    for (const QByteArray& sql : {good, head + values, good}) {
      const bool done = compiled ? inserts.execute(sql) : execute(opened, sql.constData());
      results << QString::fromUtf8(done ? "ok" : sqlite3_errmsg(opened));
    }
    return results + StoreFolder::ask(opened, "select n,typeof(n),s,typeof(s) from t");
  };
  QCOMPARE(outcome(true), outcome(false));
}

void DataControlTest::batch() {
  const StoreFolder folder;
  Batch batch;
  batch.add(1, u"good"_s, 2, 3);
  batch.add(2, u"O'Brien"_s, 1, 1);
  batch.add(3, u"x');drop table T_RunData;--"_s, 1, 1);
  batch.add(4, u"gaps"_s, 2, 2);
  batch.laps.remove(u"04-00001"_s);
  batch.points.remove(u"04-00002"_s);
  batch.keys << u"nowhere"_s;
  const quint32 before = folder.commits();
  QCOMPARE(batch.store(), 1);
  QCOMPARE(folder.commits(), before + 3);  // one for each run stored
  QCOMPARE(folder.counts(), u"3|4|0|5"_s);
  QCOMPARE(folder.ask("select T_RunName,T_Cnumber from T_RunData"),
           QStringList({u"good|1"_s, u"gaps|4"_s, u"(null)|0"_s}));
  QCOMPARE(folder.ask("select T_LapType,T_LapNo from T_LapData where T_Cnumber=0"),
           QStringList(u"(null)|0"_s));
  QCOMPARE(folder.ask("select T_PointTime,T_Setid from T_TrackPointData where T_Cnumber=0"),
           QStringList(u"(null)|0"_s));
  batch.keys = QStringList{u"02"_s};
  QCOMPARE(batch.store(), -1);
  QCOMPARE(Batch().store(), -1);
  QCOMPARE(dataControl::returnKeyStr(u"7"_s), u"00007"_s);
  QCOMPARE(dataControl::returnKeyStr(u""_s), u""_s);
  QCOMPARE(dataControl::returnKeyStr(u"123456"_s), u"123456"_s);
}

void DataControlTest::runsOfAPeriod() {
  const StoreFolder folder;
  Batch batch;
  for (const int number : {7, 31, 12}) {
    batch.add(number, u"n"_s, 0, 0);
  }
  QCOMPARE(batch.store(), 1);

  dataControl data;
  QCOMPARE(data.getRunData(u"All"_s, QString()).size(), 3);
  QCOMPARE(data.runKeyArray, QStringList({u"31"_s, u"12"_s, u"07"_s}));
  QVERIFY(data.getRunData(u"2015-01-01 00:00:00"_s, u"2015-12-31 23:59:59"_s).isEmpty());
  QCOMPARE(data.runKeyArray.size(), 3);  // the last that found any
  data.getRunData(u"2014-05-07 07:30:05"_s, u"2014-05-12 07:30:05"_s);
  QCOMPARE(data.runKeyArray, QStringList({u"12"_s, u"07"_s}));
  QCOMPARE(data.getRunDataTF(u"2014-05-12"_s), 1);
  QCOMPARE(data.getRunDataTF(u"2014-05-11"_s), 0);
  QCOMPARE(data.checkRecord(u"2014-05-12 07:30:06"_s), 0);
  QCOMPARE(data.checkRecord(u"'"_s), -1);
  QCOMPARE(data.GetTrackName(8), u""_s);
  QVERIFY(!data.GetTrackName(8).isNull());
  QCOMPARE(data.getMaxCnumber(u"T_LapData"_s), 0);
}

void DataControlTest::pointsWithFix() {
  const StoreFolder folder;
  dataControl::Statements statements;
  qint64 number = 0;
  for (const QString& signs : {u"EN"_s, u"0N"_s, u"00"_s, u"0"_s, u""_s}) {
    trackPointData point = numberedPoint();
    point.T_PointLogSign = signs.left(1);
    point.T_PointLatSign = signs.mid(1);
    point.T_Setid = ++number;
    statements.push_back(dataControl::trackPointSqlStr(point));
  }
  QCOMPARE(dataControl().inData(statements), 1);
  dataControl data;
  QCOMPARE(data.getTrackData(15).size(), 5);
  QCOMPARE(data.trackCount, 3);
  QVERIFY(data.getTrackData(16).isEmpty());
  QCOMPARE(data.trackCount, 3);
}

// A restored file may come from anywhere.
void DataControlTest::foreignValues() {
  const StoreFolder folder;
  folder.ask(
      "insert into T_RunData(T_RunStartTime,T_RunLap,T_RunTrackPoint,T_Cnumber) "
      "values(x'80ff', '3 laps', 2.75, 5),('later',1e15,0,6);"
      "insert into T_LapData(T_LapTime,T_Cnumber) values('a'||char(0)||'b',5);"
      "drop table T_TrackPointData; create table T_TrackPointData(ID,T_Cnumber,T_Setid);"
      "insert into T_TrackPointData values(1,5,null)");
  dataControl data;
  const runData run = data.getRunData(u"ALL"_s, QString()).value(u"05"_s);
  QCOMPARE(run.T_RunLap, 3);
  QCOMPARE(data.getRunData(u"ALL"_s, QString()).value(u"06"_s).T_RunLap, 2147483647);
  QCOMPARE(run.T_RunTrackPoint, 2);
  QCOMPARE(run.T_RunDistance, u"0.000"_s);
  QVERIFY(run.T_RunCal.isNull());
  QCOMPARE(run.T_RunStartTime.size(), 2);
  QCOMPARE(data.getLapData(5).value(u"5-(null)"_s).T_LapTime, u"a"_s);
  QCOMPARE(data.getTrackData(5).value(u"(null)-(null)"_s).T_PointTime, u"5"_s);
}

void DataControlTest::deletes() {
  const StoreFolder folder;
  Batch batch;
  batch.add(1, u"n"_s, 2, 3);
  batch.add(2, u"n"_s, 1, 1);
  QCOMPARE(batch.store(), 1);
  folder.ask("insert into T_TrackData(T_Cnumber) values(1),(2)");

  QCOMPARE(dataControl().deleteOneData(1), 1);
  QCOMPARE(folder.counts(), u"1|1|1|1"_s);
  QCOMPARE(dataControl().deleteOneData(1), 1);
  folder.ask("alter table T_TrackPointData rename to elsewhere");
  QCOMPARE(dataControl().deleteOneData(2), -1);
  QCOMPARE(dataControl().deleteAllData(), -1);
  folder.ask("alter table elsewhere rename to T_TrackPointData");
  QCOMPARE(folder.counts(), u"1|1|1|1"_s);
  QCOMPARE(dataControl().deleteAllData(), 1);
  QCOMPARE(folder.counts(), u"0|0|0|0"_s);

  dataControl data;
  QCOMPARE(data.getMaxCnumber(u"T_RunData"_s), 0);  // numbers start again at 1
  data.deleteRecord(u"insert into T_RunData(T_Cnumber) values(4)"_s);
  QCOMPARE(data.getMaxCnumber(u"T_RunData"_s), 4);
}

QTEST_GUILESS_MAIN(DataControlTest)
#include "tst_dataControl.moc"
