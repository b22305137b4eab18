#include "tools/watchsim/watchMemory.h"

#include "tools/watchsim/runSimulation.h"
#include "tools/watchsim/watchBlocks.h"

#include <algorithm>

namespace {

/// Days with their start times, the oldest first; early in the morning or after work.
QList<QDateTime> makeStarts(const MemoryOptions& options, RandomNumbers& random) {
  QList<QDateTime> starts;
  QDate day = options.today;
  for (qint32 i = 0; i < options.runs; ++i) {
    day = day.addDays(i == 0 ? -1 : -random.between(2, 5));
    const qint32 hour = random.between(0, 2) == 0 ? 18 : 6;
    const QTime time(hour, random.between(0, 59), random.between(0, 59));
    starts.prepend(QDateTime(day, time, Qt::UTC));  // no zone: the watch's own clock
  }
  return starts;
}

QList<SimulatedRun> recordRuns(const MemoryOptions& options) {
  RandomNumbers random(options.seed);
  const QList<QDateTime> starts = makeStarts(options, random);
  const auto routes = tokyoRoutes();
  const auto firstRoute = static_cast<size_t>(random.between(0, 5));
  QList<SimulatedRun> runs;
  for (const QDateTime& start : starts) {
    const Route& route = routes[(firstRoute + static_cast<size_t>(runs.size())) % routes.size()];
    const qint32 points =
        options.pointsPerRun > 0 ? options.pointsPerRun : random.between(380, 640);
    runs.append(RunSimulation(route, start, random).record(std::min(points, 65'535)));
  }
  return runs;
}

}  // namespace

QList<QByteArray> makeMemory(const MemoryOptions& options) {
  const QList<SimulatedRun> runs = recordRuns(options);
  QList<QByteArray> blocks;
  const auto keyOf = [](qsizetype run) { return static_cast<qint32>(run + 1); };
  for (qsizetype run = 0; run < runs.size(); ++run) {
    blocks.append(runHeaderBlock(runs[run].header, keyOf(run)));
    qint32 number = 0;
    for (const LapCounters& lap : runs[run].laps) {
      blocks.append(lapBlock(lap, ++number, keyOf(run)));
    }
  }
  for (qsizetype run = 0; run < runs.size(); ++run) {
    blocks.append(pointHeaderBlock(static_cast<qint32>(run)));
    qint32 number = 0;
    for (const TrackPoint& point : runs[run].points) {
      blocks.append(pointBlock(point, ++number, keyOf(run)));
    }
  }
  return blocks;
}

QList<QByteArray> blocksFromLines(const QString& lines) {
  QList<QByteArray> blocks;
  for (const QStringView line : QStringView(lines).tokenize(u'\n', Qt::SkipEmptyParts)) {
    const QByteArray block = QByteArray::fromHex(line.toLatin1());
    if (block.size() == 36) {
      blocks.append(block);
    }
  }
  return blocks;
}

QString lineFromBlock(const QByteArray& block) {
  return QString::fromLatin1(block.toHex(' ').toUpper());
}
