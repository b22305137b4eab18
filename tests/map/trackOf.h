#pragma once

#include "data/records.h"

#include <QString>
#include <QStringList>

/// Short ways to make tracks for tests.

/// A point with a position; time and speed such that nothing is a pause.
inline trackPointData pointAt(const QString& lat, const QString& lon,
                              const QString& time = QStringLiteral("10:00:00"),
                              const QString& speed = QStringLiteral("600")) {
  trackPointData point;
  point.T_PointLatitudeN = lat;
  point.T_PointLongitudeN = lon;
  point.T_PointLatSign = QStringLiteral("N");
  point.T_PointLogSign = QStringLiteral("E");
  point.T_PointTime = time;
  point.T_PointSpeed = speed;
  return point;
}

/// "HH:MM:SS" of seconds after midnight, starting over after a day.
inline QString clockText(int seconds) {
  const int day = 24 * 3600;
  const int rest = seconds % day;
  return QStringLiteral("%1:%2:%3")
      .arg(rest / 3600, 2, 10, QLatin1Char('0'))
      .arg(rest / 60 % 60, 2, 10, QLatin1Char('0'))
      .arg(rest % 60, 2, 10, QLatin1Char('0'));
}

/// A run of `count` points, one a second, from 35.6/139.7 to the north-east.
inline PointDictionary straightRun(int count, qint64 number = 1) {
  PointDictionary points;
  for (int i = 0; i < count; ++i) {
    points.insert(QStringLiteral("%1-%2").arg(number).arg(i + 1),
                  pointAt(QString::number(35.6 + i * 0.0001, 'f', 6),
                          QString::number(139.7 + i * 0.0001, 'f', 6), clockText(36000 + i)));
  }
  return points;
}

/// Makes the points at `indices` (from 0) stand still for `seconds` before they were recorded.
inline void pauseAt(PointDictionary& points, const QList<int>& indices, int seconds = 60) {
  const auto count = static_cast<int>(points.size());
  int time = 36000;
  for (int i = 0; i < count; ++i) {
    trackPointData& point = points[QStringLiteral("1-%1").arg(i + 1)];
    time += indices.contains(i) ? seconds : 1;
    point.T_PointTime = clockText(time);
    if (indices.contains(i)) {
      point.T_PointSpeed = QStringLiteral("0");
    }
  }
}
