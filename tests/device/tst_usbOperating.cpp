#include "data/bundle.h"
#include "data/dataControl.h"
#include "device/detachThread.h"
#include "device/usbOperating.h"
#include "fakeRegistry.h"
#include "pseudoTerminal.h"
#include "tools/watchsim/emulatedWatch.h"
#include "tools/watchsim/watchBlocks.h"
#include "tools/watchsim/watchMemory.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <future>
#include <optional>

namespace {

const QString notRecognised = QStringLiteral("時計を認識出来ません、再度USB接続を確認して下さい。");
const QString noData = QStringLiteral("データが見当たりません、USBの接続を確認して下さい。");

const QByteArray unknownBlock(36, '\x12');
const QByteArray headerBlock =
    QByteArray(32, '\x11') + QByteArray::fromHex("0000") + QByteArray("\x07\xFD");

EmulatedWatchOptions goodWatch(const QList<QByteArray>& memory) {
  EmulatedWatchOptions options;
  options.memory = memory;
  options.fullSpeed = true;
  return options;
}

QList<QByteArray> someRuns() {
  MemoryOptions options;
  options.runs = 2;
  options.pointsPerRun = 50;
  options.today = QDate(2024, 5, 18);
  return makeMemory(options);
}

QStringList lines(usbOperating& usb) {
  const std::lock_guard lock(usb.chStrMutex);
  return {usb.chStr.cbegin(), usb.chStr.cend()};
}

QList<QByteArray> blocksInFile(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? blocksFromLines(QString::fromLatin1(file.readAll()))
                                        : QList<QByteArray>();
}

}  // namespace

class tst_usbOperating : public QObject {
  Q_OBJECT

  std::shared_ptr<FakeRegistry> registry_;
  std::shared_ptr<RecordedDialogs> dialogs_;
  std::optional<QTemporaryDir> folder_;
  DeviceEnvironment environment_;

  std::shared_ptr<usbOperating> object(const std::shared_ptr<WatchSession>& session = nullptr) {
    return usbOperating::create(environment_, session);
  }
  /// One download as the application makes it.
  qint32 download() {
    const auto session = std::make_shared<WatchSession>();
    return object(session)->linkCommand() ? object(session)->getAllData() : -99;
  }
  QString keptFile() const { return environment_.lastDownloadPath; }

 private Q_SLOTS:
  void init() {
    folder_.emplace();
    const QString bundle = folder_->filePath(QStringLiteral("Trakko.app"));
    setMainBundle({bundle, QStringLiteral("Trakko")});
    registry_ = std::make_shared<FakeRegistry>();
    dialogs_ = std::make_shared<RecordedDialogs>();
    environment_ = {registry_, dialogs_, 1.0,
                    folder_->filePath(QStringLiteral("lastDownload.txt"))};
  }
  /// No test leaves a thread behind: closing the line ends them all.
  void cleanup() { QTRY_COMPARE(detachedThreadCount(), 0); }

  void resultCodes_data() {
    QTest::addColumn<QList<QByteArray>>("memory");
    QTest::addColumn<bool>("silent");
    QTest::addColumn<qint32>("code");
    QTest::addColumn<qsizetype>("keptLines");
    const auto row = [](const char* name, const QList<QByteArray>& memory, qint32 code) {
      QTest::newRow(name) << memory << false << code << (memory.size() > 2 ? memory.size() : 0);
    };
    row("stored", someRuns(), 1);
    row("nothing at all", {}, 4);
    row("two lines", {unknownBlock, headerBlock}, 4);
    row("no run line", {3, unknownBlock}, -1);
    row("a run without laps", {unknownBlock, unknownBlock, headerBlock}, 88);
    QTest::newRow("silent") << someRuns() << true << 2 << qsizetype(0);
  }
  void resultCodes() {
    QFETCH(QList<QByteArray>, memory);
    QFETCH(bool, silent);
    EmulatedWatchOptions options = goodWatch(memory);
    options.isSilent = silent;
    EmulatedWatch watch(options);
    QVERIFY(watch.start().isNull());
    registry_->plugWatch(watch.path());
    const auto usb = object();
    QTEST(usb->getAllData(), "code");
    QCOMPARE(usb->checkStop.load(), true);
    QCOMPARE(usb->downloadFail.load(), silent);
    QCOMPARE(usb->serialFileDescriptor == -1, !silent);
    QTEST(blocksInFile(keptFile()).size(), "keptLines");
    if (!silent) {
      QCOMPARE(dialogs_->take(), QStringList());
    }
  }

