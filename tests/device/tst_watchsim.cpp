#include "base/text.h"
#include "device/downloadDecoder.h"
#include "device/serialPort.h"
#include "pseudoTerminal.h"
#include "tools/watchsim/emulatedWatch.h"
#include "tools/watchsim/watchBlocks.h"
#include "tools/watchsim/watchMemory.h"

#include <QFileInfo>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <tuple>

namespace {

const QByteArray linkCommand = QByteArray("\xEE\xEE").leftJustified(32, '\0');
const QByteArray downloadCommand = QByteArray("\x08\x08\xAA\xAA").leftJustified(32, '\0');
const QByteArray eraseCommand = QByteArray("\xFF\xFD").rightJustified(32, '\0');

/// The program's side of the line.
struct Client : SerialPort {
  explicit Client(const EmulatedWatch& watch) { QCOMPARE(open(watch.path(), 115200), QString()); }

  QByteArray ask(const QByteArray& command, qsizetype size, int quiet = 2000) {
    write(std::as_bytes(std::span(command.constData(), size_t(command.size()))));
    return receiveBytes(descriptor, size, quiet);
  }
};

QList<QByteArray> memoryOf(qint32 points) {
  return makeMemory({.seed = 7, .runs = 2, .pointsPerRun = points, .today = QDate(2014, 5, 17)});
}

QString key(const QString& run, qint64 number) {
  return QString("%1-%2").arg(run).arg(number, 5, 10, QChar(u'0'));
}

qint32 secondsOf(const QString& clock) {
  return QTime(0, 0).secsTo(QTime::fromString(clock.first(8), "HH:mm:ss"));
}

void checkLaps(const DownloadBatch& batch, const QString& runKey) {
  const runData run = batch.runMD.value(runKey);
  qint64 distance = 0;
  qint32 seconds = 0;
  for (qint32 number = 1; number <= run.T_RunLap; ++number) {
    const lapData lap = batch.lapMD.value(key(runKey, number));
    distance += text::toInteger(lap.T_LapDistance);
    seconds += secondsOf(lap.T_LapTime);
    QCOMPARE(lap.T_LapType.startsWith("AutoLap "), lap.T_LapDistance == "100000");
    QVERIFY(text::toInteger(lap.T_LapAvgHR) <= text::toInteger(lap.T_LapMaxHR));
  }
  QCOMPARE(QString::number(distance), run.T_RunDistance);
  QCOMPARE(seconds, secondsOf(run.T_RunExTime));
}

void checkPoints(const DownloadBatch& batch, const QString& runKey) {
  const runData run = batch.runMD.value(runKey);
  trackPointData before = batch.pointMD.value(key(runKey, 1));
  QCOMPARE(before.T_PointLogSign, "0");
  int pauses = 0;  // points that the map takes for the end of a rest
  for (qint64 number = 2; number <= run.T_RunTrackPoint; ++number) {
    const trackPointData point = batch.pointMD.value(key(runKey, number));
    const qint32 passed = secondsOf(point.T_PointTime) - secondsOf(before.T_PointTime);
    QVERIFY(passed > 0);
    QVERIFY(text::toInteger(point.T_PointDistance) >= text::toInteger(before.T_PointDistance));
    pauses += passed > 60 && point.T_PointSpeed == "0" ? 1 : 0;
    if (before.T_PointLogSign == "E") {
      // In Tokyo, and less than some 35 m from one point to the next.
      const double north = text::toDouble(point.T_PointLatitudeN);
      const double east = text::toDouble(point.T_PointLongitudeN);
      QVERIFY(north > 35.6 && north < 35.8 && east > 139.6 && east < 139.9);
      QVERIFY(std::abs(north - text::toDouble(before.T_PointLatitudeN)) < 0.0003);
      QVERIFY(std::abs(east - text::toDouble(before.T_PointLongitudeN)) < 0.0004);
    }
    before = point;
  }
  QVERIFY(pauses > 0);
  QCOMPARE(before.T_PointDistance, run.T_RunDistance);
  QVERIFY(run.T_RunEndTime.endsWith(before.T_PointTime));
}

/// What a watch with the small memory answers to the link and to the download command, and how many
/// bytes it sent in all.
std::tuple<QByteArray, QByteArray, qint64> talk(EmulatedWatchOptions options) {
  options.memory = memoryOf(90);
  options.fullSpeed = true;
  EmulatedWatch watch(options);
  if (!watch.start().isNull()) {
    return {};
  }
  Client port(watch);
  const QByteArray linkAnswer = port.ask(linkCommand, 36, 200);
  const QByteArray download = port.ask(downloadCommand, 100'000, 200);
  return {linkAnswer, download, watch.bytesSent()};
}

}  // namespace

class tst_watchsim : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void initTestCase() { QLoggingCategory::setFilterRules("trakko.*=false"); }

