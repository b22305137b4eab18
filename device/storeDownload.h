#pragma once

#include "device/downloadDecoder.h"

#include <QString>
#include <QStringList>

/// What became of the lines of a download in the database.
struct StoredDownload {
  DecodedDownload decoded;
  qint32 code = downloadResult::notStored;  ///< A result code of downloadResult.
  /// How many of decoded.newStarts are not in the database: statements that failed (an apostrophe
  /// in the name, a full disk), no lap, a key that another run has too, no number left.
  qsizetype runsNotStored = 0;
};

/// The watch's identity, as far as it is known.
struct WatchIdentity {
  QString idNoStr;       ///< Null when it was never read.
  qint32 checkAlti = 0;  ///< 1 when the watch records altitude.
};

/// Decodes lines with what the database holds already; stores nothing.
DecodedDownload decodeForStore(const QStringList& lines, const WatchIdentity& watch);

/// Decodes lines and stores their new runs; none when the activity numbers in the database leave no
/// room for all of them. Any thread.
StoredDownload storeDownload(const QStringList& lines, const WatchIdentity& watch);
