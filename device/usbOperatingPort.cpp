// Finding the watch, opening and closing its port.

#include "base/detachThread.h"
#include "device/detectionState.h"
#include "device/serialPort.h"
#include "device/usbOperating.h"

#include <QLoggingCategory>
#include <QScopeGuard>

#include <cerrno>
#include <cstdio>

Q_LOGGING_CATEGORY(lcDetection, "trakko.device.detection", QtInfoMsg)

namespace {

constexpr qint32 watchBaud = 115200;

LinkObstacle obstacleOf(int error) {
  switch (error) {
    case EACCES:
    case EPERM:
      return LinkObstacle::noPermission;
    case EBUSY:
    case EWOULDBLOCK:
      return LinkObstacle::portInUse;
    case ENOENT:
    case ENXIO:
    case ENODEV:
      return LinkObstacle::noSerialPort;
    default:
      return LinkObstacle::otherError;
  }
}

/// What one search found: how many pairs of device and port, and the port looked at last.
struct Pairing {
  int matches = 0;
  SerialClient lastExamined;
};

/// The walk along the ports stops early only at the watch's call-out name. So with a matching port
/// of another name, the port looked at last need not be the matching one.
Pairing pairUp(const QList<UsbDevice>& devices, const UsbRegistry& registry) {
  Pairing found;
  for (const UsbDevice& device : devices) {
    const QList<SerialClient> clients = registry.serialClients();
    for (const SerialClient& client : clients) {
      found.lastExamined = client;
      if (!samePhysicalDevice(device.path, client.path)) {
        continue;
      }
      ++found.matches;
      if (client.calloutDevice == watchCalloutDevice) {
        break;
      }
    }
  }
  return found;
}

}  // namespace

void deviceAdded(usbOperating* reference, const QList<UsbDevice>& iterator) {
  if (reference != nullptr) {
    reference->DeviceAdded(iterator);
  }
}

void usbOperating::findDevice(qint32 product) {
  if (product == watchUsb::product) {
    linkObstacle = LinkObstacle::noDevice;
  }
  const auto productId = static_cast<quint16>(product);
  const std::optional<QList<UsbDevice>> devices =
      environment_.registry->devices(watchUsb::vendor, productId);
  if (!devices) {
    linkObstacle = LinkObstacle::otherError;
    std::fputs("IOServiceMatching returned NULL.\n", stderr);
    return;
  }
  setDetectionState({.gNotifyPort = {QStringLiteral("IOUSBDevice"), watchUsb::vendor, productId,
                                     deviceAdded, nullptr},
                     .gRunLoop = std::this_thread::get_id(),
                     .gAddedIter = *devices});
  DeviceAdded(*devices);
}

void usbOperating::DeviceAdded(const QList<UsbDevice>& iterator) {
  const Pairing found = pairUp(iterator, *environment_.registry);
  if (found.matches == 0) {
    if (!iterator.isEmpty()) {
      linkObstacle = LinkObstacle::noSerialPort;
    }
    if (!checkUSB.exchange(true)) {
      findDevice(watchUsb::otherProduct);
    }
    return;
  }
  const SerialClient& client = found.lastExamined;
  // By its node: two adapters may go by the same call-out name.
  const QString error =
      openNode(client.node.isEmpty() ? client.calloutDevice : client.node, watchBaud);
  if (error.isNull()) {
    startReceiveThread();
  }
}

QString usbOperating::openSerialPort(const QString& path, qint32 baud) {
  return openNode(environment_.registry->deviceNode(path), baud);
}

QString usbOperating::openNode(const QString& node, qint32 baud) {
  const Operation operation(*this);
  giveWay();  // an earlier opening of this very object
  // From here on the line is a new one. Were it still told lost once the port is claimed, another
  // opening could take the port away and wait, with the table locked, for a thread that needs it.
  lineLost_ = false;
  auto port = std::make_shared<SerialPort>();
  const bool claimed = PortTable::instance().claim(node, shared_from_this(), session_.lock());
  QString error = claimed ? port->open(node, baud)
                          : QStringLiteral("Error: couldn't obtain lock on serial port");
  if (!error.isNull()) {
    linkObstacle = claimed ? obstacleOf(port->openError) : LinkObstacle::conversing;
    qCWarning(lcDetection, "%s (%s)", qUtf8Printable(error), qUtf8Printable(node));
    return error;
  }
  qCInfo(lcDetection, "opened %s", qUtf8Printable(node));
  linkObstacle = LinkObstacle::none;
  gOriginalTTYAttrs = port->originalAttributes;
  serialFileDescriptor = port->descriptor.load();
  const std::lock_guard lock(portMutex_);
  port_ = std::move(port);
  return {};
}

void usbOperating::startReceiveThread() {
  // Set here already: a thread that has not begun must be waited for like one that runs.
  readThreadRunning = true;
  bool started = false;
  const auto unlessStarted = qScopeGuard([this, &started] {
    if (!started) {
      linkObstacle = LinkObstacle::otherError;
      readThreadRunning = false;
      closeMyDevice();
    }
  });
  started = detachThread("watch-receive", [self = shared_from_this()] {
    self->incomingTextUpdateThread(std::this_thread::get_id());
  });
}

void usbOperating::ensurePort() {
  if (!portIsOpen()) {
    findDevice(watchUsb::product);
  }
}

bool usbOperating::portIsOpen() const {
  return serialFileDescriptor != -1;
}

std::shared_ptr<SerialPort> usbOperating::currentPort() const {
  const std::lock_guard lock(portMutex_);
  return port_;
}

void usbOperating::closePort() {
  if (const std::shared_ptr<SerialPort> port = currentPort()) {
    port->close();
  }
}

void usbOperating::closeMyDevice() {
  closePort();
  serialFileDescriptor = -1;
}

QString usbOperating::find_serial(qint32 vendor, qint32 pID) const {
  const std::optional<QList<UsbDevice>> devices =
      environment_.registry->devices(static_cast<quint16>(vendor), static_cast<quint16>(pID));
  return devices && !devices->isEmpty() ? devices->first().serialNumber : QString();
}
