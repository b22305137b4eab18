#pragma once

#include "data/bundle.h"
#include "data/dataControl.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

// Runs with values as the decoder stores them.

inline trackPointData samplePoint(qint64 run, qint64 number) {
  const int second = static_cast<int>(number % 60);
  const int minute = static_cast<int>(number / 60 % 60);
  return {QString::asprintf("%02d:%02d:%02d", static_cast<int>(7 + number / 3600), minute, second),
          QString::asprintf("139\u00b0%02d.1756", second),
          QStringLiteral("E"),
          QString::asprintf("35\u00b0%02d.2345", second),
          QStringLiteral("N"),
          QString::asprintf("139.%06lld", 700000 + number),
          QString::asprintf("35.%06lld", 600000 + number),
          QString::number(500 + second),
          QString::number(700 + second),
          QString::number(40 + second),
          QStringLiteral("00:00:00"),
          QString::number(number * 300),
          QString::number(number * 7),
          number,
          run};
}

/// A download batch of one run, eight hours after the one with the number before.
struct SampleRun {
  RunDictionary runs;
  LapDictionary laps;
  PointDictionary points;
  QStringList keys{QStringLiteral("0A")};

  SampleRun(qint64 number, qint64 lapCount, qint64 pointCount) {
    const QDateTime start = QDateTime(QDate(2014, 5, 17), QTime(7, 30, 5)).addSecs(number * 28800);
    runData run;
    run.T_RunStartTime = start.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    run.T_RunEndTime = start.addSecs(pointCount).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    run.T_RunExTime = QStringLiteral("00:33:20.00");
    run.T_RunDistance = QString::number(pointCount * 300);
    run.T_RunLap = static_cast<qint32>(lapCount);
    run.T_RunTrackPoint = pointCount;
    run.T_Cnumber = number;
    runs.insert(keys.first(), run);
    for (qint64 i = 1; i <= lapCount; ++i) {
      lapData& lap = laps[key(i)];
      lap.T_LapTime = QStringLiteral("00:05:33.00");
      lap.T_LapDistance = QStringLiteral("100000");
      lap.T_LapNo = static_cast<qint32>(i);
      lap.T_Cnumber = number;
    }
    for (qint64 i = 1; i <= pointCount; ++i) {
      points.insert(key(i), samplePoint(number, i));
    }
  }

  QString key(qint64 number) const {
    return keys.first() + u'-' + dataControl::returnKeyStr(QString::number(number));
  }
  bool store() const { return dataControl().getSqlArr(runs, laps, points, keys) == 1; }
};

/// Makes `folder` the place of the database and answers the path of the file in it.
inline QString useFolder(const QString& folder) {
  setMainBundle({.path = QDir(folder).absoluteFilePath(QStringLiteral("Trakko.app")),
                 .name = QStringLiteral("Trakko")});
  return databasePath(mainBundle());
}

/// Fills a new database with runs of `points` points each.
inline void fillStore(qint64 runs, qint64 points) {
  constexpr qint64 laps = 7;
  const dataControl tables;
  for (qint64 number = 1; number <= runs; ++number) {
    if (!SampleRun(number, laps, points).store()) {
      qFatal("not stored");
    }
  }
}
