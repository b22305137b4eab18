#include "device/detectionState.h"
#include "device/usbOperating.h"
#include "fakeRegistry.h"
#include "pseudoTerminal.h"
#include "tests/columns.h"

#include <QtTest>

#include <array>
#include <memory>
#include <sys/ioctl.h>
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

  void pathsMatch_data() {
    const auto row = columns<QString, bool>("other", "same");
    const auto differentAt = [](int place) { return QString(120, 'a').replace(place, 1, 'b'); };
    row("just long enough", QString(101, 'a'), true);
    row("too short", QString(100, 'a'), false);
    row("different before", differentAt(74), true);
    row("different at the start", differentAt(75), false);
    row("different at the end", differentAt(100), false);
    row("different behind", differentAt(101), true);
  }
  void pathsMatch() {
    QFETCH(QString, other);
    QTEST(samePhysicalDevice(QString(120, 'a'), other), "same");
    QTEST(samePhysicalDevice(other, QString(120, 'a')), "same");
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

  void findsEitherProduct_data() {
    const auto row = columns<quint16>("product");
    row("first", 60000);
    row("second", 60001);
  }
  void findsEitherProduct() {
    QFETCH(quint16, product);
    const PseudoTerminal line;
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

  /// The walk stops at the watch's call-out name only; else the last port examined is taken.
  void takesTheLastPortExamined_data() {
    // Named by device and name of each port, 'S' is the watch's name; the port that is opened.
    const auto row = columns<int>("opened");
    row("xo wS xo", 1);
    row("wo xo", 1);
    row("xS wo xo", 2);
    row("xS xo", -1);
  }
  void takesTheLastPortExamined() {
    QFETCH(int, opened);
    registry_->usb[60000] = {{"bridge", registryPathOf(u'w'), QString()}};
    std::vector<std::unique_ptr<PseudoTerminal>> lines;
    for (const QString& client : QString(QTest::currentDataTag()).split(' ')) {
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
      QVERIFY(openedAt(*usb, lines[std::size_t(opened)]->path));
    }
    usb->closeMyDevice();
  }

  void reasonsForNoPort_data() {
    const auto row = columns<QString, bool, LinkObstacle>("node", "broken", "obstacle");
    row("no such port", "/dev/nothing", false, LinkObstacle::noSerialPort);
    row("no terminal", "/dev/null", false, LinkObstacle::otherError);
    row("no registry", "/dev/null", true, LinkObstacle::otherError);
  }
  void reasonsForNoPort() {
    QFETCH(QString, node);
    QFETCH(bool, broken);
    registry_->plugWatch(node);
    registry_->broken = broken;
    const auto usb = object();
    usb->findDevice(60000);
    QTEST(usb->linkObstacle.load(), "obstacle");
    QCOMPARE(usb->serialFileDescriptor.load(), -1);
    QVERIFY(!usb->readThreadRunning);
  }
};

QTEST_GUILESS_MAIN(tst_detection)
#include "tst_detection.moc"
