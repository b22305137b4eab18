#pragma once

#include <QtGlobal>

/// What usbOperating::getAllData() answers.
namespace downloadResult {
constexpr qint32 stored = 1;           ///< At least one run was stored.
constexpr qint32 noAnswer = 2;         ///< No block within the limit after the command.
constexpr qint32 endMissed = 3;        ///< The end of the transfer was missed.
constexpr qint32 noRecords = 4;        ///< Two lines or fewer.
constexpr qint32 dataError = 5;        ///< Never answered; the window knows a message for it.
constexpr qint32 noRunCompleted = 88;  ///< Run lines, but no run was completed, or all are stored.
constexpr qint32 notStored = -1;       ///< No run line, or the store took none of the runs.

/// The header of a track names its run by its place among the new runs of the download: where a
/// download has known runs as well, the points of several new ones may have gone to the wrong run.
constexpr bool mixesPoints(qsizetype knownRuns, qsizetype newRuns) {
  return knownRuns > 0 && newRuns > 1;
}
}  // namespace downloadResult
