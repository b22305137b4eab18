#include "stats/profileCurve.h"
#include "tests/columns.h"

#include <QtTest>

#include <cmath>

namespace {

/// A run of points, each "time centimetres speed heartRate altitude" as stored; "-" leaves one out.
PointDictionary pointsOf(const QStringList& lines) {
  PointDictionary points;
  for (qsizetype i = 0; i < lines.size(); ++i) {
    const QStringList part = lines[i].split(' ');
    if (part.size() == 5) {
      points.insert("7-" + QString::number(i + 1), {part[0], "", "E", "", "N", "", "", part[2],
                                                    part[3], part[4], "", part[1], "", i + 1, 7});
    } else {
      points.insert("a hole " + QString::number(i), {});
    }
  }
  return points;
}

/// Laps, each "time centimetres".
LapDictionary lapsOf(const QStringList& lines) {
  LapDictionary laps;
  for (qsizetype i = 0; i < lines.size(); ++i) {
    lapData lap;
    lap.T_LapTime = lines[i].section(' ', 0, 0);
    lap.T_LapDistance = lines[i].section(' ', 1);
    lap.T_LapNo = static_cast<qint32>(i) + 1;
    laps.insert("7-" + QString::number(i + 1), lap);
  }
  return laps;
}

QString shown(std::optional<double> value) {
  return value ? QString::number(*value) : "-";
}

/// A long run of a point each second, with one peak in each curve and a pause in its middle.
RunProfile longRun(int count) {
  RunProfile run;
  for (int i = 0; i < count; ++i) {
    const bool rested = i >= count / 2;
    run.points.push_back({.sequence = i + 1,
                          .along = i / 300.0,
                          .elapsed = i + (rested ? 600.0 : 0.0),
                          .speed = i == 1234 ? 30.0 : 12.0 + (i % 7) / 10.0,
                          .heartRate = i == 2345 ? 201.0 : 140.0 + i % 5,
                          .altitude = i == 3456 ? -3.0 : 20.0,
                          .isAfterPause = i == count / 2});
  }
  return run;
}

}  // namespace

