#include "data/databaseLock.h"
#include "export/offsetText.h"
#include "export/runExport.h"
#include "tests/columns.h"
#include "tests/data/storeFolder.h"
#include "tools/watchsim/emulatedWatch.h"
#include "tools/watchsim/watchMemory.h"

#include <QtTest>

#include <csignal>

namespace {

struct Answer {
  int code = -1;
  QByteArray results;
  QByteArray messages;

  QJsonDocument json() const { return QJsonDocument::fromJson(results); }
};

/// The program at work in a folder of its own.
class Shell {
 public:
  StoreFolder folder;

  QProcess* start(const QStringList& words) {
    auto* process = new QProcess(&owner_);
    QStringList arguments = words;
    arguments.insert(1, "--data=" + folder.directory.path());
    process->start(TRAKKO_CLI, arguments);
    return process;
  }
  static Answer end(QProcess* process) {
    if (!process->waitForFinished()) {
      qFatal("the program does not end");
    }
    return {process->exitStatus() == QProcess::NormalExit ? process->exitCode() : -1,
            process->readAllStandardOutput(), process->readAllStandardError()};
  }
  /// Words separated by blanks; "@/" stands for the folder.
  Answer run(const QString& words) {
    return end(start(QString(words).replace("@/", folder.directory.path() + "/").split(' ')));
  }
  Answer download(const EmulatedWatch& watch, const QStringList& more = {}) {
    return end(start(QStringList{"download", "--json", "--port", watch.path()} + more));
  }

 private:
  QObject owner_;
};

EmulatedWatchOptions watchOf(qint32 runs) {
  return {.memory = makeMemory({.runs = runs, .pointsPerRun = 30}), .fullSpeed = true};
}

}  // namespace

