#include "base/trackTime.h"

#include "base/text.h"

#include <algorithm>

namespace {

constexpr qsizetype partLength = 2;
constexpr qsizetype minutesAt = 3;
constexpr qsizetype secondsAt = 6;

QStringView part(QStringView time, qsizetype from, qsizetype length) {
  const qsizetype start = std::min(from, time.size());
  return time.sliced(start, std::min(length, time.size() - start));
}

}  // namespace

double trackTimeValue(QStringView time) {
  const double hours = text::toDouble(part(time, 0, partLength));
  const double minutes = text::toDouble(part(time, minutesAt, partLength));
  const double seconds = text::toDouble(part(time, secondsAt, time.size()));
  return hours * 3600.0 + minutes * 60.0 + seconds;
}
