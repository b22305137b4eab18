#include "device/downloadDecoder.h"

#include "base/text.h"
#include "device/blockReader.h"
#include "device/downloadResult.h"
#include "device/pointDecoder.h"
#include "device/runDecoder.h"

#include <QLoggingCategory>

#include <algorithm>
#include <vector>

namespace {

Q_LOGGING_CATEGORY(lcDecoder, "trakko.device.decoder", QtInfoMsg)

/// The lines of a download by kind, each kind in the order of arrival. Views into the lines.
struct SortedLines {
  std::vector<QStringView> runs;
  std::vector<QStringView> points;
};

SortedLines sortLines(const QStringList& lines) {
  SortedLines sorted;
  sorted.points.reserve(static_cast<size_t>(lines.size()));
  for (const QString& line : lines) {
    qCDebug(lcDecoder) << line;
    switch (Block::kind(line)) {
      case LineKind::run:
        sorted.runs.emplace_back(line);
        break;
      case LineKind::point:
        sorted.points.emplace_back(line);
        break;
      case LineKind::tooShort:
        qCDebug(lcDecoder) << "line too short, dropped:" << line;
        break;
      case LineKind::other:
        break;
    }
  }
  return sorted;
}

qsizetype linesBeforeAnyHeader(const std::vector<QStringView>& lines) {
  const auto header = std::find_if(lines.begin(), lines.end(),
                                   [](QStringView line) { return Block(line).isHeader(); });
  return header - lines.begin();
}

}  // namespace

DecodedDownload decodeDownload(const QStringList& lines, const DecodeContext& context) {
  DecodedDownload result;
  result.cnumber = context.highestNumber;
  const SortedLines sorted = sortLines(lines);
  if (!sorted.runs.empty()) {
    result.code = downloadResult::noRunCompleted;
  }
  RunDecoder runs(context, result);
  for (size_t i = 0; i < sorted.runs.size(); ++i) {
    qCDebug(lcDecoder) << sorted.runs[i];
    runs.take(Block(sorted.runs[i]), i + 1 == sorted.runs.size());
  }
  result.strayLines += linesBeforeAnyHeader(sorted.points);
  if (result.batch.runArr.isEmpty()) {
    return result;
  }
  result.batch.pointMD.reserve(static_cast<qsizetype>(sorted.points.size()));
  PointDecoder points(result, runs.runKey, runs.completedAtHeader);
  for (const QStringView line : sorted.points) {
    qCDebug(lcDecoder) << line;
    points.take(Block(line));
  }
  return result;
}

QStringList getStrArray(const QString& line) {
  QStringList pieces;
  pieces.reserve(line.size() / 2);
  for (qsizetype i = 0; i + 1 < line.size(); i += 2) {
    pieces.append(line.sliced(i, 2));
  }
  return pieces;
}

bool isPureInt(const QString& value) {
  QStringView rest = QStringView(value);
  if (rest.startsWith(u'-') || rest.startsWith(u'+')) {
    rest = rest.sliced(1);
  }
  return !rest.isEmpty() && std::all_of(rest.begin(), rest.end(), text::isDigit);
}
