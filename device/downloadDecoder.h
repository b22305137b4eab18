#pragma once

#include "data/records.h"
#include "device/downloadResult.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QTimeZone>

#include <functional>

/// What a download was decoded into, as the store takes it.
struct DownloadBatch {
  QStringList runArr;       ///< Run keys of the completed runs, in the order of completion.
  RunDictionary runMD;      ///< By run key ("0A").
  LapDictionary lapMD;      ///< By run key and five-digit lap number ("0A-00003").
  PointDictionary pointMD;  ///< By the point line's own run key and five-digit point number.
};

/// What decoding needs to know besides the lines.
struct DecodeContext {
  /// True when a run with that start time ("yyyy-MM-dd HH:mm:ss") is stored already.
  std::function<bool(const QString&)> isStored;
  qint64 highestNumber = 0;  ///< Largest activity number stored; new runs get the next ones.
  qint32 checkAlti = 0;      ///< 1 when the watch records altitude.
  QString idNoStr;           ///< The watch's identity, null when it was never read.
  /// Run ends are computed through this zone, daylight saving included; through local time when it
  /// is invalid, as the system's is for some values of TZ (a path, a misspelt name).
  QTimeZone zone = QTimeZone::systemTimeZone();
};

struct DecodedDownload {
  DownloadBatch batch;
  /// Meaningful when the batch holds no run: notStored without any run line, noRunCompleted with.
  qint32 code = downloadResult::notStored;
  qint64 cnumber = 0;  ///< The activity number in hand at the end.
  /// Start times of the runs that are not stored yet, with the number of headers that announced
  /// one: after its clock fell back a watch has two. A run without a lap at the end, or whose key
  /// another run has too, is here but not in the batch.
  QHash<QString, qsizetype> newStarts;
  qsizetype newRuns = 0;    ///< How many headers these are.
  qsizetype knownRuns = 0;  ///< How many headers announced a run that is stored already.
  /// Laps behind no header of their run, and points before that of any track: a header was lost,
  /// and a run with it.
  qsizetype strayLines = 0;
};

/// Decodes received lines ("EE 0A ..." with 36 bytes each) into records. Pure; takes any text at
/// all: lines that are too short are dropped, odd digits read as 0 from where they begin.
DecodedDownload decodeDownload(const QStringList& lines, const DecodeContext& context);

/// Consecutive two-character pieces of the text; a last odd character is dropped.
QStringList getStrArray(const QString& line);

/// True when the whole text reads as one integer with nothing left over.
bool isPureInt(const QString& value);
