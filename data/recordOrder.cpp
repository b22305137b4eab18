#include "data/recordOrder.h"

#include "base/text.h"

#include <algorithm>

qsizetype placeOf(QStringView key, QStringView prefix) {
  if (!key.startsWith(prefix)) {
    return -1;
  }
  // "02", "+2" or "2x" reads as 2 as well, but is another key.
  const QStringView digits = key.sliced(prefix.size());
  if (digits.isEmpty() || digits.front() == u'0' ||
      !std::all_of(digits.begin(), digits.end(), text::isDigit)) {
    return -1;
  }
  return text::toInteger(digits) - 1;
}
