#pragma once

#include "data/records.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

/// A run's track as a GPX 1.1 document: one track with one segment that holds position and time of
/// every point with a fix.
///
/// The arguments are those of writeTcx(). Null when the start time has fewer than 11 characters,
/// since every time in the document needs the date and its "T". Pure; any thread.
QByteArray writeGpx(const PointDictionary& points, qint64 number, const QString& startTime,
                    const QString& offset);

/// The file name offered for the run, without extension: 2014-05-01 07:30:00 gives
/// "20140501073000".
QString gpxFileName(const QString& startTime);
