#pragma once

#include "data/records.h"

#include <QTime>

/// Short ways to make tracks for tests.

inline trackPointData pointAt(const QString& lat, const QString& lon, const QString& latSign = "N",
                              const QString& lonSign = "E") {
  trackPointData point;
  point.T_PointLatitudeN = lat;
  point.T_PointLongitudeN = lon;
  point.T_PointLatSign = latSign;
  point.T_PointLogSign = lonSign;
  return point;
}

/// Run 1 of `count` points, one a second from 10:00:00, from 35.6/139.7 to the north-east. Before
/// the points at `pauses` (from 0) the runner stands still for `seconds`; the clock starts over at
/// midnight.
inline PointDictionary straightRun(int count, const QList<int>& pauses = {}, int seconds = 60) {
  PointDictionary points;
  QTime time(10, 0);
  for (int i = 0; i < count; ++i) {
    const bool paused = pauses.contains(i);
    time = time.addSecs(paused ? seconds : 1);
    trackPointData point = pointAt(QString::number(35.6 + i * 0.0001, 'f', 6),
                                   QString::number(139.7 + i * 0.0001, 'f', 6));
    point.T_PointTime = time.toString("HH:mm:ss");
    point.T_PointSpeed = paused ? "0" : "600";
    points.insert(QString("1-%1").arg(i + 1), point);
  }
  return points;
}
