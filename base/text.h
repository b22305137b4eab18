#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

/// Conversions between texts and numbers, the same everywhere and independent of the locale.
///
/// A null QString is an absent value, an empty one is a text without characters; the two are never
/// mixed up. All functions are pure and may be called from any thread.
namespace text {

/// Whether the character is one of "0" to "9"; no other script's digits count.
constexpr bool isDigit(QChar character) {
  return character >= u'0' && character <= u'9';
}

/// What an absent value looks like wherever it is printed: "(null)".
extern const QString absent;

/// The text as it is printed into statements and documents: itself, or `absent` when it is null.
const QString& shown(const QString& value);

/// Appends shown(value) to `out` as UTF-8; a zero character adds nothing.
void appendShown(QByteArray& out, const QString& value);

/// Appends the decimal form of `value` to `out`.
void appendNumber(QByteArray& out, qint64 value);

/// Reads a decimal integer as far as the text is one ("4C" is 4, "" is 0), after leading blanks and
/// an optional sign. Values out of range give the nearest limit.
qint64 toInteger(QStringView value);

/// The nearest 32-bit number.
qint32 limited(qint64 value);

/// toInteger() limited to 32 bits.
qint32 toInt32(QStringView value);

/// Reads a decimal number as far as the text is one ("4C.1" is 4.0, "" is 0.0), after leading
/// blanks and an optional sign; an exponent counts when it is complete ("1E05" is 100000.0).
double toDouble(QStringView value);

/// The number with exactly `decimals` digits behind the point, as printf's "%.<decimals>f" gives it
/// in the C locale.
QString fixed(double value, int decimals);

/// Appends fixed(value, decimals) to `out`.
void appendFixed(QByteArray& out, double value, int decimals);

/// The number with at least `width` characters, zeros in front, as printf's "%0<width>lld".
QString padded(qint64 value, int width);

}  // namespace text
