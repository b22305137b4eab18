#include "base/detachThread.h"
#include "device/downloadResult.h"
#include "device/lastDownload.h"
#include "linkTest.h"
#include "pseudoTerminal.h"
#include "tests/columns.h"
#include "tools/watchsim/watchBlocks.h"

namespace {

const QByteArray headerBlock = QByteArray(32, '\x11') + QByteArray::fromHex("000007FD");

QList<QByteArray> someRuns(const QDate& today = QDate(2024, 5, 18)) {
  return makeMemory({.runs = 2, .pointsPerRun = 50, .today = today});
}

/// The points of each stored run, by its number.
QString storedPoints() {
  dataControl store;
  QMap<qint64, qsizetype> points;
  for (const runData& run : store.getRunData("ALL", QString())) {
    points[run.T_Cnumber] = store.getTrackData(static_cast<qint32>(run.T_Cnumber)).size();
  }
  QStringList parts;
  for (auto run = points.cbegin(); run != points.cend(); ++run) {
    parts << QString("%1:%2").arg(run.key()).arg(run.value());
  }
  return parts.join(' ');
}

QStringList lines(usbOperating& usb) {
  const std::lock_guard lock(usb.chStrMutex);
  return {usb.chStr.cbegin(), usb.chStr.cend()};
}

}  // namespace

class tst_usbOperating : public LinkTest {
  Q_OBJECT

  using Session = std::shared_ptr<WatchSession>;

  std::optional<PseudoTerminal> line_;  // plugged until an emulated watch is

  std::shared_ptr<usbOperating> object(const Session& session = nullptr) {
    return usbOperating::create(environment(), session);
  }
  /// One download as the application makes it.
  qint32 download() {
    const auto session = std::make_shared<WatchSession>();
    return object(session)->linkCommand() ? object(session)->getAllData() : -99;
  }

 private Q_SLOTS:
  void init() {
    startAnew();
    line_.emplace();
    registry_->plugWatch(line_->path);
  }
  /// No test leaves a thread behind: the line's end ends them all.
  void cleanup() {
    line_.reset();
    QTRY_COMPARE(detachedThreadCount(), 0);
  }

  void resultCodes_data() {
    const auto row = columns<QList<QByteArray>, qint32>("memory", "code");
    row("stored", someRuns(), downloadResult::stored);
    row("silent", someRuns(), downloadResult::noAnswer);
    row("nothing at all", QList<QByteArray>(), downloadResult::noRecords);
    row("two lines", {unknownBlock, headerBlock}, downloadResult::noRecords);
    row("no run line", {3, unknownBlock}, downloadResult::notStored);
    row("no laps", {unknownBlock, unknownBlock, headerBlock}, downloadResult::noRunCompleted);
  }
  void resultCodes() {
    QFETCH(QList<QByteArray>, memory);
    QFETCH(qint32, code);
    const bool silent = code == downloadResult::noAnswer;
    const QByteArray earlier(36, '\x55');
    QVERIFY(keepDownload(keptFile(), {lineFromBlock(earlier)}).isNull());
    const auto watch = plug({.memory = memory, .isSilent = silent});
    const auto usb = object();
    QCOMPARE(usb->getAllData(), code);
    QVERIFY(usb->checkStop);
    QCOMPARE(usb->downloadFail.load(), silent);
    QCOMPARE(usb->serialFileDescriptor == -1, !silent);
    QCOMPARE(blocksIn(keptFile()),
             silent || memory.size() <= 2 ? QList<QByteArray>{earlier} : memory);
    QCOMPARE(messages_->take(), QStringList());
  }

