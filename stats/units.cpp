#include "stats/units.h"

#include "base/text.h"

#include <algorithm>

namespace units {

namespace {

/// Whole seconds; what is no positive number is none.
qint64 whole(double seconds) {
  // Keeps the pace of a speed of almost nothing inside the integer's range.
  constexpr double longest = 1e15;
  return seconds > 0 ? static_cast<qint64>(std::min(seconds, longest)) : 0;
}

}  // namespace

double kilometres(QStringView centimetres) {
  return text::toDouble(centimetres) / 100000.0;
}

double kmh(QStringView tenths) {
  return text::toDouble(tenths) / 10.0;
}

double pointKmh(QStringView fiftieths) {
  return text::toDouble(fiftieths) / 50.0;
}

qint32 pointHeartRate(QStringView fifths) {
  return text::toInt32(fifths) / 5;
}

double kilocalories(QStringView stored) {
  return text::toDouble(stored) / 10000.0;
}

QString paceText(double speed) {
  constexpr double secondsPerHour = 3600.0;
  return paceOfSeconds(speed > 0 ? secondsPerHour / speed : 0);
}

QString paceOfSeconds(double seconds) {
  const qint64 pace = whole(seconds);
  return text::padded(pace / 60, 2) + u'\'' + text::padded(pace % 60, 2);
}

QString durationText(double seconds) {
  const qint64 duration = whole(seconds);
  return QString::number(duration / 3600) + u':' + text::padded(duration / 60 % 60, 2) + u':' +
         text::padded(duration % 60, 2);
}

}  // namespace units
