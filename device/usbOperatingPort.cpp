// Finding the watch, opening and closing its port.

#include "base/detachThread.h"
#include "device/detectionState.h"
#include "device/serialPort.h"
#include "device/usbOperating.h"

#include <QLoggingCategory>

#include <cerrno>
#include <cstdio>
#include <system_error>

Q_LOGGING_CATEGORY(lcDetection, "trakko.device.detection", QtInfoMsg)

namespace {

constexpr quint16 watchVendor = 4292;
constexpr qint32 watchProduct = 60000;
constexpr qint32 otherWatchProduct = 60001;
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
  if (product == watchProduct) {
    linkObstacle = LinkObstacle::noDevice;
  }
  const auto productId = static_cast<quint16>(product);
  const std::optional<QList<UsbDevice>> devices =
      environment_.registry->devices(watchVendor, productId);
  if (!devices) {
    linkObstacle = LinkObstacle::otherError;
    std::fputs("IOServiceMatching returned NULL.\n", stderr);
    return;
  }
  setDetectionState(
      {.gNotifyPort = {QStringLiteral("IOUSBDevice"), watchVendor, productId, deviceAdded, nullptr},
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
      findDevice(otherWatchProduct);
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
  auto port = std::make_shared<SerialPort>();
  QString error = QStringLiteral("Error: couldn't obtain lock on serial port");
  if (PortTable::instance().claim(node, shared_from_this(), session_.lock())) {
    error = port->open(node, baud);
  } else {
    port->openError = EBUSY;
  }
  if (!error.isNull()) {
    linkObstacle = obstacleOf(port->openError);
    qCWarning(lcDetection, "%s (%s)", qUtf8Printable(error), qUtf8Printable(node));
    return error;
  }
  qCInfo(lcDetection, "opened %s", qUtf8Printable(node));
  linkObstacle = LinkObstacle::none;
  lineLost_ = false;
  gOriginalTTYAttrs = port->originalAttributes;
  serialFileDescriptor = port->descriptor.load();
  const std::lock_guard lock(portMutex_);
  port_ = std::move(port);
  return {};
}

void usbOperating::startReceiveThread() {
  // Set here already: a thread that has not begun must be waited for like one that runs.
  readThreadRunning = true;
  try {
    detachThread("watch-receive",
                 [self = shared_from_this(), starter = std::this_thread::get_id()] {
                   self->incomingTextUpdateThread(starter);
                 });
  } catch (const std::system_error& refused) {
    qCCritical(lcDetection, "no receive thread: %s", refused.what());
    linkObstacle = LinkObstacle::otherError;
    readThreadRunning = false;
    closeMyDevice();
  }
}

void usbOperating::ensurePort() {
  if (!portIsOpen()) {
    findDevice(watchProduct);
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
