#pragma once

#include "device/downloadDecoder.h"

#include <QString>
#include <QStringList>

/// What became of the lines of a download in the database.
struct StoredDownload {
  DecodedDownload decoded;
  qint32 code = downloadResult::notStored;  ///< A result code of downloadResult.
  /// How many of decoded.newRuns are not in the database: statements that failed (an apostrophe in
  /// the name, a full disk), no lap, a key that another run has too, no number left, or a question
  /// that the database did not answer.
  qsizetype runsNotStored = 0;
  bool wouldMix = false;  ///< Nothing was stored, as MixedRuns asked.
};

/// The watch's identity, as far as it is known.
struct WatchIdentity {
  QString idNoStr;       ///< Null when it was never read.
  qint32 checkAlti = 0;  ///< 1 when the watch records altitude.
};

/// What is done when only some runs of a download are stored already: the points of the others may
/// go to the wrong run.
enum class MixedRuns { store, refuse };

/// Decodes lines and stores their new runs; none when the activity numbers in the database leave no
/// room for all of them, or when it could not be found out whether one is stored already. Any
/// thread.
StoredDownload storeDownload(const QStringList& lines, const WatchIdentity& watch,
                             MixedRuns mixed = MixedRuns::store);