  void downloadsAsTheApplicationDoes_data() {
    QTest::addColumn<qint32>("largestPiece");
    QTest::newRow("whole blocks") << 0;
    QTest::newRow("cut to pieces") << 64;
  }
  void downloadsAsTheApplicationDoes() {
    QFETCH(qint32, largestPiece);
    EmulatedWatchOptions options = goodWatch(someRuns());
    options.smallestPiece = largestPiece == 0 ? 0 : 1;
    options.largestPiece = largestPiece;
    EmulatedWatch watch(options);
    QVERIFY(watch.start().isNull());
    registry_->plugWatch(watch.path());
    QCOMPARE(download(), 1);
    QCOMPARE(download(), 88);  // nothing new
    QCOMPARE(watch.commands().count(QStringLiteral("link")), 2);
    dataControl store;
    QCOMPARE(store.getRunData(QStringLiteral("ALL"), QString()).size(), 2);
    QCOMPARE(store.getTrackData(1).size(), 50);
    store.close_db();
    QCOMPARE(blocksInFile(keptFile()), someRuns());
  }

  void emptyDownloadsKeepTheLastOne() {
    EmulatedWatch watch(goodWatch({4, unknownBlock}));
    QVERIFY(watch.start().isNull());
    registry_->plugWatch(watch.path());
    QCOMPARE(download(), -1);
    const qint64 size = QFileInfo(keptFile()).size();
    QVERIFY(size > 0);
    watch.stop();
    EmulatedWatch empty(goodWatch({}));
    QVERIFY(empty.start().isNull());
    registry_->plugWatch(empty.path());
    QCOMPARE(download(), 4);
    QCOMPARE(QFileInfo(keptFile()).size(), size);
  }

  /// The end marker arrives between the loop's look at downloadDataFinish and the next wait's
  /// clearing of getDataOK: that wait runs out.
  void endMarkerMissed() {
    EmulatedWatchOptions options = goodWatch({5, unknownBlock});
    options.sendsEndMarker = false;
    EmulatedWatch watch(options);
    QVERIFY(watch.start().isNull());
    registry_->plugWatch(watch.path());
    const auto usb = object();
    auto code = std::async(std::launch::async, [usb] { return usb->getAllData(); });
    QTRY_VERIFY(usb->downloadFail);  // a wait without blocks is on
    usb->downloadDataFinish = true;
    QCOMPARE(code.get(), 3);
    QCOMPARE(blocksInFile(keptFile()).size(), 5);
  }

  void linkWithoutPort() {
    QCOMPARE(object()->linkCommand(), false);
    QCOMPARE(dialogs_->take(), QStringList{notRecognised});
  }

  void linkWithoutAnswer() {
    EmulatedWatchOptions options = goodWatch({});
    options.answersLink = false;
    EmulatedWatch watch(options);
    QVERIFY(watch.start().isNull());
    registry_->plugWatch(watch.path());
    const auto usb = object();
    QCOMPARE(usb->linkCommand(), true);
    QCOMPARE(dialogs_->take(), QStringList{noData});
    QVERIFY(usb->serialFileDescriptor >= 0);  // keeps the number of the closed port
    QTRY_VERIFY(!usb->readThreadRunning);
    usb->lostLink();
    QCOMPARE(watch.commands(), QStringList{QStringLiteral("link")});
    QCOMPARE(object()->getAllData(), 4);
  }

