// The watch's identity block.

#include "base/text.h"
#include "device/downloadDecoder.h"
#include "device/usbOperating.h"

#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcIdentity, "trakko.device.identity", QtInfoMsg)

namespace {

constexpr std::size_t blockSizeAt = 26;
constexpr std::size_t flagsAt = 28;
constexpr std::size_t modelSuffixAt = 29;
constexpr std::size_t identityBytes = 30;

/// Bytes as characters; a zero byte adds nothing.
QString characters(std::span<const quint8> bytes) {
  QString result = QStringLiteral("");
  for (const quint8 byte : bytes) {
    if (byte != 0) {
      result += QLatin1Char(static_cast<char>(byte));
    }
  }
  return result;
}

QString identityNumber(std::span<const quint8> block) {
  QString result = characters(block.first(1));
  for (const quint8 byte : block.subspan(1, 3)) {
    result += u' ' + text::padded(byte, 2);
  }
  for (const quint8 byte : block.subspan(4, 3)) {
    result += u' ' + QStringLiteral("%1").arg(byte, 2, 16, QLatin1Char('0'));
  }
  return result;
}

QString modelName(std::span<const quint8> block) {
  const quint8 suffix = block[modelSuffixAt];
  const QString last = characters(block.subspan(modelSuffixAt, 1));
  if (suffix < '0' || suffix > 'Z') {
    return characters(block.subspan(7, 5)) + last;
  }
  const QString model = characters(block.subspan(7, 6)) + last;
  return isPureInt(last) ? model + u'D' : model;
}

}  // namespace

void usbOperating::getWatchInfo(std::span<const quint8> block, qint32 /*commandType*/) {
  if (block.size() < identityBytes) {
    return;
  }
  idNoStr = identityNumber(block);
  modelStr = modelName(block);
  verStr = characters(block.subspan(13, 6));
  for (const QString& part : {idNoStr, modelStr, verStr}) {
    qCInfo(lcIdentity, "%s", qUtf8Printable(part));
  }
  constexpr qint32 usualBlockSize = 32;
  BUFFER_SIZE = block[blockSizeAt] == 0 ? usualBlockSize : block[blockSizeAt];
  const QString flags = turn10to2(QString::number(block[flagsAt])).rightJustified(8, u'0');
  if (flags.startsWith(u'1')) {
    checkAlti = 1;
  }
  CheckLinkCommand = true;
}

QString usbOperating::turn10to2(const QString& decimal) {
  const qint64 value = text::toInteger(decimal);
  return value < 0 ? QStringLiteral("") : QString::number(value, 2);
}
