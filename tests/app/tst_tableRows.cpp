#include "app/tableRows.h"
#include "stats/units.h"

#include <QTest>

namespace {

QStringList cells(const lViewData& row) {
  return {row.nsStrName1, row.nsStrName2, row.nsStrName3, row.nsStrName4, row.nsStrName5,
          row.nsStrName6, row.nsStrName7, row.nsStrName8, row.nsStrName9, row.nsStrName10};
}

QStringList cells(const pViewData& row) {
  return {row.nsStrName1, row.nsStrName2, row.nsStrName3, row.nsStrName4,
          row.nsStrName5, row.nsStrName6, row.nsStrName7, row.nsStrName8};
}

lapData lapNumber(qint32 number) {
  lapData lap;
  lap.T_LapNo = number;
  lap.T_LapType = QStringLiteral("Lap %1").arg(number);
  lap.T_LapTime = QStringLiteral("00:05:12.34");
  lap.T_LapDistance = QStringLiteral("123456");
  lap.T_LapAvgSpeed = QStringLiteral("118");
  lap.T_LapMaxSpeed = QStringLiteral("153");
  lap.T_LapAvgHR = QStringLiteral("141");
  lap.T_LapMaxHR = QStringLiteral("160");
  lap.T_LapTimeZone = QStringLiteral("09:00:00");
  lap.T_LapCal = QStringLiteral("990000");
  return lap;
}

}  // namespace

class TestTableRows : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void pace_data();
  void pace();
  void lapsRepeatTheRunsCalories();
  void missingLapHidesTheLastOne();
  void points();
};

void TestTableRows::pace_data() {
  QTest::addColumn<double>("speed");
  QTest::addColumn<QString>("expected");
  QTest::newRow("standing") << 0.0 << "00'00";
  QTest::newRow("negative") << -3.0 << "00'00";
  QTest::newRow("12 km/h") << 12.0 << "05'00";
  QTest::newRow("seconds are cut, not rounded") << 11.7 << "05'07";
  QTest::newRow("under a minute") << 90.0 << "00'40";
  QTest::newRow("three digits of minutes") << 0.5 << "120'00";
  QTest::newRow("no number") << qQNaN() << "00'00";
  QTest::newRow("faster than a second") << 1e9 << "00'00";
}

void TestTableRows::pace() {
  QFETCH(double, speed);
  QFETCH(QString, expected);
  QCOMPARE(units::paceText(speed), expected);
}

void TestTableRows::lapsRepeatTheRunsCalories() {
  runData run;
  run.T_RunStartTime = QStringLiteral("2026-05-17 07:30:05");
  run.T_RunExTime = QStringLiteral("00:30:00.00");
  run.T_RunDistance = QStringLiteral("5.123");
  run.T_RunAvgSpeed = QStringLiteral("102");
  run.T_RunMaxSpeed = QStringLiteral("180");
  run.T_RunAvgHR = QStringLiteral("140");
  run.T_RunMaxHR = QStringLiteral("171");
  run.T_RunTimeZone = QStringLiteral("09:00:00");
  run.T_RunCal = QStringLiteral("3215000");
  const auto rows = lapRows(run, {{QStringLiteral("7-1"), lapNumber(1)}}, 7);
  QCOMPARE(rows.size(), 2U);
  QCOMPARE(cells(rows[0]), QStringList({"2026-05-17 07:30:05", "00:30:00.00", "5.123", "10.2",
                                        "05'52", "18.0", "140", "171", "09:00:00", "322"}));
  QCOMPARE(cells(rows[1]), QStringList({"Lap 1", "00:05:12.34", "1.235", "11.8", "05'05", "15.3",
                                        "141", "160", "09:00:00", "322"}));
}

// A missing lap is passed over, and hides the last one behind it.
void TestTableRows::missingLapHidesTheLastOne() {
  const LapDictionary laps = {{QStringLiteral("7-1"), lapNumber(1)},
                              {QStringLiteral("7-3"), lapNumber(3)},
                              {QStringLiteral("7-4"), lapNumber(4)}};
  const auto rows = lapRows({}, laps, 7);
  QCOMPARE(rows.size(), 3U);
  QCOMPARE(rows[1].nsStrName1, QStringLiteral("Lap 1"));
  QCOMPARE(rows[2].nsStrName1, QStringLiteral("Lap 3"));
}

void TestTableRows::points() {
  trackPointData point;
  point.T_Setid = 1;
  point.T_PointTime = QStringLiteral("07:30:06");
  point.T_PointDistance = QStringLiteral("1234");
  point.T_PointSpeed = QStringLiteral("600");
  point.T_PointHR = QStringLiteral("652");
  point.T_PointCal = QStringLiteral("42");
  point.T_PointAlti = QStringLiteral("17");
  const auto rows = pointRows({{QStringLiteral("7-1"), point}}, 7);
  QCOMPARE(rows.size(), 1U);
  QCOMPARE(cells(rows[0]),
           QStringList({"1", "07:30:06", "0.012", "12.0", "05'00", "130", "42", "17"}));
}

QTEST_GUILESS_MAIN(TestTableRows)
#include "tst_tableRows.moc"
