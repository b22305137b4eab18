#include "device/storeDownload.h"

#include "data/dataControl.h"
#include "data/databaseUse.h"

#include <algorithm>

namespace {

/// How many runs the store does not know, or cannot tell. Storing answers well as soon as one run
/// succeeded, and statements that fail take along only their own run.
qsizetype countMissing(const QSet<QString>& starts) {
  if (starts.isEmpty()) {
    return 0;
  }
  dataControl store;
  return std::count_if(starts.cbegin(), starts.cend(),
                       [&store](const QString& start) { return store.checkRecord(start) != 1; });
}

DecodedDownload decode(const QStringList& lines, const WatchIdentity& watch, dataControl& store,
                       qint64 highestNumber) {
  DecodeContext context;
  context.isStored = [&store](const QString& start) { return store.checkRecord(start) == 1; };
  context.highestNumber = highestNumber;
  context.checkAlti = watch.checkAlti;
  context.idNoStr = watch.idNoStr;
  return decodeDownload(lines, context);
}

}  // namespace

DecodedDownload decodeForStore(const QStringList& lines, const WatchIdentity& watch) {
  dataControl store;
  return decode(lines, watch, store, 0);
}

StoredDownload storeDownload(const QStringList& lines, const WatchIdentity& watch) {
  StoredDownload result;
  const databaseUse::Turn turn = databaseUse::await();
  dataControl store;
  store.close_db();
  result.decoded = decode(lines, watch, store, store.getMaxCnumber(QStringLiteral("T_RunData")));
  result.code = result.decoded.code;
  store.close_db();
  const DownloadBatch& batch = result.decoded.batch;
  if (!batch.runArr.isEmpty()) {
    result.code = store.getSqlArr(batch.runMD, batch.lapMD, batch.pointMD, batch.runArr);
  }
  result.runsNotStored = countMissing(result.decoded.newStarts);
  return result;
}