  void downloadsAndErasesAsTheApplicationDoes() {
    const auto watch = plug({.memory = someRuns(), .smallestPiece = 1, .largestPiece = 64});
    QCOMPARE(download(), downloadResult::stored);
    QCOMPARE(storedPoints(), "1:50 2:50");
    Session session = std::make_shared<WatchSession>();
    QVERIFY(object(session)->linkCommand());
    const auto usb = object(session);
    QCOMPARE(usb->getAllData(), downloadResult::noRunCompleted);  // nothing new
    // After the download has ended, its object erases the watch at once.
    session.reset();
    usb->deleteAllData();
    QVERIFY(usb->eraseSent);
    QTRY_VERIFY(watch->blocks().isEmpty());
    QVERIFY(usb->readThreadRunning);
    QCOMPARE(download(), downloadResult::noRecords);
    QCOMPARE(watch->commands().count("link"), 3);
    QCOMPARE(blocksIn(keptFile()), someRuns());

    // New runs get numbers of their own, and what the watch tells of itself.
    const auto later = plug({.memory = someRuns(QDate(2024, 6, 18))});
    const auto known = object();
    QByteArray identity = identityBlock();
    known->getWatchInfo(std::span(reinterpret_cast<const quint8*>(identity.constData()), 36), 0);
    QCOMPARE(known->getAllData(), downloadResult::stored);
    QCOMPARE(storedPoints(), "1:50 2:50 3:50 4:50");
    QCOMPARE(known->runMD.cbegin()->T_RunAlti, "0");
    QCOMPARE(known->runMD.cbegin()->T_IdNumber, known->idNoStr);
    QVERIFY(!known->idNoStr.isNull());
    later->stop();
    known->deleteAllData();
    QVERIFY(!known->eraseSent);
  }

  void aRunningDownloadKeepsThePort() {
    const auto watch = plug({.memory = {5, unknownBlock}, .sendsEndMarker = false});
    Session session = std::make_shared<WatchSession>();
    const auto link = object(session);
    QVERIFY(link->linkCommand() && link->serialFileDescriptor >= 0);
    QTRY_VERIFY(!link->readThreadRunning);
    const auto second = object(std::make_shared<WatchSession>());
    QCOMPARE(second->linkCommand(), false);  // between link and download
    QCOMPARE(second->linkObstacle.load(), LinkObstacle::conversing);
    session.reset();  // without one, the command protects the port
    const auto usb = object();
    auto code = inBackground([usb] { return usb->getAllData(); });
    QTRY_COMPARE(lines(*usb).size(), 5);
    QCOMPARE(object()->getAllData(), downloadResult::noAnswer);
    QCOMPARE(object()->openSerialPort(watch->path(), 115200),
             "Error: couldn't obtain lock on serial port");
    QCOMPARE(messages_->take(), QStringList{notRecognised});

    // As if the end marker arrived between the loop's look at downloadDataFinish and the next
    // wait's clearing of getDataOK: that wait runs out.
    QTRY_VERIFY(usb->downloadFail);
    usb->downloadDataFinish = true;
    QCOMPARE(code.get(), downloadResult::endMissed);
    QCOMPARE(blocksIn(keptFile()).size(), 5);
  }

  void linksThatFail() {
    registry_->usb.clear();
    QCOMPARE(object()->linkCommand(), false);
    QCOMPARE(messages_->take(), QStringList{notRecognised});
    const auto watch = plug({.answersLink = false});
    const auto usb = object();
    QCOMPARE(usb->linkCommand(), true);
    QCOMPARE(messages_->take(), QStringList{noData});
    QVERIFY(usb->serialFileDescriptor >= 0);  // keeps the number of the closed port
    QTRY_VERIFY(!usb->readThreadRunning);
    usb->lostLink();  // nothing is sent
    // The receive thread's flags come in an order that hardly a wait misses: the marker would have
    // to arrive between the loop's look at the one and the clearing of the other.
    int missed = 0;
    for (int i = 0; i < 30; ++i) {
      missed += object()->getAllData() == downloadResult::noRecords ? 0 : 1;
    }
    QVERIFY2(missed < 3, qPrintable(QString::number(missed)));
    QCOMPARE(watch->commands().mid(0, 2), (QStringList{"link", "download"}));
  }

