#include "device/detectionState.h"
#include "device/usbOperating.h"
#include "fakeRegistry.h"
#include "pseudoTerminal.h"

#include <QFile>
#include <QTest>

#include <array>
#include <memory>
#include <sys/ioctl.h>
#include <tuple>
#include <vector>

class tst_detection : public QObject {
  Q_OBJECT

  std::shared_ptr<FakeRegistry> registry_;

  std::shared_ptr<usbOperating> object() const {
    return usbOperating::create({registry_, nullptr, 1.0, {}});
  }
  /// At the watch's speed.
  static bool openedAt(const usbOperating& usb, const QString& node) {
    std::array<quint32, 11> attributes{};  // termios2; its last member is the speed
    ::ioctl(usb.serialFileDescriptor, _IOR('T', 0x2A, decltype(attributes)), attributes.data());
    const QString link = QString("/proc/self/fd/%1").arg(usb.serialFileDescriptor);
    return usb.serialFileDescriptor >= 0 && QFile::symLinkTarget(link) == node &&
           attributes.back() == 115200;
  }

 private Q_SLOTS:
  void init() { registry_ = std::make_shared<FakeRegistry>(); }

  void pathsMatch() {
    const QString path(120, u'a');
    const auto differentAt = [path](int place) { return QString(path).replace(place, 1, 'b'); };
    const QList<std::pair<QString, bool>> rows{{path.first(101), true},   {path.first(100), false},
                                               {differentAt(74), true},   {differentAt(75), false},
                                               {differentAt(100), false}, {differentAt(101), true}};
    for (const auto& [other, same] : rows) {
      QCOMPARE(samePhysicalDevice(path, other), same);
      QCOMPARE(samePhysicalDevice(other, path), same);
    }
  }

  void searchesBothProductsOnce() {
    const auto usb = object();
    usb->findDevice(60000);
    QCOMPARE(registry_->asked, (QList<quint16>{60000, 60001}));
    QCOMPARE(usb->serialFileDescriptor.load(), -1);
    QCOMPARE(usb->linkObstacle.load(), LinkObstacle::noDevice);
    usb->findDevice(60000);
    QCOMPARE(registry_->asked, (QList<quint16>{60000, 60001, 60000}));
    usb->setCUSB();
    usb->findDevice(60000);
    QCOMPARE(registry_->asked.size(), 5);
  }

  void findsEitherProduct() {
    for (const quint16 product : {quint16{60000}, quint16{60001}}) {
      const PseudoTerminal line;
      init();
      registry_->plugWatch(line.path, product);
      const auto usb = object();
      usb->findDevice(60000);
      QVERIFY(openedAt(*usb, line.path));
      QCOMPARE(usb->linkObstacle.load(), LinkObstacle::none);
      QVERIFY(usb->readThreadRunning);
      QCOMPARE(usb->find_serial(4292, product), "0001");
      QVERIFY(usb->find_serial(1, product).isNull());
      usb->closeMyDevice();
      QTRY_VERIFY(!usb->readThreadRunning);

      const DetectionState state = detectionState();
      QCOMPARE(state.gNotifyPort.product, product);
      QCOMPARE(state.gRunLoop, std::this_thread::get_id());
      QCOMPARE(state.gAddedIter.size(), 1);
      // A watch plugged in later reaches no object.
      state.gNotifyPort.callback(state.gNotifyPort.reference, state.gAddedIter);
      QCOMPARE(usb->serialFileDescriptor.load(), -1);
      deviceAdded(usb.get(), state.gAddedIter);
      QVERIFY(openedAt(*usb, line.path));
      // Opening again closes the first opening.
      QVERIFY(usb->openSerialPort(watchCalloutDevice, 115200).isNull());
      QVERIFY(openedAt(*usb, line.path));
      QCOMPARE(usb->openSerialPort("/dev/nothing", 115200), "Error: couldn't open serial port");
      QCOMPARE(usb->serialFileDescriptor.load(), -1);
    }
  }

  /// The walk stops at the watch's call-out name only; else the last port examined is taken.
  void takesTheLastPortExamined() {
    // Device and name of each port, 'S' is the watch's name; the port that is opened.
    const QList<std::pair<QString, int>> rows{
        {"xo wS xo", 1}, {"wo xo", 1}, {"xS wo xo", 2}, {"xS xo", -1}};
    for (const auto& [clients, opened] : rows) {
      init();
      registry_->usb[60000] = {{"bridge", registryPathOf(u'w'), QString()}};
      std::vector<std::unique_ptr<PseudoTerminal>> lines;
      for (const QString& client : clients.split(' ')) {
        lines.push_back(std::make_unique<PseudoTerminal>());
        const QString path = lines.back()->path;
        registry_->clients.append({QString(), registryPathOf(client[0].unicode()),
                                   client[1] == 'S' ? watchCalloutDevice : path, path});
      }
      const auto usb = object();
      usb->findDevice(60000);
      if (opened < 0) {
        QCOMPARE(usb->linkObstacle.load(), LinkObstacle::noSerialPort);
        QCOMPARE(usb->serialFileDescriptor.load(), -1);
      } else {
        QVERIFY2(openedAt(*usb, lines[std::size_t(opened)]->path), qPrintable(clients));
      }
      usb->closeMyDevice();
    }
  }

  void reasonsForNoPort() {
    const QList<std::tuple<QString, bool, LinkObstacle>> rows{
        {"/dev/nothing", false, LinkObstacle::noSerialPort},
        {"/dev/null", false, LinkObstacle::otherError},
        {"/dev/null", true, LinkObstacle::otherError}};
    for (const auto& [node, broken, obstacle] : rows) {
      registry_->plugWatch(node);
      registry_->broken = broken;
      const auto usb = object();
      usb->findDevice(60000);
      QCOMPARE(usb->linkObstacle.load(), obstacle);
      QCOMPARE(usb->serialFileDescriptor.load(), -1);
      QVERIFY(!usb->readThreadRunning);
    }
  }
};

QTEST_GUILESS_MAIN(tst_detection)
#include "tst_detection.moc"
