// From the received lines into the store.

#include "device/storeDownload.h"
#include "device/usbOperating.h"

qint32 usbOperating::convertChstr() {
  newRuns = 0;
  runsNotStored = 0;
  const QStringList lines = receivedLines();
  if (lines.isEmpty()) {
    return downloadResult::notStored;
  }
  StoredDownload stored = storeDownload(lines, {idNoStr, checkAlti});
  runArr = std::move(stored.decoded.batch.runArr);
  runMD = std::move(stored.decoded.batch.runMD);
  lapMD = std::move(stored.decoded.batch.lapMD);
  pointMD = std::move(stored.decoded.batch.pointMD);
  cnumber = stored.decoded.cnumber;
  newRuns = stored.decoded.newRuns;
  runsNotStored = stored.runsNotStored;
  knownRuns = stored.decoded.knownRuns;
  strayLines = stored.decoded.strayLines;
  return stored.code;
}
