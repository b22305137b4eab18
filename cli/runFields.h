#pragma once

#include "data/records.h"

#include <QJsonObject>
#include <QStringList>

// Records as the commands print them: one row of texts, or one JSON object with numbers where the
// values are numbers. Distances in km, speeds in km/h, paces per km, heart rates in beats a minute.

/// Titles of runRow().
QStringList runTitles();
/// Number, start, end, distance, time, average pace. The run as the store answers it.
QStringList runRow(const runData& run);
QJsonObject runObject(const runData& run);

QStringList lapTitles();
QStringList lapRow(const lapData& lap);
QJsonObject lapObject(const lapData& lap);

QStringList pointTitles();
QStringList pointRow(const trackPointData& point);
QJsonObject pointObject(const trackPointData& point);
