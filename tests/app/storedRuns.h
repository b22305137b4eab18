#pragma once

#include "base/text.h"
#include "data/dataControl.h"
#include "device/downloadDecoder.h"

#include <QTest>

/// Stores `count` runs, one a day, each with two laps and `points` points; activity numbers from 1.
inline void storeRuns(int count, int points = 12) {
  DownloadBatch batch;
  for (int i = 1; i <= count; ++i) {
    const QString key = QString::number(i);
    runData run;
    run.T_RunStartTime = QString("2026-05-%1 07:30:00").arg(i, 2, 10, QChar(u'0'));
    run.T_RunDistance = "500000";
    run.T_RunAvgSpeed = "100";
    run.T_RunLap = 2;
    run.T_RunTrackPoint = points;
    run.T_Cnumber = i;
    batch.runMD.insert(key, run);
    batch.runArr << key;
    for (int lap = 1; lap <= 2; ++lap) {
      lapData record;
      record.T_LapType = QString("Lap %1").arg(lap);
      record.T_LapNo = lap;
      record.T_Cnumber = i;
      batch.lapMD.insert(key + "-" + dataControl::returnKeyStr(QString::number(lap)), record);
    }
    for (int n = 1; n <= points; ++n) {
      trackPointData point;
      point.T_PointTime =
          QString("07:%1:%2").arg(n / 60, 2, 10, QChar(u'0')).arg(n % 60, 2, 10, QChar(u'0'));
      point.T_PointLatSign = "N";
      point.T_PointLogSign = "E";
      point.T_PointLatitudeN = text::fixed(35.0 + i + n * 0.001, 6);
      point.T_PointLongitudeN = text::fixed(139.0 + n * 0.001, 6);
      point.T_Setid = n;
      point.T_Cnumber = i;
      batch.pointMD.insert(key + "-" + dataControl::returnKeyStr(QString::number(n)), point);
    }
  }
  dataControl().getInt();  // makes the tables
  QCOMPARE(dataControl().getSqlArr(batch.runMD, batch.lapMD, batch.pointMD, batch.runArr), 1);
}
