#include "device/runDecoder.h"

#include "device/textBuilder.h"

#include <QLoggingCategory>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(lcRuns, "trakko.device.runs", QtInfoMsg)

const QString zero = u"0"_s;

QString clockText(const Block& line, int first) {
  return TextBuilder()
      .clock(static_cast<qint64>(line.value({first})), static_cast<qint64>(line.value({first + 1})),
             static_cast<qint64>(line.value({first + 2})))
      .text();
}

/// Seconds since the start of the run.
qint64 elapsedSeconds(const Block& line) {
  return static_cast<qint64>(line.value({0}) * 3600 + line.value({1}) * 60 + line.value({2}));
}

QDateTime at(const QDate& day, const QTime& time, const QTimeZone& zone) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
  // A time that the clock skips does not exist, as in earlier versions of Qt.
  constexpr auto skipped = QDateTime::TransitionResolution::Reject;
  return zone.isValid() ? QDateTime(day, time, zone, skipped) : QDateTime(day, time, skipped);
#else
  return zone.isValid() ? QDateTime(day, time, zone) : QDateTime(day, time);
#endif
}

QDateTime startOf(const Block& line, const QTimeZone& zone) {
  const quint64 year = line.value({5});
  if (year > 99) {
    return {};
  }
  const auto number = [&line](int piece) { return static_cast<int>(line.value({piece})); };
  const QDate day(2000 + static_cast<int>(year), number(4), number(3));
  const QTime time(number(2), number(1), number(0));
  if (!day.isValid() || !time.isValid()) {
    return {};
  }
  return at(day, time, zone);
}

QString startText(const Block& line) {
  TextBuilder text;
  const auto part = [&](QStringView before, int piece) {
    text.append(before).twoDigits(static_cast<qint64>(line.value({piece})));
  };
  part(u"20", 5);
  part(u"-", 4);
  part(u"-", 3);
  part(u" ", 2);
  part(u":", 1);
  part(u":", 0);
  return text.text();
}

QString endText(const QDateTime& start, qint64 seconds) {
  return start.isValid() ? start.addSecs(seconds).toString(u"yyyy-MM-dd HH:mm:ss"_s) : QString();
}

/// What a cumulative counter grew by during the lap. A counter that stood at 0 before says nothing
/// about the lap before, so the counter itself is the answer.
QString growth(quint64 now, quint64 before) {
  return before == 0 ? decimalText(now) : QString::number(static_cast<qint64>(now - before));
}

/// The number after `number`; wraps instead of overflowing when a database holds the largest one.
qint64 next(qint64 number) {
  return static_cast<qint64>(static_cast<quint64>(number) + 1);
}

}  // namespace

RunDecoder::RunDecoder(const DecodeContext& context, DecodedDownload& result)
    : context_(context), result_(result), altitudeRecorded_(context.checkAlti == 1) {}

void RunDecoder::take(const Block& line, bool isLast) {
  if (line.isHeader()) {
    takeHeader(line);
  } else {
    result_.strayLines += line.runKey() == runKey ? 0 : 1;
    if (open_) {
      takeLap(line, isLast);
    }
  }
  previous_ = line;
}

void RunDecoder::takeHeader(const Block& line) {
  runKey = line.runKey().toString();
  before_ = {};
  if (previous_ && open_) {
    completedAtHeader = previous_->runKey().toString();
    complete(*previous_, completedAtHeader);
  }
  Header header = readHeader(line);
  if (context_.isStored && context_.isStored(header.startTime)) {
    ++result_.knownRuns;
    return;
  }
  ++result_.newStarts[header.startTime];
  ++result_.newRuns;
  result_.cnumber = next(result_.cnumber);
  open_ = std::move(header);
}

RunDecoder::Header RunDecoder::readHeader(const Block& line) const {
  Header header;
  header.startTime = startText(line);
  header.start = startOf(line, context_.zone);
  header.laps = static_cast<qint32>(line.value({6, 7})) - 1;
  header.maxSpeed = decimalText(line.value({8, 9}));
  header.avgSpeed = decimalText(line.value({10, 11}));
  header.maxHR = decimalText(line.value({12}));
  header.minHR = decimalText(line.value({13}));
  header.trackPoints = static_cast<qint64>(line.value({14, 15}));
  TextBuilder name;
  for (int piece = 18; piece <= 24; ++piece) {
    name.character(line.value({piece}));
  }
  header.name = name.text();
  header.avgHR = decimalText(line.value({25}));
  header.ascent = altitudeRecorded_ ? decimalText(line.value({31, 30, 29})) : zero;
  header.descent =
      altitudeRecorded_ ? TextBuilder().append(u'-').number(line.value({28, 17, 16})).text() : zero;
  return header;
}

