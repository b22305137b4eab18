// Assistance data for the watch's GPS receiver. No command of the window leads here.

#include "device/agpsFetch.h"
#include "device/agpsPackets.h"
#include "device/receiveMode.h"
#include "device/usbOperating.h"
#include "device/watchCommands.h"

#include <chrono>

namespace {

constexpr std::chrono::seconds fetchLimit{60};

}  // namespace

void usbOperating::downLoad() {
  const QUrl url = agps::assistanceUrl();
  if (!url.isValid()) {
    return;
  }
  const QByteArray file = agps::fetch(url, fetchLimit);
  if (!file.isEmpty()) {
    agpsData = file;
    convertAGPSStr();
    startAgpsCommand();
  }
}

void usbOperating::sendAgpsData() {
  if (linkCommand()) {
    startAgpsCommand();
  }
}

void usbOperating::convertAGPSStr() {
  alpBuffStr = agps::packets(agpsData);
}

QString usbOperating::getCheckSum(const QString& hex) {
  return agps::checksum(hex);
}

void usbOperating::startAgpsCommand() {
  const Operation operation(*this);
  if (!portIsOpen()) {
    alertUSB(QStringLiteral("時計を認識出来ません、再度USB接続を確認して下さい。"));
    return;
  }
  checkGetDataType = receiveMode::agps;
  writeString(watchCommand::agpsStart);
  // Blocks that arrive in this mode end no wait, so it always runs out. What the watch answers is
  // not known, and neither is how to send the packets after it.
  checkTransmission();
  if (!getDataOK) {
    alertUSB(QStringLiteral("データが見当たりません、USBの接続を確認して下さい。"));
  }
}
