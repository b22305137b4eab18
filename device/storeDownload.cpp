#include "device/storeDownload.h"

#include "data/dataControl.h"
#include "data/databaseUse.h"

#include <algorithm>

namespace {

/// How many runs the store does not know, or cannot tell. Storing answers well as soon as one run
/// succeeded, and statements that fail take along only their own run.
qsizetype countMissing(const QHash<QString, qsizetype>& starts) {
  if (starts.isEmpty()) {
    return 0;
  }
  dataControl store;
  qsizetype missing = 0;
  for (auto start = starts.cbegin(); start != starts.cend(); ++start) {
    const qsizetype stored = std::max<qsizetype>(store.countRuns(start.key()), 0);
    missing += std::max<qsizetype>(*start - stored, 0);
  }
  return missing;
}

/// Whether a run is stored already, as often as it was asked.
struct KnownRuns {
  dataControl& store;
  bool allAnswered = true;

  bool hold(const QString& start) {
    const qint32 answer = store.checkRecord(start);
    allAnswered = allAnswered && answer >= 0;
    return answer == 1;
  }
};

DecodedDownload decode(const QStringList& lines, const WatchIdentity& watch, KnownRuns& known) {
  DecodeContext context;
  context.isStored = [&known](const QString& start) { return known.hold(start); };
  context.highestNumber = known.store.getMaxCnumber(QStringLiteral("T_RunData"));
  context.checkAlti = watch.checkAlti;
  context.idNoStr = watch.idNoStr;
  return decodeDownload(lines, context);
}

}  // namespace

StoredDownload storeDownload(const QStringList& lines, const WatchIdentity& watch,
                             MixedRuns mixed) {
  StoredDownload result;
  const databaseUse::Turn turn = databaseUse::await();
  dataControl store;
  store.close_db();
  KnownRuns known{store};
  const DecodedDownload& decoded = result.decoded = decode(lines, watch, known);
  store.close_db();
  if (!known.allAnswered) {  // what is stored already would be stored again
    result.runsNotStored = decoded.newRuns;
    return result;
  }
  result.wouldMix = mixed == MixedRuns::refuse && decoded.knownRuns > 0 && decoded.newRuns > 0;
  if (result.wouldMix) {
    return result;
  }
  const DownloadBatch& batch = decoded.batch;
  result.code = batch.runArr.isEmpty()
                    ? decoded.code
                    : store.getSqlArr(batch.runMD, batch.lapMD, batch.pointMD, batch.runArr);
  result.runsNotStored = countMissing(decoded.newStarts);
  return result;
}