class tst_profile : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void point_data() {
    // The last point's kilometres, seconds, km/h, heart rate, metres, pause.
    const auto add = columns<QStringList, QString>("lines", "last");
    const QString first = "10:00:00 0 600 700 15", second = "10:00:05 1000 600 700 15";
    const auto row = [&](const char* name, const QString& line, const QString& last) {
      add(name, {first, second, line}, last);
    };
    row("values as in the table", "10:00:10 321500 541 652 23", "3.215 10 10.82 130 23");
    row("nothing measured is no zero", "10:00:10 2000 0 0 ", "0.02 10 - - -");
    row("less than a beat", "10:00:10 2000 600 4 15", "0.02 10 12 - 15");
    row("numbers that are none", "10:00:10 1e999 inf nan x", "0.01 10 - - 0");
    row("no place on earth", "10:00:10 2000 600 700 4294967290", "0.02 10 12 140 -");
    add("over midnight", {"23:59:50 0 600 700 15", "00:00:05 2000 600 700 15"},
        "0.02 15 12 140 15");
    row("a clock set back stands still", "09:59:00 2000 600 700 15", "0.02 5 12 140 15");
    row("a distance that falls stands still", "10:00:10 500 600 700 15", "0.01 10 12 140 15");
    row("a minute without speed is a pause", "10:01:05 1000 0 700 15", "0.01 65 - 140 15 pause");
    row("a minute with speed is none", "10:01:05 1000 50 700 15", "0.01 65 1 140 15");
    row("less than a minute is none", "10:01:04 1000 0 700 15", "0.01 64 - 140 15");
  }
  void point() {
    QFETCH(QStringList, lines);
    const RunProfile run = runProfile(pointsOf(lines), {}, 7);
    const ProfilePoint& last = run.points.back();
    QStringList text{QString::number(last.along), QString::number(last.elapsed), shown(last.speed),
                     shown(last.heartRate), shown(last.altitude)};
    if (last.isAfterPause) {
      text << "pause";
    }
    QTEST(text.join(' '), "last");
  }

  // Each point stands in the row of the points table, whatever is missing before it.
  void aHoleLeavesNoRow() {
    const RunProfile run = runProfile(pointsOf({"10:00:00 0 0 0 0", "-", "10:00:09 9 0 0 0"}),
                                      lapsOf({"00:00:09.00 9"}), 7);
    QCOMPARE(run.points.size(), 2U);
    QCOMPARE(run.points.back().sequence, 3);
    QVERIFY(!run.speed && !run.heartRate && !run.altitude);  // 0 m throughout was not measured
    QVERIFY(runProfile({}, lapsOf({"00:10:00.00 1000"}), 7).points.empty());
  }

  void laps_data() {
    const auto row = columns<QStringList, QStringList, QString>("points", "laps", "stretches");
    const QStringList run{"10:00:00 0 600 0 0", "10:00:10 100 600 0 0", "10:00:20 200 600 0 0",
                          "10:05:20 200 0 0 0", "10:05:30 300 600 0 0"};
    QStringList still = run;
    still.replaceInStrings(QRegularExpression(" \\d00 "), " 0 ");
    row("by distance", run, {"00:00:10.00 100", "00:00:15.00 150"}, "0-2 2-4");
    row("beyond the end", run, {"00:00:01.00 999", "00:00:01.00 9"}, "0-5 5-5");
    row("no distance: by time on the move", still, {"00:00:10.00 0", "00:00:15.00 0"}, "0-2 2-4");
  }
  void laps() {
    QFETCH(QStringList, points);
    QFETCH(QStringList, laps);
    QStringList stretches;
    for (const ProfileLap& lap : runProfile(pointsOf(points), lapsOf(laps), 7).laps) {
      stretches << QString("%1-%2").arg(lap.first).arg(lap.end);
    }
    QTEST(stretches.join(' '), "stretches");
  }

  void stragglersDoNotStretchThePace() {
    QStringList lines;
    for (int i = 0; i < 200; ++i) {
      const int speed = i < 3 ? 10 + i : i == 100 ? 3000 : 600 + i % 10;  // fiftieths of km/h
      lines << QString("10:%1:%2 %3 %4 700 5")
                   .arg(i / 60, 2, 10, QChar('0'))
                   .arg(i % 60, 2, 10, QChar('0'))
                   .arg(i * 300)
                   .arg(speed);
    }
    const auto speed = runProfile(pointsOf(lines), {}, 7).speed;
    QVERIFY(speed->low > 11 && speed->low <= 12 && speed->high >= 12.18 && speed->high < 13);
  }

  void everyPeakIsDrawn_data() {
    const auto row = columns<ProfileAxis>("axis");
    row("distance", ProfileAxis::Distance);
    row("time", ProfileAxis::Time);
  }
  void everyPeakIsDrawn() {
    QFETCH(ProfileAxis, axis);
    const RunProfile run = longRun(50000);
    const auto place = [&](int row) { return placeOf(run.points[std::size_t(row)], axis); };
    const std::vector<DrawnPoint> all = drawnPoints(run, axis, place(0), place(49999), 1000);
    QVERIFY(all.size() <= 2002);
    QVERIFY(std::is_sorted(all.begin(), all.end(),
                           [](const auto& a, const auto& b) { return a.place < b.place; }));
    for (const int row : {1234, 2345, 3456}) {
      const ProfilePoint& peak = run.points[std::size_t(row)];
      QVERIFY(std::any_of(all.begin(), all.end(), [&](const DrawnPoint& drawn) {
        return std::abs(drawn.place - place(row)) <= place(49999) / 1000 &&
               (peak.speed == 30.0 ? drawn.speed == peak.speed
                : row == 2345      ? drawn.heartRate == peak.heartRate
                                   : drawn.altitude == peak.altitude);
      }));
    }
    QCOMPARE(std::count_if(all.begin(), all.end(), [](auto& drawn) { return drawn.isAfterPause; }),
             1);
    // A short stretch shows every point, and the lines run on out of sight.
    const std::vector<DrawnPoint> part = drawnPoints(run, axis, place(100), place(200), 1000);
    QCOMPARE(part.front().place, place(99));
    QCOMPARE(part.back().place, place(201));
    QCOMPARE(part.size(), 103U);
    QVERIFY(drawnPoints({}, axis, 0, 1, 1000).empty());
  }

  void nearest_data() {
    const auto row = columns<double, int>("place", "row");
    row("before the start", -1.0, 0);
    row("nearer the one before", 10.4, 10);
    row("nearer the one behind", 10.6, 11);
    row("behind the end", 1e9, 99);
    row("the start of the pause", 340.0, 49);
    row("the end of the pause", 360.0, 50);
  }
  void nearest() {
    QFETCH(double, place);
    QTEST(nearestPoint(longRun(100), ProfileAxis::Time, place), "row");
    QCOMPARE(nearestPoint({}, ProfileAxis::Time, place), -1);
  }
};

QTEST_APPLESS_MAIN(tst_profile)
#include "tst_profile.moc"
