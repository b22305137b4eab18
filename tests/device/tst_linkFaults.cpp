#include "base/detachThread.h"
#include "data/bundle.h"
#include "data/dataControl.h"
#include "device/lastDownload.h"
#include "device/replay.h"
#include "device/serialPort.h"
#include "device/usbOperating.h"
#include "device/watchDownload.h"
#include "fakeRegistry.h"
#include "pseudoTerminal.h"
#include "tests/files.h"
#include "tools/watchsim/emulatedWatch.h"
#include "tools/watchsim/watchBlocks.h"
#include "tools/watchsim/watchMemory.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <array>
#include <future>
#include <sys/ioctl.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int runCount = 3;

QList<QByteArray> goodMemory() {
  return makeMemory({.runs = runCount, .pointsPerRun = 20, .today = QDate(2024, 5, 18)});
}

bool isRunLine(const QByteArray& block) {
  return block[35] == '\xFD';
}

bool isHeader(const QByteArray& block) {
  return block[32] == 0 && block[33] == 0;
}

/// The names of the first `broken` runs hold an apostrophe, so that their statements fail.
QList<QByteArray> memoryWith(int broken) {
  QList<QByteArray> memory = goodMemory();
  for (QByteArray& block : memory) {
    if (isRunLine(block) && isHeader(block) && broken-- > 0) {
      block.replace(18, 7, "O'Brien");
    }
  }
  return memory;
}

/// The first two runs go by the same key.
QList<QByteArray> memoryWithOneKeyTwice() {
  QList<QByteArray> memory = goodMemory();
  for (QByteArray& block : memory) {
    block[34] = isRunLine(block) && block[34] == 2 ? '\1' : block[34];
  }
  return memory;
}

/// The last run has no lap, which alone would complete it.
QList<QByteArray> memoryWithoutTheLastLaps() {
  QList<QByteArray> memory = goodMemory();
  memory.removeIf([](const QByteArray& block) {
    return isRunLine(block) && !isHeader(block) && block[34] == char{runCount};
  });
  return memory;
}

QList<QByteArray> blocksIn(const QString& path) {
  QFile file(path);
  file.open(QIODevice::ReadOnly);
  return blocksFromLines(QString::fromLatin1(file.readAll()));
}

