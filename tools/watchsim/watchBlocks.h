#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QtGlobal>

// The 36-byte blocks that the watch sends. Counters of laps are cumulative since the start of the
// run; distances are centimetres, calories ten thousandths of a kilocalorie.

struct RunHeader {
  QDateTime start;
  qint32 lapCount = 0;
  qint32 maxSpeed = 0;  ///< Tenths of km/h, like the other speeds of runs and laps.
  qint32 avgSpeed = 0;
  qint32 maxHR = 0;  ///< Beats per minute.
  qint32 minHR = 0;
  qint32 avgHR = 0;
  qint32 pointCount = 0;
  qint32 ascent = 0;  ///< Metres.
  qint32 descent = 0;
  qint32 pace = 0;  ///< Seconds per kilometre.
  QByteArray name;  ///< Up to seven characters.
};

struct LapCounters {
  qint32 seconds = 0;
  qint32 hundredths = 0;
  qint64 distance = 0;
  qint64 calories = 0;
  qint32 maxSpeed = 0;
  qint32 avgSpeed = 0;
  bool isAutomatic = false;
  qint64 hrSum = 0;  ///< One sample a second.
  qint32 hrSamples = 0;
  qint32 maxHR = 0;
  qint32 minHR = 0;
  qint32 altitude = 0;  ///< Metres.
};

struct TrackPoint {
  qint32 timeOfDay = 0;  ///< Seconds since midnight.
  qint32 elapsed = 0;    ///< Seconds since the start.
  qint64 distance = 0;
  qint32 speed = 0;  ///< Fiftieths of km/h.
  qint32 hr = 0;     ///< Fifths of a beat per minute.
  bool hasFix = false;
  qint32 latitude = 0;   ///< Ten thousandths of a minute, north.
  qint32 longitude = 0;  ///< Ten thousandths of a minute, east.
  qint32 calories = 0;   ///< Kilocalories.
  qint32 altitude = 0;   ///< Metres.
};

/// The first block of a run. `key` (0-255) names the run in all its blocks.
QByteArray runHeaderBlock(const RunHeader& header, qint32 key);
/// Lap `number`, from 1.
QByteArray lapBlock(const LapCounters& lap, qint32 number, qint32 key);
/// The block before the points of the run that came as number `index`, from 0, in this download.
QByteArray pointHeaderBlock(qint32 index);
/// Point `number`, from 1.
QByteArray pointBlock(const TrackPoint& point, qint32 number, qint32 key);
/// What ends a download.
QByteArray endMarkerBlock();
/// The watch's answer to the link command.
QByteArray identityBlock();
