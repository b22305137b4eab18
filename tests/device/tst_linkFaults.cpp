#include "base/detachThread.h"
#include "data/bundle.h"
#include "data/dataControl.h"
#include "device/lastDownload.h"
#include "device/serialPort.h"
#include "device/usbOperating.h"
#include "fakeRegistry.h"
#include "pseudoTerminal.h"
#include "tests/files.h"
#include "tools/watchsim/emulatedWatch.h"
#include "tools/watchsim/watchMemory.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <future>
#include <sys/ioctl.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int runCount = 3;

/// The names of the first `broken` runs hold an apostrophe, so that their statements fail.
QList<QByteArray> memoryWith(int broken) {
  QList<QByteArray> memory =
      makeMemory({.runs = runCount, .pointsPerRun = 20, .today = QDate(2024, 5, 18)});
  for (QByteArray& block : memory) {
    const bool isRunHeader = block[32] == 0 && block[33] == 0 && block[35] == '\xFD';
    if (isRunHeader && broken-- > 0) {
      block.replace(18, 7, "O'Brien");
    }
  }
  return memory;
}

QList<QByteArray> blocksIn(const QString& path) {
  QFile file(path);
  file.open(QIODevice::ReadOnly);
  return blocksFromLines(QString::fromLatin1(file.readAll()));
}

/// Reads blocks on a thread of its own until `read` brings none.
template <typename Read>
std::future<void> drain(Read read) {
  return std::async(std::launch::async, [read] {
    std::array<std::byte, 36> buffer{};
    while (read(buffer) > 0) {
    }
  });
}

}  // namespace

/// What goes wrong between the port and the database must neither hang nor lose a run silently.
class tst_linkFaults : public QObject {
  Q_OBJECT

  QTemporaryDir folder_;

 private Q_SLOTS:
  void cleanup() { QTRY_COMPARE(detachedThreadCount(), 0); }

  /// Another program reads what poll() has just announced, about every other time.
  void aThiefOfBytesDoesNotHoldUpTheClosing() {
    for (int round = 0; round < 40; ++round) {
      PseudoTerminal line;
      const int thief = ::open(line.path.toLatin1().constData(), O_RDWR | O_NOCTTY);
      SerialPort port;
      QVERIFY(port.open(line.path, 115200).isNull());
      const auto steals = drain([thief](auto& to) { return ::read(thief, to.data(), to.size()); });
      const auto reads = drain([&port](auto& to) { return port.read(to); });
      for (int i = 0; i < 3; ++i) {
        line.send(QByteArray(36, '\x12'));
        QTest::qWait(3);
      }
      const auto closed = std::async(std::launch::async, [&port] { port.close(); });
      const bool inTime = closed.wait_for(5s) == std::future_status::ready;
      line.hangUp();  // ends the thief, and a reader that hangs
      steals.wait();
      ::close(thief);
      QVERIFY(inTime);
    }
  }

  /// Else the port of a living session is taken for unplugged and given away.
  void aReadEndedByClosingFindsThePortClosed() {
    const PseudoTerminal line;
    int lost = 0;
    for (int i = 0; i < 100; ++i) {
      SerialPort port;
      QVERIFY(port.open(line.path, 115200).isNull());
      auto isOpen = std::async(std::launch::async, [&port] {
        std::array<std::byte, 36> buffer{};
        port.read(buffer);
        return port.isOpen();
      });
      port.close();
      lost += isOpen.get() ? 1 : 0;
    }
    QCOMPARE(lost, 0);
  }

  void anUnansweredSessionKeepsItsPort() {
    const PseudoTerminal line;
    const auto registry = std::make_shared<FakeRegistry>();
    registry->plugWatch(line.path);
    const auto session = std::make_shared<WatchSession>();
    const auto first = usbOperating::create({registry, nullptr, 0.1, {}}, session);
    QVERIFY(first->linkCommand());
    const auto second = usbOperating::create({registry, nullptr, 0.1, {}});
    QVERIFY(!second->linkCommand());
  }

