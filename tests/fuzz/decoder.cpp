// Lines of any text, or (behind an odd first byte) of any blocks, decoded into a batch.

#include "data/dataControl.h"
#include "device/downloadDecoder.h"
#include "device/receivedLine.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr qsizetype blockSize = 36;
  quiet();
  if (size == 0) {
    return 0;
  }
  const QByteArray bytes(reinterpret_cast<const char*>(data) + 1, qsizetype(size) - 1);
  QStringList lines;
  if (data[0] % 2 == 0) {
    lines = QString::fromUtf8(bytes).split(u'\n');
  } else {
    for (qsizetype at = 0; at + blockSize <= bytes.size(); at += blockSize) {
      lines << hexLine(std::as_bytes(std::span(bytes).subspan(size_t(at), blockSize)), blockSize);
    }
  }
  DecodeContext context;
  context.isStored = [](const QString& start) { return start.endsWith(u'3'); };
  context.highestNumber = data[0] / 2;
  context.checkAlti = data[0] / 2 % 2;
  context.zone = QTimeZone("Europe/Berlin");
  const DecodedDownload decoded = decodeDownload(lines, context);
  const DownloadBatch& batch = decoded.batch;
  require(!batch.runArr.isEmpty() || decoded.code == -1 || decoded.code == 88);
  for (const QString& key : batch.runArr) {
    require(batch.runMD.contains(key) && batch.runMD[key].T_Cnumber > context.highestNumber);
    require(!context.isStored(batch.runMD[key].T_RunStartTime));
    dataControl::runSqlStr(batch.runMD[key]);
  }
  for (const trackPointData& point : batch.pointMD) {
    require(point.T_Cnumber > context.highestNumber);
    dataControl::trackPointSqlStr(point);
  }
  return 0;
}
