#include "device/agpsPackets.h"

#include <charconv>

namespace {

constexpr qsizetype packetSize = 256;
constexpr qsizetype lastPaddedNumber = 255;

// The low byte of a number or sum.
constexpr unsigned lowByte = 0xFF;

QString packetNumber(qsizetype number) {
  const QString digits = QString::number(static_cast<unsigned>(number) & lowByte, 16);
  return number <= lastPaddedNumber ? QStringLiteral("000") + digits : digits;
}

}  // namespace

namespace agps {

QString checksum(const QString& hex) {
  const QByteArray digits = QString(hex).remove(u' ').toLatin1();
  unsigned sum = 0;
  for (qsizetype at = 0; at + 1 < digits.size(); at += 2) {
    unsigned byte = 0;
    const char* pair = digits.constData() + at;
    std::from_chars(pair, pair + 2, byte, 16);
    sum = (sum + byte) & lowByte;
  }
  return QStringLiteral("%1").arg(lowByte - sum, 2, 16, QLatin1Char('0'));
}

QStringList packets(const QByteArray& file) {
  QStringList result;
  for (qsizetype number = 0; number * packetSize < file.size(); ++number) {
    const QByteArray bytes =
        file.mid(number * packetSize, packetSize).leftJustified(packetSize, '\0');
    const QString data = QString::fromLatin1(bytes.toHex());
    result.append(QStringLiteral("475053") + packetNumber(number) + data + checksum(data));
  }
  return result;
}

}  // namespace agps