QStringList linesOf(const QList<QByteArray>& memory) {
  QStringList lines;
  std::transform(memory.cbegin(), memory.cend(), std::back_inserter(lines), lineFromBlock);
  return lines;
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

  /// With an empty database of its own.
  QString newFolder() {
    const QString own = folder_.filePath(QString::number(QDir(folder_.path()).count()));
    QDir().mkpath(own);
    setMainBundle({own + "/Trakko.app", u"Trakko"_s});
    return own;
  }

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
    QTest::addColumn<QList<QByteArray>>("memory");
    QTest::addColumn<int>("missing");
    QTest::addColumn<bool>("fileFails");
    QTest::newRow("none") << memoryWith(0) << 0 << false;
    QTest::newRow("one beside good ones") << memoryWith(1) << 1 << false;
    QTest::newRow("all") << memoryWith(runCount) << runCount << false;
    QTest::newRow("one, only the copy is kept") << memoryWith(1) << 1 << true;
    QTest::newRow("one key twice") << memoryWithOneKeyTwice() << 1 << false;
    QTest::newRow("a last header without a lap") << memoryWithoutTheLastLaps() << 1 << false;
  }
  /// They stay in a file that the next download leaves alone, and the object tells.
  void runsThatAreNotStored() {
    QFETCH(QList<QByteArray>, memory);
    QFETCH(int, missing);
    QFETCH(bool, fileFails);
    const QString own = newFolder();
    const QString path = own + "/lastDownload.txt";
    QVERIFY(!fileFails || QDir().mkpath(path));  // a folder in place of the file
    const auto registry = std::make_shared<FakeRegistry>();
    const auto usb = usbOperating::create({registry, nullptr, 1.0, path});
    const auto download = [&](const QList<QByteArray>& sent) {
      EmulatedWatch watch({.memory = sent, .fullSpeed = true});
      watch.start();
      registry->plugWatch(watch.path());
      return usb->getAllData();
    };
    QCOMPARE(download(memory), missing == runCount ? -1 : 1);
    QCOMPARE(usb->newRuns, runCount);
    QCOMPARE(usb->runsNotStored, missing);
    QCOMPARE(usb->linesKept.load(), !fileFails);
    QCOMPARE(usb->lastingPath.isNull(), missing == 0);
    QCOMPARE(dataControl().getRunData(u"ALL"_s, {}).size(), runCount - missing);

    const QString lasting = usb->lastingPath;
    QCOMPARE(download(QList<QByteArray>(4, QByteArray(36, '\x12'))), -1);
    QCOMPARE(usb->runsNotStored, 0);
    QVERIFY(usb->lastingPath.isNull());
    QVERIFY(missing == 0 || blocksIn(lasting) == memory);
    download(memory);  // an equal copy is enough
    QCOMPARE(QDir(own).entryList({u"lastDownload-*"_s}).size(), missing == 0 ? 0 : 1);
  }

  void aBlockThatStaysShortIsTold() {
    const QString path = newFolder() + "/lastDownload.txt";
    const PseudoTerminal line;
    const auto registry = std::make_shared<FakeRegistry>();
    registry->plugWatch(line.path);
    const auto usb = usbOperating::create({registry, nullptr, 3.0, path});
    auto code = std::async(std::launch::async, [usb] { return usb->getAllData(); });
    line.receive(32);
    line.send(goodMemory().join().chopped(20));  // the last point is cut
    QTest::qWait(1300);
    line.send(endMarkerBlock());
    QCOMPARE(code.get(), 1);
    QCOMPARE(usb->shortBlocks.load(), 1);
    QVERIFY(!usb->lastingPath.isNull());
  }

  void aDownloadWithoutEndIsGivenUp() {
    const QString path = newFolder() + "/lastDownload.txt";
    EmulatedWatch watch({.memory = QList<QByteArray>(50, QByteArray(36, '\x12')),
                         .fullSpeed = true,
                         .sendsEndMarker = false});
    QVERIFY(watch.start().isNull());
    const auto registry = std::make_shared<FakeRegistry>();
    registry->plugWatch(watch.path());
    const DownloadOutcome outcome = WatchDownload({registry, nullptr, 1.0, path, 20}).run();
    QCOMPARE(outcome.code, 3);
    QVERIFY(outcome.endless && !outcome.isSafe());
    QCOMPARE(blocksIn(path).size(), 20);
  }

  void aCancelledDownloadReleasesThePort() {
    const QString path = newFolder() + "/lastDownload.txt";
    EmulatedWatch watch({.memory = goodMemory(), .fullSpeed = true, .sendsEndMarker = false});
    QVERIFY(watch.start().isNull());
    const auto registry = std::make_shared<FakeRegistry>();
    registry->plugWatch(watch.path());
    WatchDownload download({registry, nullptr, 0.3, path});
    auto outcome = std::async(std::launch::async, [&download] { return download.run(); });
    QTRY_VERIFY(download.isStalled());
    download.cancel();
    SerialPort port;
    QVERIFY(port.open(watch.path(), 115200).isNull());
    QVERIFY(outcome.get().cancelled);
    QVERIFY(!QFile::exists(path));
    QVERIFY(download.run().cancelled);  // also one that had not begun
    QVERIFY(dataControl().getRunData(u"ALL"_s, {}).isEmpty());
  }

  void keptLinesCanBeReplayed() {
    const QString own = newFolder();
    const QString path = own + "/lastDownload.txt";
    QVERIFY(keepDownload(path, linesOf(goodMemory())).isNull());
    const ReplayOutcome first = replayKeptLines(path);
    QCOMPARE(first.code, 1);
    QCOMPARE(first.newRuns, runCount);
    QCOMPARE(dataControl().getTrackData(runCount).size(), 20);
    QCOMPARE(replayKeptLines(path).code, 88);
    // The points of the others would go to the wrong run.
    QCOMPARE(dataControl().deleteOneData(1), 1);
    QVERIFY(replayKeptLines(path).wouldMix);
    QCOMPARE(dataControl().getRunData(u"ALL"_s, {}).size(), runCount - 1);
    QVERIFY(!replayKeptLines(own).error.isNull());
    QVERIFY(!replayKeptLines(own + "/none").error.isNull());
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
