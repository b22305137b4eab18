#include "device/usbRegistry.h"

const QString watchCalloutDevice = QStringLiteral("/dev/cu.SLAB_USBtoUART");

QString UsbRegistry::deviceNode(const QString& calloutDevice) const {
  const QList<SerialClient> clients = serialClients();
  for (const SerialClient& client : clients) {
    if (client.calloutDevice == calloutDevice && !client.node.isEmpty()) {
      return client.node;
    }
  }
  return calloutDevice;
}

bool samePhysicalDevice(QStringView usbPath, QStringView serialPath) {
  constexpr qsizetype first = 75;
  constexpr qsizetype count = 26;
  return usbPath.size() >= first + count && serialPath.size() >= first + count &&
         usbPath.sliced(first, count) == serialPath.sliced(first, count);
}