  /// What an erase or an unanswered conversation left open gives way to the next conversation.
  void openPortsGiveWay_data() {
    QTest::addColumn<bool>("erase");
    QTest::newRow("after an erase") << true;
    QTest::newRow("after no answer") << false;
  }
  void openPortsGiveWay() {
    QFETCH(bool, erase);
    const PseudoTerminal line;
    registry_->plugWatch(line.path);
    const auto usb = object(std::make_shared<WatchSession>());
    if (erase) {
      usb->deleteAllData();
      QCOMPARE(line.receive(32), QByteArray(30, '\0') + "\xFF\xFD");
    } else {
      QCOMPARE(usb->getAllData(), 2);
      line.receive(32);
    }
    QVERIFY(usb->readThreadRunning);
    line.send(unknownBlock);
    const auto next = object();
    auto linked = std::async(std::launch::async, [next] { return next->linkCommand(); });
    QCOMPARE(line.receive(32).first(2), QByteArray("\xEE\xEE"));
    QCOMPARE(usb->serialFileDescriptor.load(), -1);
    QVERIFY(!usb->readThreadRunning);
    line.send(unknownBlock);  // the first block goes to the new reader
    QVERIFY(linked.get());
    QVERIFY(next->getDataOK);
    QCOMPARE(dialogs_->take(), QStringList());
  }

  void aRunningDownloadKeepsThePort() {
    const PseudoTerminal line;
    registry_->plugWatch(line.path);
    const auto session = std::make_shared<WatchSession>();
    const auto link = object(session);
    auto linked = std::async(std::launch::async, [&] { return link->linkCommand(); });
    line.receive(32);
    line.send(unknownBlock);
    QVERIFY(linked.get());
    const auto second = object(std::make_shared<WatchSession>());
    QCOMPARE(second->linkCommand(), false);  // between link and download
    QCOMPARE(second->linkObstacle.load(), LinkObstacle::portInUse);

    auto code = std::async(std::launch::async, [&] { return object(session)->getAllData(); });
    QCOMPARE(line.receive(32).first(4), QByteArray("\x08\x08\xAA\xAA"));
    line.send(headerBlock);
    QCOMPARE(object()->linkCommand(), false);  // during the download
    QCOMPARE(object()->getAllData(), 2);
    QCOMPARE(dialogs_->take(), (QStringList{notRecognised, notRecognised}));
    line.send(unknownBlock + unknownBlock + endMarkerBlock());
    QCOMPARE(code.get(), 88);
  }

  void aDownloadWithoutSessionKeepsThePort() {
    const PseudoTerminal line;
    registry_->plugWatch(line.path);
    auto code = std::async(std::launch::async, [this] { return object()->getAllData(); });
    line.receive(32);
    QCOMPARE(object()->openSerialPort(line.path, 115200),
             QStringLiteral("Error: couldn't obtain lock on serial port"));
    line.send(endMarkerBlock());
    QCOMPARE(code.get(), 4);
  }

  /// A download whose line is gone can never end; it must not keep the next one out.
  void anUnpluggedDownloadGivesWay() {
    auto line = std::make_optional<PseudoTerminal>();
    const QString path = line->path;
    registry_->plugWatch(path);
    const auto session = std::make_shared<WatchSession>();
    const auto usb = object(session);
    auto code = std::async(std::launch::async, [&] { return usb->getAllData(); });
    line->receive(32);
    line->send(headerBlock + "half a block");
    QTRY_COMPARE(lines(*usb).size(), 2);
    line.reset();
    QTRY_VERIFY(!usb->readThreadRunning);
    line.emplace();
    if (line->path == path) {
      auto linked = std::async(std::launch::async, [this] { return object()->linkCommand(); });
      QCOMPARE(line->receive(32).size(), 32);
      line->send(unknownBlock);
      QVERIFY(linked.get());
    }
    usb->downloadDataFinish = true;  // let the first one go
    QCOMPARE(code.get(), 3);
    QVERIFY(lines(*usb)[1].startsWith(QStringLiteral("68 61 6C 66")));
  }

