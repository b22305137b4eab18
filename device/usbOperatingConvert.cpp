// From the received lines into the store.

#include "data/dataControl.h"
#include "device/downloadDecoder.h"
#include "device/usbOperating.h"

qint32 usbOperating::convertChstr() {
  const QStringList lines = receivedLines();
  if (lines.isEmpty()) {
    return -1;
  }
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
  return store.getSqlArr(runMD, lapMD, pointMD, runArr);
}