  void memoryDecodes() {
    for (const auto& [seed, runs, points] : {std::tuple(1U, 6, 0), std::tuple(3U, 60, 60)}) {
      const MemoryOptions options{seed, runs, points, QDate(2014, 5, 17)};
      const QList<QByteArray> memory = makeMemory(options);
      QCOMPARE(makeMemory(options), memory);
      QStringList lines;
      std::transform(memory.begin(), memory.end(), std::back_inserter(lines), lineFromBlock);
      DecodeContext context;
      context.zone = QTimeZone::utc();
      const DownloadBatch batch = decodeDownload(lines, context).batch;
      QCOMPARE(batch.runArr.size(), runs);
      QStringList starts;
      for (const QString& runKey : batch.runArr) {
        checkLaps(batch, runKey);
        checkPoints(batch, runKey);
        starts.append(batch.runMD.value(runKey).T_RunStartTime);
      }
      QVERIFY(std::is_sorted(starts.begin(), starts.end()));
      QVERIFY(starts.last().startsWith("2014-05-16 "));
    }
  }

  void conversation() {
    for (const bool fullSpeed : {false, true}) {
      // At full speed more than the line holds, so that the watch has to wait for its reader.
      const QList<QByteArray> memory = memoryOf(fullSpeed ? 3000 : 60);
      EmulatedWatch watch({.memory = memory,
                           .fullSpeed = fullSpeed,
                           .smallestPiece = 1,
                           .largestPiece = fullSpeed ? 64 : 0});
      QCOMPARE(watch.start(), QString());
      Client port(watch);
      QCOMPARE(port.ask(linkCommand, 36), identityBlock());
      const QByteArray whole = memory.join() + endMarkerBlock();
      QVERIFY(port.ask(downloadCommand, whole.size()) == whole);
      QCOMPARE(watch.blocks(), memory);
      QCOMPARE(port.ask(eraseCommand + downloadCommand, whole.size(), 300), endMarkerBlock());
      QVERIFY(watch.blocks().isEmpty());
      QCOMPARE(watch.commands(), (QStringList{"link", "download", "erase", "download"}));
      QTRY_COMPARE(watch.finishedDownloads(), 2);
      QCOMPARE(watch.bytesSent(), whole.size() + 72);
    }
  }

  void misbehaviour() {
    const QByteArray data = memoryOf(90).join();
    const QByteArray& end = endMarkerBlock();
    const QByteArray& linked = identityBlock();
    const QList<std::tuple<EmulatedWatchOptions, QByteArray, QByteArray>> rows{
        {{.isSilent = true}, "", ""},
        {{.answersLink = false}, "", data + end},
        {{.sendsEndMarker = false}, linked, data},
        {{.onlyBlocks = 2}, linked, data.first(72) + end}};
    for (const auto& [options, linkAnswer, download] : rows) {
      QVERIFY(talk(options) == std::tuple(linkAnswer, download, (linkAnswer + download).size()));
    }
    const QByteArray garbage = std::get<1>(talk({.sendsGarbage = true}));
    QCOMPARE(garbage.size(), (data + end).size());
    QVERIFY(garbage.endsWith(end) && garbage.first(72) != data.first(72));
    const auto [linkAnswer, download, sent] = talk({.hangUpAfter = 1000});
    QVERIFY(data.startsWith(download));  // what was not read yet when the line went dead is lost
    QCOMPARE(sent, 36 + 1000);
  }

  void commandsAreFoundInAnyStream() {
    const QByteArray stream = "\xEE" + linkCommand + downloadCommand.first(16) +
                              QByteArray("\xFF\xFF\xFF\xFF").leftJustified(32, '\0') +
                              eraseCommand + "noise" +
                              QByteArray("AGPSST").leftJustified(32, '\0') + downloadCommand;
    for (const qsizetype piece : {1, 5, 32, 33, 1000}) {
      CommandReader reader;
      QStringList found;
      for (qsizetype i = 0; i < stream.size(); i += piece) {
        for (const WatchCommand command : reader.take(stream.mid(i, piece))) {
          found << nameOf(command);
        }
      }
      QCOMPARE(found.join(' '), "unknown link unknown disconnect erase unknown agps download");
    }
  }

  void nextClientGetsItsOwnAnswer() {
    EmulatedWatch watch({.memory = memoryOf(90)});
    QCOMPARE(watch.start(), QString());
    for (int round = 0; round < 5; ++round) {
      {
        Client leaving(watch);
        QCOMPARE(leaving.ask(downloadCommand, 50).size(), 50);
      }
      Client next(watch);
      QVERIFY(next.ask({}, 1000, 100).size() < 1000);  // the rest of the other's download
      QCOMPARE(next.ask(linkCommand, 100, 100), identityBlock());
    }
  }

  void stopsWhileNobodyReads() {
    EmulatedWatch watch({.memory = memoryOf(2000), .fullSpeed = true});
    QCOMPARE(watch.start(), QString());
    Client port(watch);
    port.ask(downloadCommand, 0);
    QTRY_VERIFY(watch.bytesSent() > 2000);
    watch.stop();
    QVERIFY(!watch.isRunning());
    QCOMPARE(watch.start(), QString());  // a new port; the memory is still there
    QVERIFY(watch.isRunning() && !watch.blocks().isEmpty());
  }

  void linkComesAndGoes() {
    const QTemporaryDir folder;
    const QString link = folder.filePath("watch");
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
    QVERIFY(!EmulatedWatch({.link = link}).start().isNull());
    QCOMPARE(file.size(), 8);
  }
};

QTEST_APPLESS_MAIN(tst_watchsim)
#include "tst_watchsim.moc"
