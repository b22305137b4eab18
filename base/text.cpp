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

constexpr auto isPartOfDecimal = [](QChar c) {
  return text::isDigit(c) || c == u'.' || c == u'-' || c == u'+' || c == u'e' || c == u'E';
};

/// The characters at the start of a text, behind blanks and a sign, that a number may be made of; a
/// "-" stays. None when a second sign follows, and no names of values such as "inf", which the
/// library would read.
struct NumberIn : QVarLengthArray<char, 64> {
  template <typename IsPart>
  NumberIn(QStringView value, IsPart isPart) {
    const auto* first = value.begin();
    while (first != value.end() && first->isSpace()) {
      ++first;
    }
    const bool hasSign = first != value.end() && (*first == u'-' || *first == u'+');
    const auto* const digits = hasSign ? first + 1 : first;
    if (digits == value.end() || !(text::isDigit(*digits) || *digits == u'.')) {
      return;
    }
    const auto* const last = std::find_if_not(digits, value.end(), isPart);
    first = hasSign && *first == u'-' ? first : digits;
    resize(last - first);
    std::transform(first, last, begin(), [](QChar c) { return static_cast<char>(c.unicode()); });
  }
};

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
  using Limits = std::numeric_limits<qint64>;
  const NumberIn number(value, [](QChar c) { return isDigit(c); });
  if (number.isEmpty()) {
    return 0;
  }
  qint64 result = 0;
  const auto read = std::from_chars(number.cbegin(), number.cend(), result);
  if (read.ec == std::errc::result_out_of_range) {
    return number.front() == '-' ? Limits::min() : Limits::max();
  }
  return result;
}

qint32 limited(qint64 value) {
  using Limits = std::numeric_limits<qint32>;
  return static_cast<qint32>(std::clamp<qint64>(value, Limits::min(), Limits::max()));
}

qint32 toInt32(QStringView value) {
  return limited(toInteger(value));
}

double toDouble(QStringView value) {
  NumberIn number(value, isPartOfDecimal);
  double result = 0.0;
  const auto read = std::from_chars(number.cbegin(), number.cend(), result);
  if (read.ec == std::errc::result_out_of_range) {
    // Tells too large (infinite) from too small (0), which std::from_chars does not.
    static const locale_t c = newlocale(LC_ALL_MASK, "C", nullptr);
    number.append('\0');
    result = strtod_l(number.constData(), nullptr, c);
  }
  return result;
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
