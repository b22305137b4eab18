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
    run.T_RunEndTime = QString("2026-05-%1 08:00:00").arg(i, 2, 10, QChar(u'0'));
    run.T_RunExTime = "00:30:00.00";
    run.T_RunDistance = "500000";
    run.T_RunCal = "3215000";
    run.T_RunAvgSpeed = "100";
    run.T_RunMaxSpeed = "180";
    run.T_RunAvgHR = "140";
    run.T_RunMaxHR = "171";
    run.T_RunTimeZone = "09:00:00";
    run.T_RunLap = 2;
    run.T_RunTrackPoint = points;
    run.T_Cnumber = i;
    batch.runMD.insert(key, run);
    batch.runArr << key;
    for (int lap = 1; lap <= 2; ++lap) {
      lapData record;
      record.T_LapType = QString("Lap %1").arg(lap);
      record.T_LapTime = "00:05:12.34";
      record.T_LapDistance = "123456";
      record.T_LapCal = "990000";
      record.T_LapAvgSpeed = "118";
      record.T_LapMaxSpeed = "153";
      record.T_LapAvgHR = "141";
      record.T_LapMaxHR = "160";
      record.T_LapTimeZone = "08:00:00";
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
      point.T_PointDistance = QString::number(n * 310);
      point.T_PointSpeed = "600";
      point.T_PointHR = "652";
      point.T_PointCal = "42";
      point.T_PointAlti = "17";
      point.T_Setid = n;
      point.T_Cnumber = i;
      batch.pointMD.insert(key + "-" + dataControl::returnKeyStr(QString::number(n)), point);
    }
  }
  dataControl().getInt();  // makes the tables
  QCOMPARE(dataControl().getSqlArr(batch.runMD, batch.lapMD, batch.pointMD, batch.runArr), 1);
}
