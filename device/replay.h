#pragma once

#include "device/downloadResult.h"

#include <QString>

/// How the replay of kept lines ended.
struct ReplayOutcome {
  QString error;          ///< Why the file could not be read, for the user; null when it could.
  bool wouldMix = false;  ///< Nothing was stored, because new runs stand among stored ones.
  qint32 code = downloadResult::notStored;
  qsizetype newRuns = 0;        ///< Runs in the file that were not stored before.
  qsizetype runsNotStored = 0;  ///< How many of these could not be stored.
  qsizetype strayLines = 0;     ///< Laps and points without a header before them.
};

/// Stores the runs of the kept lines of a download ("lastDownload*.txt"), as the download would
/// have. The watch's tracks name their run by its place among the new runs of the download, so
/// lines of which only some runs are stored already would give points to the wrong run: then
/// nothing is stored. Any thread; one at a time with downloads.
ReplayOutcome replayKeptLines(const QString& path);
