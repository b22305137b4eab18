#include "data/text.h"
#include "device/downloadDecoder.h"
#include "tools/watchsim/emulatedWatch.h"
#include "tools/watchsim/watchBlocks.h"
#include "tools/watchsim/watchMemory.h"

#include <QFileInfo>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <array>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QByteArray linkCommand = QByteArray(2, '\xEE') + QByteArray(30, '\0');
const QByteArray downloadCommand = QByteArray::fromHex("0808AAAA") + QByteArray(28, '\0');
const QByteArray eraseCommand = QByteArray(30, '\0') + QByteArray::fromHex("FFFD");

/// The program's side of the line.
class Client {
 public:
  explicit Client(const QString& path)
      : port_(::open(qPrintable(path), O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    termios attributes{};
    ::tcgetattr(port_, &attributes);
    ::cfmakeraw(&attributes);
    ::tcsetattr(port_, TCSANOW, &attributes);
    ::tcflush(port_, TCIFLUSH);
  }
  ~Client() { ::close(port_); }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  void write(const QByteArray& bytes) {
    QCOMPARE(::write(port_, bytes.constData(), static_cast<size_t>(bytes.size())), bytes.size());
  }
  /// Reads until `size` bytes came, the line has been quiet for `quiet` ms, or the watch hung up.
  QByteArray read(qsizetype size, int quiet = 2000) {
    QByteArray bytes;
    std::array<char, 100> buffer{};
    pollfd ready{port_, POLLIN, 0};
    while (bytes.size() < size && ::poll(&ready, 1, quiet) > 0) {
      const auto wanted = std::min(size - bytes.size(), static_cast<qsizetype>(buffer.size()));
      const ssize_t count = ::read(port_, buffer.data(), static_cast<size_t>(wanted));
      if (count <= 0) {
        break;
      }
      bytes.append(buffer.data(), count);
    }
    return bytes;
  }

 private:
  int port_;
};

QList<QByteArray> smallMemory() {
  return makeMemory({.seed = 7, .runs = 2, .pointsPerRun = 90, .today = QDate(2014, 5, 17)});
}

DecodedDownload decode(const QList<QByteArray>& memory) {
  QStringList lines;
  std::transform(memory.begin(), memory.end(), std::back_inserter(lines), lineFromBlock);
  DecodeContext context;
  context.zone = QTimeZone::utc();
  return decodeDownload(lines, context);
}

QString key(const QString& run, qint64 number) {
  return u"%1-%2"_s.arg(run).arg(number, 5, 10, QChar(u'0'));
}

qint32 secondsOf(const QString& clock) {
  return QTime(0, 0).secsTo(QTime::fromString(clock.first(8), u"HH:mm:ss"_s));
}

void checkLaps(const DownloadBatch& batch, const QString& runKey) {
  const runData run = batch.runMD.value(runKey);
  qint64 distance = 0;
  qint64 calories = 0;
  qint32 seconds = 0;
  for (qint32 number = 1; number <= run.T_RunLap; ++number) {
    QVERIFY(batch.lapMD.contains(key(runKey, number)));
    const lapData lap = batch.lapMD.value(key(runKey, number));
    distance += text::toInteger(lap.T_LapDistance);
    calories += text::toInteger(lap.T_LapCal);
    seconds += secondsOf(lap.T_LapTime);
    QVERIFY(lap.T_LapType.startsWith(u"AutoLap ") == (lap.T_LapDistance == u"100000"));
    QVERIFY(text::toInteger(lap.T_LapAvgSpeed) <= text::toInteger(lap.T_LapMaxSpeed));
    QVERIFY(text::toInteger(lap.T_LapMinHR) <= text::toInteger(lap.T_LapAvgHR) + 1);
    QVERIFY(text::toInteger(lap.T_LapAvgHR) <= text::toInteger(lap.T_LapMaxHR));
  }
  QCOMPARE(QString::number(distance), run.T_RunDistance);
  QCOMPARE(QString::number(calories), run.T_RunCal);
  QCOMPARE(seconds, secondsOf(run.T_RunExTime));
}

/// `pauses` counts the points that the map takes for the end of a rest.
void checkPoints(const DownloadBatch& batch, const QString& runKey, int& pauses) {
  const runData run = batch.runMD.value(runKey);
  trackPointData before;
  for (qint64 number = 1; number <= run.T_RunTrackPoint; ++number) {
    QVERIFY(batch.pointMD.contains(key(runKey, number)));
    const trackPointData point = batch.pointMD.value(key(runKey, number));
    QCOMPARE(point.T_Cnumber, run.T_Cnumber);
    const double north = text::toDouble(point.T_PointLatitudeN);
    const double east = text::toDouble(point.T_PointLongitudeN);
    if (number == 1) {
      QCOMPARE(point.T_PointLogSign, u"0"_s);
    } else {
      const qint32 passed = secondsOf(point.T_PointTime) - secondsOf(before.T_PointTime);
      QVERIFY(passed > 0);
      QVERIFY(text::toInteger(point.T_PointDistance) >= text::toInteger(before.T_PointDistance));
      pauses += passed > 60 && point.T_PointSpeed == u"0" ? 1 : 0;
    }
    if (before.T_PointLogSign == u"E") {
      QCOMPARE(point.T_PointLatSign, u"N"_s);
      QVERIFY(north > 35.6 && north < 35.8 && east > 139.6 && east < 139.9);
      // No jumps: less than some 35 m from one point to the next.
      QVERIFY(std::abs(north - text::toDouble(before.T_PointLatitudeN)) < 0.0003);
      QVERIFY(std::abs(east - text::toDouble(before.T_PointLongitudeN)) < 0.0004);
    }
    before = point;
  }
  QCOMPARE(before.T_PointDistance, run.T_RunDistance);
  QVERIFY(run.T_RunEndTime.endsWith(before.T_PointTime));
}

}  // namespace

