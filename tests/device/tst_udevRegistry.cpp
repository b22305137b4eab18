// Runs with umockdev preloaded: the computer's devices are the ones described here.

#undef signals
#include "device/udevRegistry.h"
#include "device/usbOperating.h"
#include "tests/columns.h"

#include <QTest>

#include <memory>
#include <umockdev.h>
#include <unistd.h>

namespace {

struct Unref {
  void operator()(UMockdevTestbed* testbed) const { g_object_unref(testbed); }
};

/// A USB device, as the kernel's tree shows it.
QString bridge(int index, const QString& vendor, const QString& product) {
  return QString(
             "P: /devices/pci0/usb1/1-%1\nE: SUBSYSTEM=usb\nE: DEVTYPE=usb_device\n"
             "A: idVendor=%2\nA: idProduct=%3\nA: product=Bridge\nA: serial=SN%1\n\n")
      .arg(QString::number(index), vendor, product);
}

/// The same with its driver's serial port ttyUSB<index>.
QString adapter(int index, const QString& vendor, const QString& product) {
  return bridge(index, vendor, product) +
         QString(
             "P: /devices/pci0/usb1/1-%1/1-%1:1.0\nE: SUBSYSTEM=usb\nE: DEVTYPE=usb_interface\n\n"
             "P: /devices/pci0/usb1/1-%1/1-%1:1.0/ttyUSB%1\nE: SUBSYSTEM=usb-serial\n\n"
             "P: /devices/pci0/usb1/1-%1/1-%1:1.0/ttyUSB%1/tty/ttyUSB%1\nN: ttyUSB%1\n"
             "E: DEVNAME=/dev/ttyUSB%1\nE: SUBSYSTEM=tty\n\n")
             .arg(index);
}

const QString boardPort =
    "P: /devices/pnp0/00:05\nE: SUBSYSTEM=pnp\n\n"
    "P: /devices/pnp0/00:05/tty/ttyS0\nN: ttyS0\nE: DEVNAME=/dev/ttyS0\nE: SUBSYSTEM=tty\n\n"
    "P: /devices/virtual/tty/tty1\nN: tty1\nE: DEVNAME=/dev/tty1\nE: SUBSYSTEM=tty\n\n";

}  // namespace

class tst_udevRegistry : public QObject {
  Q_OBJECT

  std::unique_ptr<UMockdevTestbed, Unref> testbed_;

  void plug(const QString& description) const {
    QVERIFY(umockdev_testbed_add_from_string(testbed_.get(), qPrintable(description), nullptr));
  }
  static std::shared_ptr<usbOperating> search() {
    auto usb = usbOperating::create({std::make_shared<UdevRegistry>(QString()), nullptr, 1.0, {}});
    usb->findDevice(60000);
    return usb;
  }

 private Q_SLOTS:
  void init() {
    testbed_.reset(umockdev_testbed_new());
    if (::access("/sys/kernel", F_OK) == 0) {
      QSKIP("the computer's own devices show: libumockdev-preload.so.0 is not preloaded");
    }
    plug(boardPort + adapter(0, "0403", "6001"));
  }
  void cleanup() { testbed_.reset(); }

  /// The testbed's device file is no terminal: getting as far as its opening is being found.
  void onlyTheWatchIsFound_data() {
    const auto row = columns<bool>("watch");
    row("10c4 ea60", true);
    row("10c4 ea61", true);
    row("0403 ea60", false);
    row("10c4 ea70", false);
  }
  void onlyTheWatchIsFound() {
    QFETCH(bool, watch);
    const QStringList ids = QString(QTest::currentDataTag()).split(' ');
    plug(adapter(1, ids[0], ids[1]));
    const auto usb = search();
    QCOMPARE(usb->linkObstacle.load() != LinkObstacle::noDevice, watch);
    const auto vendor = ids[0].toUShort(nullptr, 16);
    const auto product = ids[1].toUShort(nullptr, 16);
    QCOMPARE(usb->find_serial(vendor, product), "SN1");

    const UdevRegistry registry{QString()};
    const QList<UsbDevice> devices = registry.devices(vendor, product).value();
    QCOMPARE(devices.size(), 1);
    for (const SerialClient& client : registry.serialClients()) {
      const bool second = client.node == "/dev/ttyUSB1";
      QCOMPARE(client.calloutDevice, watch && second ? watchCalloutDevice : client.node);
      QCOMPARE(samePhysicalDevice(devices.first().path, client.path), second);
    }
    QCOMPARE(registry.serialClients().size(), 3);
    QCOMPARE(registry.deviceNode(watch ? watchCalloutDevice : "/dev/ttyUSB1"), "/dev/ttyUSB1");
  }

  void aWatchWithoutDriver() {
    plug(bridge(1, "10c4", "ea60"));
    QCOMPARE(search()->linkObstacle.load(), LinkObstacle::noSerialPort);
  }

  /// Of several watches a search takes the last one.
  void theExtraPortIsPreferred() {
    plug(adapter(1, "10c4", "ea60"));
    const UdevRegistry registry("/dev/odd");
    QCOMPARE(registry.devices(0x10c4, 0xea60).value().size(), 2);
    QCOMPARE(registry.devices(0x10c4, 0xea60).value().last().name, "/dev/odd");
    QVERIFY(registry.devices(0x10c4, 0xea61).value().isEmpty());
    QCOMPARE(registry.deviceNode(watchCalloutDevice), "/dev/odd");
  }
};

QTEST_GUILESS_MAIN(tst_udevRegistry)
#include "tst_udevRegistry.moc"