  void aRefusedOpeningLeavesTheFirstOneExclusive() {
    const PseudoTerminal line;
    SerialPort first;
    SerialPort second;
    QVERIFY(first.open(line.path, 115200).isNull());
    QVERIFY(!second.open(line.path, 115200).isNull());
    int exclusive = 0;
    QCOMPARE(::ioctl(first.descriptor, TIOCGEXCL, &exclusive), 0);
    QCOMPARE(exclusive, 1);
  }

  void runsThatAreNotStored_data() {
    QTest::addColumn<int>("broken");
    QTest::addColumn<bool>("fileFails");
    QTest::addColumn<qint32>("code");
    QTest::newRow("none") << 0 << false << 1;
    QTest::newRow("one beside good ones") << 1 << false << 1;
    QTest::newRow("all") << runCount << false << -1;
    QTest::newRow("one, only the copy is kept") << 1 << true << 1;
  }
  /// They stay in a file that the next download leaves alone, and the object tells.
  void runsThatAreNotStored() {
    QFETCH(int, broken);
    QFETCH(bool, fileFails);
    const QString own = folder_.filePath(QString::fromLatin1(QTest::currentDataTag()));
    setMainBundle({own + "/Trakko.app", u"Trakko"_s});
    const QString path = own + "/lastDownload.txt";
    QVERIFY(QDir().mkpath(fileFails ? path : own));  // a folder in place of the file
    const auto registry = std::make_shared<FakeRegistry>();
    const auto usb = usbOperating::create({registry, nullptr, 1.0, path});
    const auto download = [&](const QList<QByteArray>& memory) {
      EmulatedWatch watch({.memory = memory, .fullSpeed = true});
      watch.start();
      registry->plugWatch(watch.path());
      return usb->getAllData();
    };
    QTEST(download(memoryWith(broken)), "code");
    QCOMPARE(usb->runsNotStored, broken);
    QCOMPARE(usb->linesKept.load(), !fileFails);
    QCOMPARE(usb->lastingPath.isNull(), broken == 0);
    QCOMPARE(dataControl().getRunData(u"ALL"_s, {}).size(), runCount - broken);

    const QString lasting = usb->lastingPath;
    QCOMPARE(download(QList<QByteArray>(4, QByteArray(36, '\x12'))), -1);
    QCOMPARE(usb->runsNotStored, 0);
    QVERIFY(usb->lastingPath.isNull());
    QVERIFY(broken == 0 || blocksIn(lasting) == memoryWith(broken));
  }

  void lastingCopies() {
    const QString path = folder_.filePath(u"lastDownload.txt"_s);
    const QDateTime end(QDate(2024, 5, 18), QTime(6, 30, 1));
    const QStringList lines(100, u"00 01"_s);
    QVERIFY(keepDownload(path, lines).isNull());
    // A disk that has no room left takes a second name for the file, but no second file.
    const FullDisk full(100);
    const LastingCopy first = keepForGood(path, lines, end);
    QCOMPARE(first.path, folder_.filePath(u"lastDownload-20240518063001.txt"_s));
    // Another watch's download has replaced the file in the meantime, within the same second.
    const LastingCopy second = keepForGood(path, {u"02 03"_s}, end);
    QCOMPARE(second.path, folder_.filePath(u"lastDownload-20240518063001-2.txt"_s));
    QCOMPARE(QFile(second.path).size(), 6);
    const LastingCopy fourth = keepForGood(path, lines + lines, end);
    QVERIFY(fourth.path.isNull());
    QCOMPARE(fourth.error, QString::fromLocal8Bit(::strerror(EFBIG)));
    QVERIFY(keepDownload(path, {}).isNull());
    QCOMPARE(QFile(first.path).size(), 600);
    QCOMPARE(keepForGood(path, lines, end.addDays(1)).path, first.path);  // kept already
  }
};

QTEST_GUILESS_MAIN(tst_linkFaults)
#include "tst_linkFaults.moc"
