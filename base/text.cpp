#include "base/text.h"

#include <QByteArrayView>
#include <QVarLengthArray>

#include <algorithm>
#include <array>
#include <charconv>
#include <clocale>
#include <cstdlib>
#include <limits>

namespace {

bool isDigit(QChar c) {
  return c >= u'0' && c <= u'9';
}

bool isSign(QChar c) {
  return c == u'-' || c == u'+';
}

qsizetype skipBlanks(QStringView value) {
  qsizetype at = 0;
  while (at < value.size() && value[at].isSpace()) {
    ++at;
  }
  return at;
}

qsizetype skipDigits(QStringView value, qsizetype at) {
  while (at < value.size() && isDigit(value[at])) {
    ++at;
  }
  return at;
}

/// The end of the unsigned decimal number that `value` starts with, 0 when it starts with none.
qsizetype decimalEnd(QStringView value) {
  const qsizetype whole = skipDigits(value, 0);
  qsizetype end = whole;
  if (end < value.size() && value[end] == u'.') {
    end = skipDigits(value, end + 1);
    if (end == 1) {
      return 0;  // a point alone
    }
  }
  if (end == 0 || end >= value.size() || value[end].toLower() != u'e') {
    return end;
  }
  const qsizetype sign = end + 1;
  const qsizetype digits = sign < value.size() && isSign(value[sign]) ? sign + 1 : sign;
  const qsizetype exponentEnd = skipDigits(value, digits);
  return exponentEnd > digits ? exponentEnd : end;
}

}  // namespace

namespace text {

const QString absent = QStringLiteral("(null)");

const QString& shown(const QString& value) {
  return value.isNull() ? absent : value;
}

void appendShown(QByteArray& out, const QString& value) {
  const QString& printed = shown(value);
  const qsizetype start = out.size();
  out.resize(start + printed.size());
  char* end = out.data() + start;
  // Nearly every value is ASCII: copied straight into the statement, twice as fast as a detour
  // through a byte array of its own.
  for (const QChar c : printed) {
    if (c.unicode() >= 0x80) {
      out.resize(start);
      out.append(printed.toUtf8().replace('\0', QByteArrayView()));
      return;
    }
    if (c.unicode() != 0) {
      *end++ = static_cast<char>(c.unicode());
    }
  }
  out.resize(end - out.constData());
}

void appendNumber(QByteArray& out, qint64 value) {
  std::array<char, 24> digits{};
  const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  out.append(digits.data(), result.ptr - digits.data());
}

qint64 toInteger(QStringView value) {
  value = value.mid(skipBlanks(value));
  const bool negative = value.startsWith(u'-');
  if (!value.isEmpty() && isSign(value.front())) {
    value = value.mid(1);
  }
  // Counted below zero, where there is one value more than above.
  qint64 result = 0;
  for (const QChar c : value.left(skipDigits(value, 0))) {
    if (__builtin_mul_overflow(result, qint64{10}, &result) ||
        __builtin_sub_overflow(result, qint64{c.unicode() - u'0'}, &result)) {
      result = std::numeric_limits<qint64>::min();
      break;
    }
  }
  if (negative) {
    return result;
  }
  return result == std::numeric_limits<qint64>::min() ? std::numeric_limits<qint64>::max()
                                                      : -result;
}

qint32 toInt32(QStringView value) {
  using Limits = std::numeric_limits<qint32>;
  return static_cast<qint32>(std::clamp<qint64>(toInteger(value), Limits::min(), Limits::max()));
}

double toDouble(QStringView value) {
  value = value.mid(skipBlanks(value));
  const bool negative = value.startsWith(u'-');
  if (!value.isEmpty() && isSign(value.front())) {
    value = value.mid(1);
  }
  QVarLengthArray<char, 64> number;
  for (const QChar c : value.left(decimalEnd(value))) {
    number.append(static_cast<char>(c.unicode()));
  }
  double result = 0.0;
  const auto read = std::from_chars(number.cbegin(), number.cend(), result);
  if (read.ec == std::errc::result_out_of_range) {
    // Tells too large (infinite) from too small (0), which std::from_chars does not.
    static const locale_t c = newlocale(LC_ALL_MASK, "C", nullptr);
    number.append('\0');
    result = strtod_l(number.constData(), nullptr, c);
  }
  return negative && !number.isEmpty() ? -result : result;
}

QString fixed(double value, int decimals) {
  QByteArray printed;
  appendFixed(printed, value, decimals);
  return QString::fromLatin1(printed);
}

void appendFixed(QByteArray& out, double value, int decimals) {
  const int digits = std::max(decimals, 0);
  // The largest double has 309 digits before the point; sign and point come on top.
  QVarLengthArray<char, 352> printed(std::numeric_limits<double>::max_exponent10 + 4 + digits);
  const auto result =
      std::to_chars(printed.begin(), printed.end(), value, std::chars_format::fixed, digits);
  out.append(printed.constData(), result.ptr - printed.constData());
}

QString padded(qint64 value, int width) {
  QByteArray digits = QByteArray::number(value);
  if (digits.size() < width) {
    digits.insert(value < 0 ? 1 : 0, width - digits.size(), '0');
  }
  return QString::fromLatin1(digits);
}

}  // namespace text