  /// Bytes of an earlier block stand behind a short one; zeros behind the first.
  void shortBlocks() {
    const PseudoTerminal line;
    registry_->plugWatch(line.path);
    const auto usb = object();
    usb->getDataType = 1;
    usb->findDevice(60000);
    usb->SendCommandStr();
    QCOMPARE(line.receive(32).first(4), QByteArray("\x08\x08\xAA\xAA"));
    line.send("\x01\x02");
    QTRY_COMPARE(lines(*usb).size(), 1);
    QCOMPARE(lines(*usb)[0], QStringLiteral("01 02") + QStringLiteral(" 00").repeated(34));
    line.send(QByteArray(36, '\x33'));
    QTRY_COMPARE(lines(*usb).size(), 2);
    usb->DataFinishCheck();
    QCOMPARE(dialogs_->take(), QStringList{QStringLiteral("データがありません。")});
    line.send("\x44");
    QTRY_COMPARE(lines(*usb).size(), 3);
    QCOMPARE(lines(*usb)[2], QStringLiteral("44") + QStringLiteral(" 33").repeated(35));
    usb->DataFinishCheck();
    QVERIFY(usb->checkStop);
    usb->getDataType = 0;
    usb->SendCommandStr();
    QCOMPARE(line.receive(32), QByteArray(32, '\0'));
    const quint8 single = 0x5A;
    usb->writeByte(&single);
    QCOMPARE(line.receive(1), QByteArray("Z"));
    usb->closeMyDevice();
    usb->writeByte(&single);
    QCOMPARE(line.receive(1, 50), QByteArray());
  }

  void droppedModes() {
    const PseudoTerminal line;
    registry_->plugWatch(line.path);
    const auto usb = object();
    usb->findDevice(60000);
    usb->lostLink();
    QCOMPARE(line.receive(32).first(4), QByteArray(4, '\xFF'));
    usb->checkTransmission();
    QVERIFY(usb->downloadFail);
    line.send(unknownBlock);
    usb->checkTransmission();
    QVERIFY(!usb->getDataOK && usb->chStr.isEmpty());
    usb->closeMyDevice();
  }

  /// After the download has ended, its object erases the watch at once.
  void eraseAfterDownload() {
    EmulatedWatch watch(goodWatch(someRuns()));
    QVERIFY(watch.start().isNull());
    registry_->plugWatch(watch.path());
    auto session = std::make_shared<WatchSession>();
    const auto usb = object(session);
    QCOMPARE(usb->getAllData(), 1);
    session.reset();
    usb->deleteAllData();
    QTRY_VERIFY(watch.blocks().isEmpty());
    QVERIFY(usb->readThreadRunning);
    QCOMPARE(download(), 4);
  }

  void ownThreads() {
    EmulatedWatch watch(goodWatch(someRuns()));
    QVERIFY(watch.start().isNull());
    registry_->plugWatch(watch.path());
    const auto usb = object();
    usb->getAllDataOK = true;
    usb->threadGetAllData();
    QTRY_VERIFY(usb->checkStop && detachedThreadCount() == 0);
    QVERIFY(!usb->getAllDataOK);
    QCOMPARE(usb->runArr.size(), 2);
    dataControl().deleteAllData();
    usb->alertEnded({}, 0, nullptr);
    usb->runArr.clear();
    usb->alertEnded({}, 1, nullptr);
    QCOMPARE(usb->runArr.size(), 2);
    usb->getDataType = 1;
    usb->findDevice(60000);
    usb->tempSendThread();
    QTRY_COMPARE(watch.finishedDownloads(), 2);
    QTRY_VERIFY(usb->downloadDataFinish);
  }
};

QTEST_GUILESS_MAIN(tst_usbOperating)
#include "tst_usbOperating.moc"
