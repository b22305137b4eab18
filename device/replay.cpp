#include "device/replay.h"

#include "device/storeDownload.h"

#include <QFile>
#include <QFileInfo>

namespace {

/// Far more than a watch holds.
constexpr qint64 largestFile = qint64{256} << 20;

/// The lines of the file; none, with the reason in `error`, when it cannot be read.
QStringList readLines(const QString& path, QString& error) {
  const QFileInfo info(path);
  if (!info.isFile() || info.size() > largestFile) {  // a pipe would be waited for
    error = info.exists() ? QStringLiteral("「%1」はダウンロードの控えではありません。").arg(path)
                          : QStringLiteral("「%1」がありません。").arg(path);
    return {};
  }
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    error = QStringLiteral("「%1」を読めません：%2").arg(path, file.errorString());
    return {};
  }
  QStringList lines;
  while (!file.atEnd()) {
    lines.append(QString::fromLatin1(file.readLine().trimmed()));
  }
  return lines;
}

}  // namespace

ReplayOutcome replayKeptLines(const QString& path) {
  ReplayOutcome outcome;
  const QStringList lines = readLines(path, outcome.error);
  if (!outcome.error.isNull()) {
    return outcome;
  }
  // The watch's identity is not kept; downloads do without it as well.
  const WatchIdentity unknown;
  const StoredDownload stored = storeDownload(lines, unknown, MixedRuns::refuse);
  outcome.newRuns = stored.decoded.newRuns;
  outcome.wouldMix = stored.wouldMix;
  outcome.code = stored.code;
  outcome.runsNotStored = stored.runsNotStored;
  outcome.strayLines = stored.decoded.strayLines;
  return outcome;
}
