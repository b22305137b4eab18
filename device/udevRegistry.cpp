#include "device/udevRegistry.h"

#include "data/bundle.h"

#include <QCryptographicHash>

#include <libudev.h>
#include <memory>

namespace {

struct Release {
  void operator()(udev* context) const { udev_unref(context); }
  void operator()(udev_enumerate* list) const { udev_enumerate_unref(list); }
  void operator()(udev_device* device) const { udev_device_unref(device); }
};
using Context = std::unique_ptr<udev, Release>;
using Enumeration = std::unique_ptr<udev_enumerate, Release>;
using Device = std::unique_ptr<udev_device, Release>;

QString textOf(const char* value) {
  return value == nullptr ? QString() : QString::fromUtf8(value);
}

QString attribute(udev_device* device, const char* name) {
  return textOf(udev_device_get_sysattr_value(device, name));
}

/// A path whose characters 75 to 100 are made from `identity`, whatever its length.
QString registryPath(const QString& identity, const QString& name) {
  const QByteArray digest =
      QCryptographicHash::hash(identity.toUtf8(), QCryptographicHash::Sha256).toHex();
  return QStringLiteral("IOService:/udev").leftJustified(75, u'/') +
         QString::fromLatin1(digest.first(26)) + u'/' + name;
}

/// Calls `take` with every device that the enumeration finds.
template <typename Take>
void forEachDevice(udev* context, udev_enumerate* list, Take take) {
  udev_enumerate_scan_devices(list);
  for (udev_list_entry* entry = udev_enumerate_get_list_entry(list); entry != nullptr;
       entry = udev_list_entry_get_next(entry)) {
    const Device device(udev_device_new_from_syspath(context, udev_list_entry_get_name(entry)));
    if (device) {
      take(device.get());
    }
  }
}

UsbDevice usbDevice(udev_device* device) {
  const QString product = attribute(device, "product");
  const QString name = product.isNull() ? textOf(udev_device_get_sysname(device)) : product;
  return {name, registryPath(textOf(udev_device_get_syspath(device)), name),
          attribute(device, "serial")};
}

bool isWatchBridge(udev_device* usb) {
  const uint product = attribute(usb, "idProduct").toUInt(nullptr, 16);
  return attribute(usb, "idVendor").toUInt(nullptr, 16) == watchUsb::vendor &&
         (product == watchUsb::product || product == watchUsb::otherProduct);
}

SerialClient serialClient(udev_device* port) {
  const QString name = textOf(udev_device_get_sysname(port));
  const QString node = textOf(udev_device_get_devnode(port));
  udev_device* usb = udev_device_get_parent_with_subsystem_devtype(port, "usb", "usb_device");
  const QString identity = textOf(udev_device_get_syspath(usb == nullptr ? port : usb));
  const bool watch = usb != nullptr && isWatchBridge(usb);
  return {name, registryPath(identity, name), watch ? watchCalloutDevice : node, node};
}

QString hexId(quint16 id) {
  return QStringLiteral("%1").arg(id, 4, 16, QLatin1Char('0'));
}

}  // namespace

UdevRegistry::UdevRegistry(const QString& extraNode) : extraNode_(extraNode) {}

std::optional<QList<UsbDevice>> UdevRegistry::devices(quint16 vendor, quint16 product) const {
  const Context context(udev_new());
  const Enumeration list(context ? udev_enumerate_new(context.get()) : nullptr);
  if (!list) {
    return std::nullopt;
  }
  udev_enumerate_add_match_subsystem(list.get(), "usb");
  udev_enumerate_add_match_sysattr(list.get(), "idVendor", hexId(vendor).toLatin1().constData());
  udev_enumerate_add_match_sysattr(list.get(), "idProduct", hexId(product).toLatin1().constData());
  QList<UsbDevice> found;
  forEachDevice(context.get(), list.get(),
                [&found](udev_device* device) { found.append(usbDevice(device)); });
  if (!extraNode_.isEmpty() && vendor == watchUsb::vendor && product == watchUsb::product) {
    // Last: of several watches a search takes the last one.
    found.append({extraNode_, registryPath(extraNode_, extraNode_), QString()});
  }
  return found;
}

QList<SerialClient> UdevRegistry::serialClients() const {
  QList<SerialClient> found;
  if (!extraNode_.isEmpty()) {
    found.append(
        {extraNode_, registryPath(extraNode_, extraNode_), watchCalloutDevice, extraNode_});
  }
  const Context context(udev_new());
  const Enumeration list(context ? udev_enumerate_new(context.get()) : nullptr);
  if (!list) {
    return found;
  }
  udev_enumerate_add_match_subsystem(list.get(), "tty");
  forEachDevice(context.get(), list.get(), [&found](udev_device* port) {
    // Consoles and pseudo-terminals have no device behind them.
    if (udev_device_get_parent(port) != nullptr && udev_device_get_devnode(port) != nullptr) {
      found.append(serialClient(port));
    }
  });
  return found;
}

DeviceEnvironment environmentHere(std::shared_ptr<Messenger> messenger, const QString& extraNode) {
  DeviceEnvironment environment;
  environment.registry = std::make_shared<UdevRegistry>(extraNode);
  environment.messenger = std::move(messenger);
  environment.lastDownloadPath = folderBeside(mainBundle()) + QStringLiteral("lastDownload.txt");
  return environment;
}
