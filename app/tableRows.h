#pragma once

#include "data/records.h"

#include <QString>

#include <utility>
#include <vector>

// Rows of the three tables as display texts, and their making from records. Pure; any thread.

/// One row of the runs table: start, end, distance in km.
struct tViewData {
  QString nsStrName1, nsStrName2, nsStrName3;
};

/// One row of the laps table: label or start, time, distance in km, average speed, pace, maximum
/// speed, average and maximum heart rate, time zone, calories of the run.
struct lViewData {
  QString nsStrName1, nsStrName2, nsStrName3, nsStrName4, nsStrName5, nsStrName6, nsStrName7,
      nsStrName8, nsStrName9, nsStrName10;
};

/// One row of the points table: number, time, distance in km, speed, pace, heart rate, calories,
/// altitude.
struct pViewData {
  QString nsStrName1, nsStrName2, nsStrName3, nsStrName4, nsStrName5, nsStrName6, nsStrName7,
      nsStrName8;
};

tViewData runRow(const runData& run);

/// The summary row of the run, then a row per lap. Lap n is looked up as "<number>-<n>" for n up to
/// the number of entries; a missing one leaves no gap. Every row repeats the run's calories.
std::vector<lViewData> lapRows(const runData& run, const LapDictionary& laps, qint64 number);

pViewData pointRow(const trackPointData& point);
