#pragma once

#include "base/text.h"
#include "data/dataControl.h"
#include "device/downloadDecoder.h"
#include "tests/app/windowFixture.h"
#include "tests/map/trackOf.h"

#include <QTest>

/// Stores `count` runs, one a day, each with two laps and `points` points; activity numbers from 1.
inline void storeRuns(int count, int points = 12) {
  DownloadBatch batch;
  for (int i = 1; i <= count; ++i) {
    const QString key = QString::number(i);
    const QString day = QString::asprintf("2026-05-%02d ", i);
    batch.runArr << key;
    runData& run = batch.runMD[key];
    run.T_RunStartTime = day + "07:30:00";
    run.T_RunEndTime = day + "08:00:00";
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
    for (int lap = 1; lap <= 2; ++lap) {
      lapData& record = batch.lapMD[key + QString::asprintf("-%05d", lap)];
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
    }
    for (int n = 1; n <= points; ++n) {
      trackPointData& point = batch.pointMD[key + QString::asprintf("-%05d", n)];
      point = pointAt(text::fixed(35.0 + i + n * 0.001, 6), text::fixed(139.0 + n * 0.001, 6));
      point.T_PointTime = QString::asprintf("07:%02d:%02d", n / 60, n % 60);
      point.T_PointDistance = QString::number(n * 310);
      point.T_PointSpeed = "600";
      point.T_PointHR = "652";
      point.T_PointCal = "42";
      point.T_PointAlti = "17";
      point.T_Setid = n;
      point.T_Cnumber = i;
    }
  }
  dataControl().getInt();  // makes the tables
  QCOMPARE(dataControl().getSqlArr(batch.runMD, batch.lapMD, batch.pointMD, batch.runArr), 1);
}

/// The window after its start on a store with some runs, number `runs` the newest.
struct StartedWindow : WindowFixture {
  explicit StartedWindow(int runs, int points = 12) {
    if (runs > 0) {
      storeRuns(runs, points);
    }
    start();
  }

  /// The first run is drawn and forgotten.
  void mapLoads() {
    controller->didReceiveTitle("Map Load OK");
    settle();
    map.calls.clear();
  }
};
