#pragma once

#include "data/records.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

/// A run as a Training Center XML document, version 2 of the format published by Garmin.
///
/// `laps` and `points` are the store's records of the run with the activity number `number`;
/// `startTime` is its start, "yyyy-MM-dd HH:mm:ss" with or without a "T" for the blank;
/// `offset` comes from offsetText(). A lap or point missing from its dictionary counts as one
/// without values. Null when the start time has fewer than 10 characters, since every time in the
/// document needs the date. Pure; any thread.
QByteArray writeTcx(const LapDictionary& laps, const PointDictionary& points, qint64 number,
                    const QString& startTime, const QString& offset);

/// The file name offered for the run, without extension: 2014-05-01 07:30:00 gives
/// "20140501073000".
QString tcxFileName(const QString& startTime);
