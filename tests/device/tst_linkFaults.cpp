#include "base/detachThread.h"
#include "data/databaseUse.h"
#include "device/downloadResult.h"
#include "device/lastDownload.h"
#include "device/replay.h"
#include "device/serialPort.h"
#include "device/watchDownload.h"
#include "linkTest.h"
#include "pseudoTerminal.h"
#include "tests/columns.h"
#include "tools/watchsim/watchBlocks.h"

#include <algorithm>
#include <array>

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

/// The first two runs go by the same key, and start at the same time where the clock fell back.
QList<QByteArray> memoryWithOneKeyTwice(bool clockFellBack) {
  QList<QByteArray> memory = goodMemory();
  const QByteArray start = memory.first().first(6);
  for (QByteArray& block : memory) {
    if (isRunLine(block) && block[34] == 2) {
      block[34] = '\1';
      block.replace(0, 6, clockFellBack && isHeader(block) ? start : block.first(6));
    }
  }
  return memory;
}

/// The header of the first track is missing, so that its 20 points belong nowhere.
QList<QByteArray> memoryWithoutTheFirstTrack() {
  QList<QByteArray> memory = goodMemory();
  memory.erase(std::find_if(memory.begin(), memory.end(), std::not_fn(isRunLine)));
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

QStringList linesOf(const QList<QByteArray>& memory) {
  QStringList lines;
  std::transform(memory.cbegin(), memory.cend(), std::back_inserter(lines), lineFromBlock);
  return lines;
}

/// Reads blocks on a thread of its own until `read` brings none.
template <typename Read>
std::future<void> drain(Read read) {
  return inBackground([read] {
    std::array<std::byte, 36> buffer{};
    while (read(buffer) > 0) {
    }
  });
}

}  // namespace

/// What goes wrong between the port and the database must neither hang nor lose a run silently.
class tst_linkFaults : public LinkTest {
  Q_OBJECT

 private Q_SLOTS:
  void init() { startAnew(); }
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

  void anUnansweredSessionKeepsItsPort() {
    const PseudoTerminal line;
    registry_->plugWatch(line.path);
    const auto session = std::make_shared<WatchSession>();
    QVERIFY(usbOperating::create(environment(0.1), session)->linkCommand());
    QVERIFY(!usbOperating::create(environment(0.1))->linkCommand());
  }

  void runsThatAreNotStored_data() {
    const auto row =
        columns<QList<QByteArray>, int, int, bool>("memory", "missing", "strays", "fileFails");
    row("none", memoryWith(0), 0, 0, false);
    row("one beside good ones", memoryWith(1), 1, 0, false);
    row("all", memoryWith(runCount), runCount, 0, false);
    row("one, only the copy is kept", memoryWith(1), 1, 0, true);
    row("one key twice", memoryWithOneKeyTwice(false), 1, 0, false);
    row("one key and start twice", memoryWithOneKeyTwice(true), 1, 0, false);
    row("a last header without a lap", memoryWithoutTheLastLaps(), 1, 0, false);
    row("a lap before any header", goodMemory().mid(1, 1) + goodMemory(), 0, 1, false);
    row("points before any header", memoryWithoutTheFirstTrack(), 0, 20, false);
  }
  /// They stay in a file that the next download leaves alone, and the outcome tells.
  void runsThatAreNotStored() {
    QFETCH(QList<QByteArray>, memory);
    QFETCH(int, missing);
    QFETCH(int, strays);
    QFETCH(bool, fileFails);
    const bool whole = missing + strays == 0;
    QVERIFY(!fileFails || QDir().mkpath(keptFile()));  // a folder in place of the file
    const auto download = [&](const QList<QByteArray>& sent) {
      const auto watch = plug({.memory = sent});
      return WatchDownload(environment()).run();
    };
    const DownloadOutcome first = download(memory);
    QCOMPARE(first.code, missing == runCount ? downloadResult::notStored : downloadResult::stored);
    QCOMPARE(first.newRuns, runCount);
    QCOMPARE(first.runsNotStored, missing);
    QCOMPARE(first.strayLines, strays);
    QCOMPARE(first.linesKept, !fileFails);
    QCOMPARE(first.isSafe(), whole);
    QCOMPARE(first.lastingPath.isNull(), whole);
    QCOMPARE(storedRuns(), runCount - missing);

    const DownloadOutcome second = download({4, unknownBlock});
    QCOMPARE(second.code, downloadResult::notStored);
    QVERIFY(second.isWhole() && second.lastingPath.isNull());
    QVERIFY(whole || blocksIn(first.lastingPath) == memory);
    download(memory);  // an equal copy is enough
    QCOMPARE(QDir(folder_->path()).entryList({"lastDownload-*"}).size(), whole ? 0 : 1);
  }

