#include "stats/totals.h"
#include "stats/units.h"
#include "tests/columns.h"

#include <QTest>

using totals::Period;
using totals::Totals;

class tst_totals : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void pace_data() {
    const auto row = columns<double, QString>("speed", "expected");
    row("standing", 0.0, "00'00");
    row("negative", -3.0, "00'00");
    row("12 km/h", 12.0, "05'00");
    row("seconds are cut, not rounded", 11.7, "05'07");
    row("under a minute", 90.0, "00'40");
    row("three digits of minutes", 0.5, "120'00");
    row("no number", qQNaN(), "00'00");
    row("faster than a second", 1e9, "00'00");
  }
  void pace() {
    QFETCH(double, speed);
    QTEST(units::paceText(speed), "expected");
  }

  void counts_data() {
    const auto row = columns<Period, QStringList>("period", "expected");
    const QString all = "すべて 5 47.500 4:30:00 05'41 21.000 0";
    row("weeks, also over the end of a year", Period::week,
        {"2026-01-05〜 1 21.000 2:00:00 05'42 21.000 0",
         "2025-12-29〜 2 15.000 1:15:00 05'00 10.000 1",
         "2025-12-22〜 1 11.500 1:15:00 06'31 11.500 3", all});
    row("months", Period::month,
        {"2026-01 2 31.000 2:50:00 05'29 21.000 0", "2025-12 2 16.500 1:40:00 06'03 11.500 2",
         all});
    row("years", Period::year,
        {"2026 2 31.000 2:50:00 05'29 21.000 0", "2025 2 16.500 1:40:00 06'03 11.500 2", all});
  }
  void counts() {
    QFETCH(Period, period);
    QFETCH(QStringList, expected);
    RunDictionary runs;
    QStringList keys;
    const auto store = [&](const QString& start, const QString& time, const QString& kilometres) {
      runData run;
      run.T_RunStartTime = start;
      run.T_RunExTime = time;
      run.T_RunDistance = kilometres;
      keys << QString::number(keys.size());
      runs.insert(keys.last(), run);
    };
    store("2026-01-05 00:00:00", "02:00:00.00", "21.000");
    store("2026-01-04 23:59:59", "00:50:00.00", "10.000");
    store("2025-12-29 06:00:00", "00:25:00.00", "5.000");
    store("2025-12-28 06:00:00", "01:15:00.00", "11.500");
    store("no date", "", "0.000");
    keys << "unknown";

    const totals::Table table = totals::count(runs, keys, period);
    QStringList lines;
    const auto write = [&](const Totals& sum) {
      lines << QString("%1 %2 %3 %4 %5 %6 %7")
                   .arg(totals::nameOf(sum.first, period))
                   .arg(sum.runs)
                   .arg(sum.kilometres, 0, 'f', 3)
                   .arg(sum.time(), sum.averagePace())
                   .arg(sum.longest, 0, 'f', 3)
                   .arg(sum.position);
    };
    for (const Totals& sum : table.periods) {
      write(sum);
      const QDate last = totals::lastDay(sum.first, period);
      QCOMPARE(totals::firstDay(last, period), sum.first);
      QCOMPARE(totals::firstDay(last.addDays(1), period), last.addDays(1));
    }
    write(table.all);
    QCOMPARE(lines, expected);
  }
};

QTEST_GUILESS_MAIN(tst_totals)
#include "tst_totals.moc"
