#include "stats/units.h"

#include "base/text.h"

#include <algorithm>

namespace units {

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
  // Keeps a speed of almost nothing inside the integer's range.
  constexpr double longestPace = 1e15;
  if (!(speed > 0)) {
    return QStringLiteral("00'00");
  }
  const auto pace = static_cast<qint64>(std::min(secondsPerHour / speed, longestPace));
  return text::padded(pace / 60, 2) + u'\'' + text::padded(pace % 60, 2);
}

}  // namespace units
