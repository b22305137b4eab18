#pragma once

#include "device/watchDownload.h"

#include <QString>

struct ReplayOutcome;

/// What the user is told of a download, in sentences that every front end shares.
namespace downloadWords {

/// While blocks come in.
QString running();
/// The watch is silent in the middle of its download.
QString stalled();
/// Why a watch could not be reached.
QString obstacle(LinkObstacle obstacle);
/// What a result code is told as in a message box; null when it has none.
QString message(qint32 code);
/// What the user must know before the watch may be erased; null when nothing.
QString warning(const DownloadOutcome& outcome);
/// How the download ended, in one line.
QString ending(const DownloadOutcome& outcome);
/// How erasing the watch went.
QString erased(LinkObstacle obstacle);
/// How a replay ended, in one line.
QString replayed(const ReplayOutcome& outcome);

}  // namespace downloadWords