  void aSlowAnswerIsHeard() {
    DeviceEnvironment usual;
    usual.registry = registry_;
    const auto usb = usbOperating::create(usual);
    auto linked = inBackground([usb] { return usb->linkCommand(); });
    line_->receive(32);
    QTest::qWait(300);
    line_->send(unknownBlock);
    QVERIFY(linked.get());
    QVERIFY(usb->getDataOK);
  }

  /// What an unanswered conversation left open gives way to the next one.
  void openPortsGiveWay() {
    const auto usb = object(std::make_shared<WatchSession>());
    usb->threadGetAllData();
    QCOMPARE(line_->receive(32).first(4), "\x08\x08\xAA\xAA");
    QTRY_VERIFY(usb->checkStop && detachedThreadCount() == 1);
    QVERIFY(usb->readThreadRunning);
    line_->send(unknownBlock);
    const auto next = object();
    auto linked = inBackground([next] { return next->linkCommand(); });
    QCOMPARE(line_->receive(32).first(2), "\xEE\xEE");
    QCOMPARE(usb->serialFileDescriptor.load(), -1);
    QVERIFY(!usb->readThreadRunning);
    line_->send(unknownBlock);  // the first block goes to the new reader
    QVERIFY(linked.get() && next->getDataOK);
    QCOMPARE(messages_->take(), QStringList());
  }

  /// A download whose line is gone can never end; it must not keep the next one out.
  void anUnpluggedDownloadGivesWay() {
    const QString path = line_->path;
    const auto session = std::make_shared<WatchSession>();
    const auto usb = object(session);
    auto code = inBackground([&] { return usb->getAllData(); });
    line_->receive(32);
    line_->send(headerBlock + "half a block");
    QTRY_COMPARE(lines(*usb).size(), 2);
    const int number = usb->serialFileDescriptor;
    line_.reset();
    QTRY_VERIFY(!usb->readThreadRunning);
    QVERIFY(::fcntl(number, F_GETFD) == -1);  // else the system could not hand the port out again
    line_.emplace();
    if (line_->path == path) {
      auto linked = inBackground([this] { return object()->linkCommand(); });
      QCOMPARE(line_->receive(32).size(), 32);
      line_->send(unknownBlock);
      QVERIFY(linked.get());
    }
    usb->downloadDataFinish = true;  // let the first one go
    QCOMPARE(code.get(), downloadResult::endMissed);
    QVERIFY(lines(*usb)[1].startsWith("68 61 6C 66"));
  }

  /// Bytes of an earlier block stand behind a short one, zeros behind the first; in other modes
  /// blocks are dropped and end no wait.
  void linesByMode() {
    const auto usb = object();
    usb->findDevice(60000);
    usb->getDataType = 1;
    usb->SendCommandStr();
    QCOMPARE(line_->receive(32).first(4), "\x08\x08\xAA\xAA");
    line_->send("\x01\x02");
    QTRY_COMPARE(lines(*usb).size(), 1);
    line_->send(QByteArray(36, '\x33') + "\x44");
    QTRY_COMPARE(lines(*usb).size(), 3);
    QCOMPARE(lines(*usb)[0], "01 02" + QString(" 00").repeated(34));
    QCOMPARE(lines(*usb)[2], "44" + QString(" 33").repeated(35));
    QCOMPARE(usb->shortBlocks.load(), 2);
    usb->lostLink();
    QCOMPARE(line_->receive(32).first(4), "\xFF\xFF\xFF\xFF");
    auto wait = inBackground([usb] { usb->checkTransmission(); });
    line_->send(unknownBlock);
    wait.get();
    QVERIFY(usb->downloadFail && !usb->getDataOK);
    QCOMPARE(lines(*usb).size(), 3);
    usb->closeMyDevice();
  }
};

QTEST_GUILESS_MAIN(tst_usbOperating)
#include "tst_usbOperating.moc"