void RunDecoder::complete(const Block& line, const QString& key) {
  const QString elapsed = clockText(line, 0);
  const QString exTime = TextBuilder()
                             .append(elapsed)
                             .append(u'.')
                             .twoDigits(static_cast<qint64>(line.value({3})))
                             .text();
  // The altitude flag is inverted: "0" is a run with altitude. Databases hold it this way.
  result_.batch.runMD.insert(
      key, runData(open_->startTime, endText(open_->start, elapsedSeconds(line)), exTime,
                   decimalText(line.value({4, 5, 6, 7})), decimalText(line.value({8, 9, 10, 11})),
                   open_->laps, open_->maxSpeed, open_->avgSpeed, open_->maxHR, open_->avgHR,
                   open_->minHR, clockText(line, 24), open_->trackPoints, zero, open_->name,
                   QString::number(context_.checkAlti), altitudeRecorded_ ? zero : u"1"_s,
                   open_->ascent, open_->descent, result_.cnumber, u"ZEPLA"_s, context_.idNoStr));
  result_.batch.runArr.append(key);
  open_.reset();
}

void RunDecoder::takeLap(const Block& line, bool isLast) {
  const quint64 distance = line.value({4, 5, 6, 7});
  const quint64 calories = line.value({8, 9, 10, 11});
  const qint32 number = line.sequence();
  lapData lap;
  lap.T_LapDistance = growth(distance, before_.distance);
  lap.T_LapCal = growth(calories, before_.calories);
  before_.distance = distance;
  before_.calories = calories;
  if (isLast) {
    complete(line, runKey);
    completedAtHeader = QString();
    qCInfo(lcRuns, "run ok");
  }
  const Duration duration = lapDuration(line);
  lap.T_LapTime = TextBuilder()
                      .clock(duration.hours, duration.minutes, duration.seconds)
                      .append(u'.')
                      .twoDigits(duration.hundredths)
                      .text();
  lap.T_LapMaxSpeed = decimalText(line.value({12, 13}));
  lap.T_LapAvgSpeed = decimalText(line.value({14, 15}));
  const bool manual = line.text(16).startsWith(u'0');
  lap.T_LapType = (manual ? u"Lap "_s : u"AutoLap "_s) + QString::number(number);
  lap.T_LapNo = number;
  lap.T_LapAvgHR = lapAverageHR(line);
  lap.T_LapMaxHR = decimalText(line.value({22}));
  lap.T_LapMinHR = decimalText(line.value({23}));
  lap.T_LapTimeZone = lapTimeZone(line, duration);
  lap.T_LapAlti = altitudeRecorded_ ? decimalText(line.value({31, 30, 29, 28})) : zero;
  lap.T_LapAsc = zero;
  lap.T_LapDsc = zero;
  lap.T_Cnumber = result_.cnumber;
  const QString key =
      TextBuilder().append(runKey).append(u'-').number(line.value({32, 33}), 5).text();
  result_.batch.lapMD.insert(key, lap);
  before_.hasLap = true;
  qCDebug(lcRuns, "lap ok");
}

RunDecoder::Duration RunDecoder::lapDuration(const Block& line) {
  const auto number = [&line](int piece) { return static_cast<qint64>(line.value({piece})); };
  const qint64 before = before_.time;
  before_.time = elapsedSeconds(line) + number(3) / 100;
  if (before == 0) {
    return {number(0), number(1), number(2), number(3)};
  }
  // Whole seconds only: the hundredths of a later lap are always 0.
  const qint64 duration = before_.time - before;
  return {duration / 3600, duration % 3600 / 60, duration % 60, 0};
}

QString RunDecoder::lapAverageHR(const Block& line) {
  const quint64 sum = line.digits(2 * 16 + 1, 7);  // the digit before tells the kind of lap
  const quint64 samples = line.value({20, 21});
  if (samples <= before_.hrSamples) {
    return zero;
  }
  const quint64 average = (sum - before_.hrSum) / (samples - before_.hrSamples);
  before_.hrSum = sum;
  before_.hrSamples = samples;
  return decimalText(average);
}

QString RunDecoder::lapTimeZone(const Block& line, const Duration& duration) {
  // Only the first lap shows the watch's own value; later laps repeat their duration here.
  if (!before_.hasLap) {
    return clockText(line, 24);
  }
  return TextBuilder().clock(duration.hours, duration.minutes, duration.seconds).text();
}