class tst_cli : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void answers_data() {
    const auto row = columns<int, QString, QString>("code", "results", "message");
    row("list --from 2014-05-02 --to 2014-05-02", 0, "番号*\n2\t2014-05-02 07:30:05\t*", "");
    row("list --from 2014-05-03", 0, "番号*(/km)\n", "");
    row("list --from yesterday", 2, "", "*yyyy-MM-dd*yesterday*");
    row("list more", 2, "", "*more*");
    row("show 1", 0, "*2014-05-01 07:30:05*", "");
    row("show 1 --points", 0, "number,time,*\n1,x*\n2,x*\n3,x*\n", "");
    row("show 3", 1, "", "*3*");
    row("show -1", 2, "", "*");
    row("totals --by month --json", 0, "*\"from\": \"2014-05-01\"*\"runs\": 2*", "");
    row("totals --by day", 2, "", "*day*");
    row("export 1 --format gpx -", 0, "<?xml*<gpx*", "");
    row("export 3 --format tcx -", 1, "", "*3*");
    row("export 1 2 --format tcx -", 2, "", "*");
    row("export --all --format kml --to @/", 2, "", "*kml*");
    row("export --all --format tcx", 2, "", "*");
    row("export --all --format tcx --to @/gpsData.db3", 1, "", "*gpsData.db3*");
    row("export --all --format tcx --to @/missing", 1, "", "*missing*");
    row("export 1 --format tcx --output @/missing/a.tcx", 1, "", "*a.tcx*");
    row("export 1 --format tcx --output @/gpsData.db3", 1, "", "*--force*");
    row("backup @/gpsData.db3", 1, "", "*既にあります*");
    row("replay @/missing.txt", 1, "", "*missing.txt*");
    row("download --port @/missing", 3, "", "*時計*");
    row("dance", 2, "", "*dance*");
    row("list --dance", 2, "", "*dance*");
  }
  void answers() {
    QFETCH(const int, code);
    QFETCH(const QString, results);
    QFETCH(const QString, message);
    Shell shell;
    Batch batch;
    batch.add(1, "a", 1, 3);
    batch.add(2, "b", 1, 3);
    QCOMPARE(batch.store(), 1);
    const Answer answer = shell.run(QTest::currentDataTag());
    const auto matches = [](const QByteArray& text, const QString& pattern) {
      const QString expression = QRegularExpression::anchoredPattern(
          QRegularExpression::escape(pattern).replace("\\*", ".*"));
      return QRegularExpression(expression, QRegularExpression::DotMatchesEverythingOption)
          .match(QString::fromUtf8(text))
          .hasMatch();
    };
    QVERIFY2(matches(answer.results, results), answer.results.constData());
    QVERIFY2(matches(answer.messages, message), answer.messages.constData());
    QCOMPARE(answer.code, code);
  }

  void downloadStoresKeepsAndErases() {
    Shell shell;
    EmulatedWatch watch(watchOf(3));
    QVERIFY(watch.start().isNull());
    const Answer first = shell.download(watch);
    QCOMPARE(first.code, 0);
    QCOMPARE(first.json()["stored"].toInt(), 3);
    QCOMPARE(shell.folder.counts().section('|', 0, 0), "3");
    QVERIFY(QFile::exists(shell.folder.in("lastDownload.txt")));
    QVERIFY(!watch.commands().contains("erase"));

    const Answer second = shell.download(watch, {"--erase"});
    QCOMPARE(second.code, 0);
    QCOMPARE(second.json()["newRuns"].toInt(), 0);
    QTRY_VERIFY(watch.commands().contains("erase"));
    const QString before = shell.folder.counts();
    QVERIFY(QFile::remove(shell.folder.database));
    QCOMPARE(shell.run("replay @/lastDownload.txt").code, 0);
    QCOMPARE(shell.folder.counts(), before);
  }

  void downloadLeavesAnUnsafeWatchAlone() {
    Shell shell;
    shell.folder.ask(
        "create trigger fail before insert on T_LapData begin select 1; end;"
        "drop table T_LapData");
    EmulatedWatch watch(watchOf(1));
    QVERIFY(watch.start().isNull());
    const Answer answer = shell.download(watch, {"--erase"});
    QCOMPARE(answer.code, 1);
    QTest::qWait(100);
    QVERIFY(!watch.commands().contains("erase"));
  }

  void interruptedDownloadStoresNothing() {
    Shell shell;
    EmulatedWatchOptions endless = watchOf(2);
    endless.sendsEndMarker = false;
    EmulatedWatch watch(endless);
    QVERIFY(watch.start().isNull());
    QProcess* process = shell.start({"download", "--port", watch.path()});
    QTRY_VERIFY(watch.bytesSent() > 1000);
    ::kill(static_cast<pid_t>(process->processId()), SIGINT);
    const Answer answer = Shell::end(process);
    QCOMPARE(answer.code, 1);
    QVERIFY(answer.messages.contains("中止"));
    QCOMPARE(shell.folder.counts(), "0|0|0|0");
  }

  void lockedDatabaseIsBusyToWritersOnly() {
    Shell shell;
    DatabaseLock window(shell.folder.in(""));
    QCOMPARE(window.take(), DatabaseLock::State::held);
    QCOMPARE(shell.run("list").code, 0);
    QCOMPARE(shell.run("backup @/copy.db3").code, 0);
    QCOMPARE(shell.run("restore @/copy.db3").code, 4);
    QCOMPARE(shell.run("download").code, 4);
  }

  void exportsEqualTheWindows() {
    Shell shell;
    EmulatedWatch watch(watchOf(2));
    QVERIFY(watch.start().isNull());
    QCOMPARE(shell.download(watch).code, 0);
    dataControl store;
    for (const ExportFormat format : {ExportFormat::Tcx, ExportFormat::Gpx}) {
      const QString command =
          "export --all --format " + formatName(format).toLower() + " --json --to @/";
      QCOMPARE(shell.run(command).json()["written"].toInt(), 2);
      QCOMPARE(shell.run(command).json()["skipped"].toInt(), 2);
      for (const qint64 number : {1, 2}) {
        const RunToExport run = readRun(store, number, format);
        const QString name = exportFileName(run.startTime, format) + "." + formatName(format);
        QCOMPARE(bytesOf(shell.folder.in(name)), exportRun(run, format, offsetNow()).bytes);
      }
    }
  }

  void restoreAsksForForce() {
    Shell shell;
    QCOMPARE(shell.run("backup @/good.db3").code, 0);
    Batch batch;
    batch.add(1, "a", 1, 3);
    QCOMPARE(batch.store(), 1);
    writeBytes(shell.folder.in("bad.db3"), "no database");
    QCOMPARE(shell.run("restore @/bad.db3").code, 1);
    QCOMPARE(shell.folder.counts(), "1|1|0|3");
    QCOMPARE(shell.run("restore @/good.db3").code, 0);
    QCOMPARE(shell.folder.counts(), "0|0|0|0");
    QCOMPARE(shell.run("restore @/bad.db3 --force").code, 0);
    QCOMPARE(bytesOf(shell.folder.database), QByteArray("no database"));
  }
};

QTEST_GUILESS_MAIN(tst_cli)
#include "tst_cli.moc"
