#include "device/usbOperating.h"

#include "base/messenger.h"

#include <QLoggingCategory>

#include <thread>

Q_LOGGING_CATEGORY(lcDevice, "trakko.device", QtInfoMsg)

std::shared_ptr<usbOperating> usbOperating::create(const DeviceEnvironment& environment,
                                                   const std::shared_ptr<WatchSession>& session) {
  return std::make_shared<usbOperating>(CreateKey{}, environment, session);
}

usbOperating::usbOperating(CreateKey, const DeviceEnvironment& environment,
                           const std::shared_ptr<WatchSession>& session)
    : environment_(environment), session_(session) {}

// Here no receive thread lives any more: each keeps its object alive and closes the port at its
// end. What is still open was opened without one, and goes with port_.
usbOperating::~usbOperating() = default;

usbOperating::Operation::Operation(usbOperating& usb) : usb_(usb) {
  PortTable::instance().beginCommand(usb_.operations_);
}

usbOperating::Operation::~Operation() {
  --usb_.operations_;
}

bool usbOperating::isConversing() const {
  return operations_ > 0;
}

bool usbOperating::lineLost() const {
  return lineLost_;
}

void usbOperating::giveWay() {
  closeMyDevice();
  while (readThreadRunning) {
    std::this_thread::yield();
  }
}

void usbOperating::setCUSB() {
  checkUSB = false;
}

void usbOperating::alertUSB(const QString& message) {
  alert = WatchAlert{QStringLiteral("Morvel GPS"), QStringLiteral("OK"), message};
  qCInfo(lcDevice, "%s", qUtf8Printable(message));
  if (environment_.messenger) {
    environment_.messenger->message(message);
  }
}

void usbOperating::alertEnded(const WatchAlert& /*ended*/, qint32 code, const void* /*context*/) {
  if (code == 1) {
    convertChstr();
  }
}
