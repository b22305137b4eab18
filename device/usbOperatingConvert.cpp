// From the received lines into the store.

#include "data/dataControl.h"
#include "data/databaseUse.h"
#include "device/downloadDecoder.h"
#include "device/usbOperating.h"

#include <algorithm>

namespace {

/// How many runs of the batch the store does not know, or cannot tell. Storing answers well as soon
/// as one run succeeded, and statements that fail (an apostrophe in the run's name) take along only
/// their own run.
qsizetype countMissing(const QStringList& keys, const RunDictionary& runs) {
  dataControl store;
  return std::count_if(keys.cbegin(), keys.cend(), [&](const QString& key) {
    return store.checkRecord(runs.value(key).T_RunStartTime) != 1;
  });
}

}  // namespace

qint32 usbOperating::convertChstr() {
  runsNotStored = 0;
  const QStringList lines = receivedLines();
  if (lines.isEmpty()) {
    return -1;
  }
  const databaseUse::Turn turn = databaseUse::await();
  dataControl store;
  store.close_db();
  DecodeContext context;
  context.isStored = [&store](const QString& start) { return store.checkRecord(start) == 1; };
  context.highestNumber = store.getMaxCnumber(QStringLiteral("T_RunData"));
  context.checkAlti = checkAlti;
  context.idNoStr = idNoStr;
  const DecodedDownload decoded = decodeDownload(lines, context);
  runArr = decoded.batch.runArr;
  runMD = decoded.batch.runMD;
  lapMD = decoded.batch.lapMD;
  pointMD = decoded.batch.pointMD;
  cnumber = decoded.cnumber;
  if (runArr.isEmpty()) {
    return decoded.code;
  }
  store.close_db();
  const qint32 result = store.getSqlArr(runMD, lapMD, pointMD, runArr);
  runsNotStored = countMissing(runArr, runMD);
  return result;
}
