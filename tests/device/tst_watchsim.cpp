#include "base/text.h"
#include "device/downloadDecoder.h"
#include "device/serialPort.h"
#include "pseudoTerminal.h"
#include "tools/watchsim/emulatedWatch.h"
#include "tools/watchsim/watchBlocks.h"
#include "tools/watchsim/watchMemory.h"

#include <QLoggingCategory>
#include <QTest>

#include <algorithm>

namespace {

const QByteArray linkCommand = QByteArray("\xEE\xEE").leftJustified(32, '\0');
const QByteArray downloadCommand = QByteArray("\x08\x08\xAA\xAA").leftJustified(32, '\0');

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

}  // namespace

class tst_watchsim : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void initTestCase() { QLoggingCategory::setFilterRules("trakko.*=false"); }

  /// Runs that a runner could have made: laps and points add up to the whole.
  void memoryDecodes() {
    const MemoryOptions options{3, 60, 60, QDate(2014, 5, 17)};
    const QList<QByteArray> memory = makeMemory(options);
    QCOMPARE(makeMemory(options), memory);
    QStringList lines;
    std::transform(memory.begin(), memory.end(), std::back_inserter(lines), lineFromBlock);
    DecodeContext context;
    context.zone = QTimeZone::utc();
    const DownloadBatch batch = decodeDownload(lines, context).batch;
    QCOMPARE(batch.runArr.size(), 60);
    for (const QString& key : batch.runArr) {
      const runData run = batch.runMD.value(key);
      qint64 distance = 0;
      for (qint32 number = 1; number <= run.T_RunLap; ++number) {
        distance +=
            batch.lapMD.value(key + '-' + text::padded(number, 5)).T_LapDistance.toLongLong();
      }
      QCOMPARE(QString::number(distance), run.T_RunDistance);
      const trackPointData last = batch.pointMD.value(key + "-00060");
      QCOMPARE(last.T_PointDistance, run.T_RunDistance);
      QVERIFY(run.T_RunEndTime.endsWith(last.T_PointTime));
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
};

QTEST_APPLESS_MAIN(tst_watchsim)
#include "tst_watchsim.moc"
