#include "export/offsetText.h"

#include "base/text.h"

#include <QDateTime>

QString offsetText(int seconds) {
  // Integer division truncates towards zero, so UTC-3:30 counts as -3 hours. The two characters
  // are reached by a zero in front of one digit; "-5" has two already.
  constexpr int secondsPerHour = 3600;
  return QStringLiteral("+%1:00").arg(text::padded(seconds / secondsPerHour, 2));
}

QString offsetNow() {
  return offsetText(QDateTime::currentDateTime().offsetFromUtc());
}