class tst_watchsim : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void initTestCase() { QLoggingCategory::setFilterRules(u"trakko.*=false"_s); }
  void memoryDecodes_data();
  void memoryDecodes();
  void conversation_data();
  void conversation();
  void misbehaviour_data();
  void misbehaviour();
  void commandsAreFoundInAnyStream();
  void nextClientGetsItsOwnAnswer();
  void stopsWhileNobodyReads();
  void linkComesAndGoes();
};

void tst_watchsim::memoryDecodes_data() {
  QTest::addColumn<quint32>("seed");
  QTest::addColumn<qint32>("runs");
  QTest::addColumn<qint32>("points");
  QTest::newRow("as it comes") << 1U << 6 << 0;
  QTest::newRow("another seed") << 12345U << 6 << 0;
  QTest::newRow("many points") << 2U << 1 << 5000;
  QTest::newRow("many runs") << 3U << 60 << 60;
}

void tst_watchsim::memoryDecodes() {
  QFETCH(quint32, seed);
  QFETCH(qint32, runs);
  QFETCH(qint32, points);
  const MemoryOptions options{seed, runs, points, QDate(2014, 5, 17)};
  const QList<QByteArray> memory = makeMemory(options);
  QCOMPARE(makeMemory(options), memory);
  const DownloadBatch batch = decode(memory).batch;
  QCOMPARE(batch.runArr.size(), runs);
  int pauses = 0;
  QStringList starts;
  for (const QString& runKey : batch.runArr) {
    checkLaps(batch, runKey);
    checkPoints(batch, runKey, pauses);
    if (QTest::currentTestFailed()) {
      return;
    }
    starts.append(batch.runMD.value(runKey).T_RunStartTime);
  }
  QVERIFY(pauses >= runs);
  QVERIFY(std::is_sorted(starts.begin(), starts.end()));
  QVERIFY(starts.last().startsWith(u"2014-05-16 "));
}

void tst_watchsim::conversation_data() {
  QTest::addColumn<bool>("fullSpeed");
  QTest::addColumn<qint32>("smallest");
  QTest::addColumn<qint32>("largest");
  QTest::newRow("115200 baud") << false << 0 << 0;
  QTest::newRow("full speed") << true << 0 << 0;
  QTest::newRow("115200 baud in pieces") << false << 1 << 64;
  QTest::newRow("full speed in pieces") << true << 1 << 64;
}

void tst_watchsim::conversation() {
  QFETCH(bool, fullSpeed);
  QFETCH(qint32, smallest);
  QFETCH(qint32, largest);
  // More than the line holds, so that the watch has to wait for its reader at full speed.
  const QList<QByteArray> memory =
      makeMemory({.runs = 2, .pointsPerRun = fullSpeed ? 3000 : 60, .today = QDate(2014, 5, 17)});
  EmulatedWatch watch({.memory = memory,
                       .fullSpeed = fullSpeed,
                       .smallestPiece = smallest,
                       .largestPiece = largest});
  QCOMPARE(watch.start(), QString());
  Client client(watch.path());
  client.write(linkCommand);
  QCOMPARE(client.read(36), identityBlock());
  const QByteArray whole = memory.join() + endMarkerBlock();
  client.write(downloadCommand);
  QVERIFY(client.read(whole.size()) == whole);
  QCOMPARE(watch.blocks(), memory);
  client.write(eraseCommand);
  client.write(downloadCommand);
  QCOMPARE(client.read(whole.size(), 300), endMarkerBlock());
  QVERIFY(watch.blocks().isEmpty());
  QCOMPARE(watch.commands(), QStringList({u"link"_s, u"download"_s, u"erase"_s, u"download"_s}));
  QTRY_COMPARE(watch.finishedDownloads(), 2);
  QCOMPARE(watch.bytesSent(), whole.size() + 72);
}

