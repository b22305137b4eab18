// Runs with umockdev preloaded: the computer's devices are the ones described here.

#undef signals
#include "device/udevRegistry.h"
#include "device/usbOperating.h"

#include <QTest>
#include <memory>
#include <umockdev.h>
#include <unistd.h>

namespace {

struct Unref {
  void operator()(UMockdevTestbed* testbed) const { g_object_unref(testbed); }
};

/// A USB adapter with one serial port at ttyUSB<index>, as the kernel's tree shows it.
QByteArray adapter(int index, const char* vendor, const char* product) {
  return QStringLiteral(
             "P: /devices/pci0/usb1/1-%1\nE: SUBSYSTEM=usb\nE: DEVTYPE=usb_device\n"
             "A: idVendor=%2\nA: idProduct=%3\nA: product=Bridge\nA: serial=SN%1\n\n"
             "P: /devices/pci0/usb1/1-%1/1-%1:1.0\nE: SUBSYSTEM=usb\nE: DEVTYPE=usb_interface\n\n"
             "P: /devices/pci0/usb1/1-%1/1-%1:1.0/ttyUSB%1\nE: SUBSYSTEM=usb-serial\n\n"
             "P: /devices/pci0/usb1/1-%1/1-%1:1.0/ttyUSB%1/tty/ttyUSB%1\nN: ttyUSB%1\n"
             "E: DEVNAME=/dev/ttyUSB%1\nE: SUBSYSTEM=tty\n\n")
      .arg(QString::number(index), QString::fromLatin1(vendor), QString::fromLatin1(product))
      .toUtf8();
}

const QByteArray boardPort =
    "P: /devices/pnp0/00:05\nE: SUBSYSTEM=pnp\n\n"
    "P: /devices/pnp0/00:05/tty/ttyS0\nN: ttyS0\nE: DEVNAME=/dev/ttyS0\nE: SUBSYSTEM=tty\n\n"
    "P: /devices/virtual/tty/tty1\nN: tty1\nE: DEVNAME=/dev/tty1\nE: SUBSYSTEM=tty\n\n";

std::shared_ptr<usbOperating> search(const std::shared_ptr<UsbRegistry>& registry) {
  DeviceEnvironment environment;
  environment.registry = registry;
  auto usb = usbOperating::create(environment);
  usb->findDevice(60000);
  return usb;
}

}  // namespace

class tst_udevRegistry : public QObject {
  Q_OBJECT

  std::unique_ptr<UMockdevTestbed, Unref> testbed_;

  void plug(const QByteArray& description) const {
    GError* error = nullptr;
    QVERIFY(umockdev_testbed_add_from_string(testbed_.get(), description.constData(), &error) != 0);
  }

 private Q_SLOTS:
  void init() {
    testbed_.reset(umockdev_testbed_new());
    if (::access("/sys/kernel", F_OK) == 0) {
      QSKIP("the computer's own devices show: libumockdev-preload.so.0 is not preloaded");
    }
    plug(boardPort);
  }
  void cleanup() { testbed_.reset(); }

  void onlyTheWatchIsFound_data() {
    QTest::addColumn<QByteArray>("vendor");
    QTest::addColumn<QByteArray>("product");
    QTest::addColumn<bool>("watch");
    QTest::newRow("ea60") << QByteArray("10c4") << QByteArray("ea60") << true;
    QTest::newRow("ea61") << QByteArray("10c4") << QByteArray("ea61") << true;
    QTest::newRow("other vendor") << QByteArray("0403") << QByteArray("ea60") << false;
    QTest::newRow("other product") << QByteArray("10c4") << QByteArray("ea70") << false;
  }
  void onlyTheWatchIsFound() {
    QFETCH(QByteArray, vendor);
    QFETCH(QByteArray, product);
    QFETCH(bool, watch);
    plug(adapter(0, "0403", "6001"));
    plug(adapter(1, vendor.constData(), product.constData()));
    const auto registry = std::make_shared<UdevRegistry>(QString());
    const auto usb = search(registry);
    // The testbed's device file is no terminal: getting as far as its opening is being found.
    QCOMPARE(usb->linkObstacle.load() != LinkObstacle::noDevice, watch);
    QCOMPARE(registry->deviceNode(watchCalloutDevice),
             watch ? QStringLiteral("/dev/ttyUSB1") : watchCalloutDevice);
    QCOMPARE(usb->find_serial(vendor.toInt(nullptr, 16), product.toInt(nullptr, 16)),
             QStringLiteral("SN1"));
  }

  void portsOfOthersKeepTheirNames() {
    plug(adapter(0, "0403", "6001"));
    plug(adapter(1, "10c4", "ea60"));
    const UdevRegistry registry{QString()};
    QStringList names;
    const QList<UsbDevice> watches = registry.devices(0x10c4, 0xea60).value();
    QCOMPARE(watches.size(), 1);
    for (const SerialClient& client : registry.serialClients()) {
      names.append(client.calloutDevice);
      QCOMPARE(samePhysicalDevice(watches.first().path, client.path),
               client.calloutDevice == watchCalloutDevice);
    }
    names.sort();
    QCOMPARE(names, (QStringList{watchCalloutDevice, QStringLiteral("/dev/ttyS0"),
                                 QStringLiteral("/dev/ttyUSB0")}));
  }

  void aWatchWithoutDriver() {
    plug(adapter(1, "10c4", "ea60").split('\n').first(7).join('\n') + "\n\n");
    const auto usb = search(std::make_shared<UdevRegistry>(QString()));
    QCOMPARE(usb->linkObstacle.load(), LinkObstacle::noSerialPort);
  }

  /// Of several watches a search takes the last one.
  void theExtraPortIsPreferred() {
    plug(adapter(1, "10c4", "ea60"));
    const UdevRegistry registry(QStringLiteral("/dev/odd"));
    QCOMPARE(registry.devices(0x10c4, 0xea60).value().size(), 2);
    QCOMPARE(registry.devices(0x10c4, 0xea60).value().last().name, QStringLiteral("/dev/odd"));
    QVERIFY(registry.devices(0x10c4, 0xea61).value().isEmpty());
    QCOMPARE(registry.deviceNode(watchCalloutDevice), QStringLiteral("/dev/odd"));
  }
};

QTEST_GUILESS_MAIN(tst_udevRegistry)
#include "tst_udevRegistry.moc"
