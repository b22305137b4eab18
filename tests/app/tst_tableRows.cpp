#include "app/tableRows.h"
#include "stats/units.h"

#include <QTest>

/// What the rows make of odd records; ordinary ones are looked at in the window.
class tst_tableRows : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void pace_data();
  void pace();
  void missingLapLeavesNoGap();
};

void tst_tableRows::pace_data() {
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

void tst_tableRows::pace() {
  QFETCH(double, speed);
  QTEST(units::paceText(speed), "expected");
}

void tst_tableRows::missingLapLeavesNoGap() {
  lapData lap;
  lap.T_LapType = QStringLiteral("Lap 2");
  const auto rows =
      lapRows({}, {{QStringLiteral("7-2"), lap}, {QStringLiteral("7-3"), lapData()}}, 7);
  QCOMPARE(rows.size(), 2U);  // the run's and lap 2: only so many are looked for as there are
  QCOMPARE(rows[1].nsStrName1, QStringLiteral("Lap 2"));
}

QTEST_GUILESS_MAIN(tst_tableRows)
#include "tst_tableRows.moc"