void tst_watchsim::misbehaviour_data() {
  QTest::addColumn<EmulatedWatchOptions>("options");
  QTest::addColumn<QByteArray>("linkAnswer");
  QTest::addColumn<QByteArray>("download");  // null: as long as a good one, but another
  const QList<QByteArray> memory = smallMemory();
  const QByteArray data = memory.join();
  const auto row = [&](const char* name, EmulatedWatchOptions options, const QByteArray& download,
                       const QByteArray& linkAnswer = identityBlock()) {
    options.memory = memory;
    options.fullSpeed = true;
    QTest::newRow(name) << options << linkAnswer << download;
  };
  row("silent", {.isSilent = true}, QByteArray(""), QByteArray(""));
  row("no answer to link", {.answersLink = false}, data + endMarkerBlock(), QByteArray(""));
  row("no end marker", {.sendsEndMarker = false}, data);
  row("only two blocks", {.onlyBlocks = 2}, data.first(72) + endMarkerBlock());
  row("only more than there is", {.onlyBlocks = 9999}, data + endMarkerBlock());
  row("garbage", {.sendsGarbage = true}, QByteArray());
  row("hangs up", {.hangUpAfter = 1000}, data.first(1000));
}

void tst_watchsim::misbehaviour() {
  QFETCH(EmulatedWatchOptions, options);
  QFETCH(QByteArray, download);
  EmulatedWatch watch(options);
  QCOMPARE(watch.start(), QString());
  Client client(watch.path());
  client.write(linkCommand);
  QTEST(client.read(36, 200), "linkAnswer");
  client.write(downloadCommand);
  const QByteArray received = client.read(options.memory.size() * 36 + 100, 200);
  if (download.isNull()) {
    const QByteArray good = options.memory.join() + endMarkerBlock();
    QCOMPARE(received.size(), good.size());
    QVERIFY(received.endsWith(endMarkerBlock()) && received.first(72) != good.first(72));
  } else if (options.hangUpAfter) {
    // What the program had not read yet when the line went dead is lost.
    QVERIFY(download.startsWith(received));
    QTRY_VERIFY(!watch.isRunning());
    QCOMPARE(watch.bytesSent(), 36 + *options.hangUpAfter);
  } else {
    QVERIFY(received == download);
  }
}

void tst_watchsim::commandsAreFoundInAnyStream() {
  const QByteArray disconnectCommand = QByteArray(4, '\xFF') + QByteArray(28, '\0');
  const QByteArray agpsCommand = "AGPSST" + QByteArray(26, '\0');
  const QByteArray stream = "\xEE" + linkCommand + downloadCommand.first(16) + disconnectCommand +
                            eraseCommand + "noise" + agpsCommand + downloadCommand;
  const QList<WatchCommand> expected{WatchCommand::unknown,   WatchCommand::link,
                                     WatchCommand::unknown,   WatchCommand::disconnect,
                                     WatchCommand::erase,     WatchCommand::unknown,
                                     WatchCommand::agpsStart, WatchCommand::downloadAll};
  for (const qsizetype piece : {1, 5, 32, 33, 1000}) {
    CommandReader reader;
    QList<WatchCommand> found;
    for (qsizetype i = 0; i < stream.size(); i += piece) {
      found.append(reader.take(stream.mid(i, piece)));
    }
    QCOMPARE(found, expected);
  }
}

void tst_watchsim::nextClientGetsItsOwnAnswer() {
  EmulatedWatch watch({.memory = smallMemory()});
  QCOMPARE(watch.start(), QString());
  for (int round = 0; round < 5; ++round) {
    {
      Client leaving(watch.path());
      leaving.write(downloadCommand);
      QCOMPARE(leaving.read(50).size(), 50);
    }
    Client next(watch.path());
    next.write(linkCommand);
    QCOMPARE(next.read(100, 100), identityBlock());
  }
}

void tst_watchsim::stopsWhileNobodyReads() {
  EmulatedWatch watch({.memory = makeMemory({.pointsPerRun = 2000}), .fullSpeed = true});
  QCOMPARE(watch.start(), QString());
  Client client(watch.path());
  client.write(downloadCommand);
  QTRY_VERIFY(watch.bytesSent() > 2000);
  watch.stop();
  QVERIFY(!watch.isRunning());
  QCOMPARE(watch.start(), QString());  // a new port; the memory is still there
  QVERIFY(watch.isRunning() && !watch.blocks().isEmpty());
}

void tst_watchsim::linkComesAndGoes() {
  const QTemporaryDir folder;
  const QString link = folder.filePath(u"watch"_s);
  EmulatedWatch left({.link = link});
  QCOMPARE(left.start(), QString());
  {
    EmulatedWatch watch({.link = link});
    QCOMPARE(watch.start(), QString());
    QCOMPARE(QFileInfo(link).symLinkTarget(), watch.path());
  }
  QVERIFY(!QFileInfo(link).isSymLink());
  QFile file(link);
  QVERIFY(file.open(QIODevice::WriteOnly) && file.write("precious") == 8);
  file.close();
  EmulatedWatch refused({.link = link});
  QVERIFY(!refused.start().isNull());
  QCOMPARE(file.size(), 8);
}

QTEST_APPLESS_MAIN(tst_watchsim)
#include "tst_watchsim.moc"
