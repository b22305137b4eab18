#include "device/detectionState.h"
#include "device/udevRegistry.h"
#include "device/usbOperating.h"
#include "fakeRegistry.h"
#include "pseudoTerminal.h"

#include <QFile>
#include <QTest>
#include <memory>
#include <vector>

Q_DECLARE_METATYPE(LinkObstacle)

namespace {

QString pathWith(int length, int differentAt) {
  QString path(length, u'a');
  if (differentAt >= 0) {
    path[differentAt] = u'b';
  }
  return path;
}

}  // namespace

class tst_detection : public QObject {
  Q_OBJECT

  std::shared_ptr<FakeRegistry> registry_;

  std::shared_ptr<usbOperating> fresh() const {
    DeviceEnvironment environment;
    environment.registry = registry_;
    return usbOperating::create(environment);
  }
  static bool openedAt(const usbOperating& usb, const QString& node) {
    const QString link = QStringLiteral("/proc/self/fd/%1").arg(usb.serialFileDescriptor);
    return usb.serialFileDescriptor >= 0 && QFile::symLinkTarget(link) == node;
  }

 private Q_SLOTS:
  void init() { registry_ = std::make_shared<FakeRegistry>(); }

  void pathsMatch_data() {
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("differentAt");
    QTest::addColumn<bool>("same");
    QTest::newRow("equal") << 101 << -1 << true;
    QTest::newRow("too short") << 100 << -1 << false;
    QTest::newRow("before") << 120 << 74 << true;
    QTest::newRow("first") << 120 << 75 << false;
    QTest::newRow("last") << 120 << 100 << false;
    QTest::newRow("behind") << 120 << 101 << true;
  }
  void pathsMatch() {
    QFETCH(int, length);
    QFETCH(int, differentAt);
    QFETCH(bool, same);
    QCOMPARE(samePhysicalDevice(pathWith(120, -1), pathWith(length, differentAt)), same);
    QCOMPARE(samePhysicalDevice(pathWith(length, differentAt), pathWith(120, -1)), same);
  }

  void searchesBothProductsOnce() {
    const auto usb = fresh();
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
    QTest::addColumn<quint16>("product");
    QTest::newRow("first") << quint16(60000);
    QTest::newRow("second") << quint16(60001);
  }
  void findsEitherProduct() {
    QFETCH(quint16, product);
    const PseudoTerminal line;
    registry_->plugWatch(line.path, product);
    const auto usb = fresh();
    usb->findDevice(60000);
    QVERIFY(openedAt(*usb, line.path));
    QCOMPARE(usb->linkObstacle.load(), LinkObstacle::none);
    QVERIFY(usb->readThreadRunning);
    usb->closeMyDevice();
    QCOMPARE(usb->serialFileDescriptor.load(), -1);
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
    usb->closeMyDevice();
  }

  /// The walk stops at the watch's call-out name only; else the last port examined is taken.
  void takesTheLastPortExamined_data() {
    QTest::addColumn<QString>("clients");  // device and name of each: 'S' is the watch's name
    QTest::addColumn<int>("opened");
    QTest::newRow("stops at the watch's name") << QStringLiteral("xo wS xo") << 1;
    QTest::newRow("goes on past another name") << QStringLiteral("wo xo") << 1;
    QTest::newRow("that name on another device") << QStringLiteral("xS wo xo") << 2;
    QTest::newRow("no match") << QStringLiteral("xS xo") << -1;
  }
  void takesTheLastPortExamined() {
    QFETCH(QString, clients);
    QFETCH(int, opened);
    registry_->usb[60000] = {{QStringLiteral("bridge"), registryPathOf(u'w'), QString()}};
    std::vector<std::unique_ptr<PseudoTerminal>> lines;
    for (const QString& client : clients.split(u' ')) {
      lines.push_back(std::make_unique<PseudoTerminal>());
      registry_->clients.append({QString(), registryPathOf(client[0].unicode()),
                                 client[1] == u'S' ? watchCalloutDevice : lines.back()->path,
                                 lines.back()->path});
    }
    const auto usb = fresh();
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
    QTest::addColumn<QString>("node");
    QTest::addColumn<bool>("broken");
    QTest::addColumn<LinkObstacle>("obstacle");
    QTest::newRow("gone") << QStringLiteral("/dev/nothing") << false << LinkObstacle::noSerialPort;
    QTest::newRow("no terminal") << QStringLiteral("/dev/null") << false
                                 << LinkObstacle::otherError;
    QTest::newRow("no dictionary")
        << QStringLiteral("/dev/null") << true << LinkObstacle::otherError;
  }
  void reasonsForNoPort() {
    QFETCH(QString, node);
    registry_->plugWatch(node);
    QFETCH(bool, broken);
    registry_->broken = broken;
    const auto usb = fresh();
    usb->findDevice(60000);
    QTEST(usb->linkObstacle.load(), "obstacle");
    QCOMPARE(usb->serialFileDescriptor.load(), -1);
    QVERIFY(!usb->readThreadRunning);
  }

  void opensByCalloutName() {
    const PseudoTerminal line;
    registry_->plugWatch(line.path);
    const auto usb = fresh();
    QVERIFY(usb->openSerialPort(watchCalloutDevice, 115200).isNull());
    QVERIFY(openedAt(*usb, line.path));
    // Opening again closes the first opening.
    QVERIFY(usb->openSerialPort(line.path, 115200).isNull());
    QVERIFY(openedAt(*usb, line.path));
    QCOMPARE(usb->openSerialPort(QStringLiteral("/dev/cu.nothing"), 115200),
             QStringLiteral("Error: couldn't open serial port"));
    QCOMPARE(usb->serialFileDescriptor.load(), -1);
  }

  void takesAnExtraPortOnThisComputer() {
    const PseudoTerminal line;
    DeviceEnvironment environment;
    environment.registry = std::make_shared<UdevRegistry>(line.path);
    const auto usb = usbOperating::create(environment);
    usb->findDevice(60000);
    QVERIFY(openedAt(*usb, line.path));
    usb->closeMyDevice();
  }

  void serialNumbers() {
    registry_->plugWatch(QString(), 60001);
    const auto usb = fresh();
    QCOMPARE(usb->find_serial(4292, 60001), QStringLiteral("0001"));
    QVERIFY(usb->find_serial(4292, 60000).isNull());
    QVERIFY(usb->find_serial(1, 60001).isNull());
  }
};

QTEST_GUILESS_MAIN(tst_detection)
#include "tst_detection.moc"