  void aBlockThatStaysShortIsTold() {
    const PseudoTerminal line;
    registry_->plugWatch(line.path);
    const auto usb = usbOperating::create(environment(3.0));
    auto code = inBackground([usb] { return usb->getAllData(); });
    line.receive(32);
    line.send(goodMemory().join().chopped(20));  // the last point is cut
    QTest::qWait(1300);
    line.send(endMarkerBlock());
    QCOMPARE(code.get(), downloadResult::stored);
    QCOMPARE(usb->shortBlocks.load(), 1);
    QVERIFY(!usb->lastingPath.isNull());
  }

  void aDownloadWithoutEndIsGivenUp() {
    const auto watch = plug({.memory = {50, unknownBlock}, .sendsEndMarker = false});
    DeviceEnvironment device = environment();
    device.mostBlocks = 20;
    const DownloadOutcome outcome = WatchDownload(device).run();
    QCOMPARE(outcome.code, downloadResult::endMissed);
    QVERIFY(outcome.endless && !outcome.isSafe());
    QCOMPARE(blocksIn(keptFile()).size(), 20);
  }

  void aCancelledDownloadReleasesThePort() {
    const auto watch = plug({.memory = goodMemory(), .sendsEndMarker = false});
    WatchDownload download(environment(0.3));
    auto outcome = inBackground([&download] { return download.run(); });
    QTRY_VERIFY(download.isStalled());
    download.cancel();
    SerialPort port;
    QVERIFY(port.open(watch->path(), 115200).isNull());
    QVERIFY(outcome.get().cancelled);
    QVERIFY(!QFile::exists(keptFile()));
    QVERIFY(download.run().cancelled);  // also one that had not begun
    QCOMPARE(storedRuns(), 0);
  }

  void keptLinesCanBeReplayed() {
    const QString path = keptFile();
    QVERIFY(keepDownload(path, linesOf(goodMemory())).isNull());
    auto turn = databaseUse::await();  // as while another file takes the database's place
    auto replayed = inBackground([path] { return replayKeptLines(path); });
    QTest::qWait(100);
    QCOMPARE(storedRuns(), 0);
    turn.unlock();
    const ReplayOutcome first = replayed.get();
    QCOMPARE(first.code, downloadResult::stored);
    QCOMPARE(first.newRuns, runCount);
    QCOMPARE(dataControl().getTrackData(runCount).size(), 20);
    QCOMPARE(replayKeptLines(path).code, downloadResult::noRunCompleted);
    // The points of the others would go to the wrong run.
    QCOMPARE(dataControl().deleteOneData(1), 1);
    QVERIFY(replayKeptLines(path).wouldMix);
    QCOMPARE(storedRuns(), runCount - 1);
    QVERIFY(!replayKeptLines(folder_->path()).error.isNull());
    QVERIFY(!replayKeptLines(folder_->filePath("none")).error.isNull());
    // Rows can be added to a table with an unknown order of texts, but no text be found in it.
    dataControl().deleteRecord(
        "PRAGMA writable_schema=1; update sqlite_master set sql=replace(sql,"
        "'T_RunStartTime VERCHAR(30)','T_RunStartTime text collate unknown')");
    QCOMPARE(replayKeptLines(path).runsNotStored, runCount);
    QCOMPARE(storedRuns(), runCount - 1);
  }

  void lastingCopies() {
    const QString path = keptFile();
    const QDateTime end(QDate(2024, 5, 18), QTime(6, 30, 1));
    const QStringList lines(100, "00 01");
    QVERIFY(keepDownload(path, lines).isNull());
    // A disk that has no room left takes a second name for the file, but no second file.
    const FullDisk full(100);
    const LastingCopy first = keepForGood(path, lines, end);
    QCOMPARE(first.path, folder_->filePath("lastDownload-20240518063001.txt"));
    // Another watch's download has replaced the file in the meantime, within the same second.
    const LastingCopy second = keepForGood(path, {"02 03"}, end);
    QCOMPARE(second.path, folder_->filePath("lastDownload-20240518063001-2.txt"));
    QCOMPARE(QFile(second.path).size(), 6);
    QVERIFY(!keepDownload(path, lines + lines).isNull());
    QCOMPARE(bytesOf(path), QByteArray("00 01\n").repeated(100));
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
