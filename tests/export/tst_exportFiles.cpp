// What becomes of the exports outside: other locales, other programs, failing disks.

#include "device/downloadDecoder.h"
#include "export/fileWriter.h"
#include "export/gpxWriter.h"
#include "export/tcxWriter.h"
#include "tests/export/exportRecords.h"
#include "tools/watchsim/watchMemory.h"

#include <QDir>
#include <QLocale>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <clocale>
#include <csignal>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

struct Run {
  qint64 number = runNumber;
  QString start = u"2014-05-01 07:30:00"_s;
  LapDictionary laps;
  PointDictionary points;

  QString key(qint64 index) const { return u"%1-%2"_s.arg(number).arg(index); }
  QByteArray as(const QString& format, const QString& offset) const {
    return format == u"gpx" ? writeGpx(points, number, start, offset)
                            : writeTcx(laps, points, number, start, offset);
  }
};

// The runs of an emulated watch, as the store answers them after a download; every second one is
// moved to the south west.
QList<Run> emulatedRuns() {
  QStringList lines;
  for (const QByteArray& block : makeMemory(MemoryOptions())) {
    lines.append(lineFromBlock(block));
  }
  DecodeContext context;
  context.isStored = [](const QString&) { return false; };
  const DownloadBatch batch = decodeDownload(lines, context).batch;
  QList<Run> runs;
  for (const runData& record : batch.runMD) {
    Run& run = runs.emplace_back(Run{record.T_Cnumber, record.T_RunStartTime, {}, {}});
    for (const lapData& lap : batch.lapMD) {
      if (lap.T_Cnumber == run.number) {
        run.laps[run.key(lap.T_LapNo)] = lap;
      }
    }
    for (const trackPointData& point : batch.pointMD) {
      if (point.T_Cnumber == run.number) {
        trackPointData& stored = run.points[run.key(point.T_Setid)];
        stored = point;
        if (run.number % 2 == 0 && point.T_PointLatSign == u"N") {
          stored.T_PointLatSign = u"S"_s;
          stored.T_PointLogSign = u"W"_s;
        }
      }
    }
  }
  return runs;
}

// "latitude longitude" of the points in a GPX document, to six decimals.
QStringList positionsIn(const QByteArray& gpx) {
  const QStringList longitudes = valuesOf(gpx, "//trkpt/@lon");
  QStringList positions;
  for (const QString& latitude : valuesOf(gpx, "//trkpt/@lat")) {
    positions.append(u"%1 %2"_s.arg(latitude.toDouble(), 0, 'f', 6)
                         .arg(longitudes[positions.size()].toDouble(), 0, 'f', 6));
  }
  return positions;
}

// What gpsbabel makes of a file, as GPX.
QByteArray readByGpsbabel(const QByteArray& bytes, const QString& format) {
  const QTemporaryDir folder;
  const QString file = folder.filePath(u"run"_s);
  writeFileAtomically(file, bytes);
  QProcess gpsbabel;
  gpsbabel.start(u"gpsbabel"_s,
                 {u"-t"_s, u"-i"_s, format, u"-f"_s, file, u"-o"_s, u"gpx"_s, u"-F"_s, u"-"_s});
  gpsbabel.waitForFinished();
  return gpsbabel.readAllStandardOutput();
}

// As long as the answer lives, files of this process cannot grow beyond 4 KB, as on a full disk.
auto fillDisk() {
  rlimit old{};
  getrlimit(RLIMIT_FSIZE, &old);
  const rlimit small{4096, old.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  return qScopeGuard([old, handler] {
    setrlimit(RLIMIT_FSIZE, &old);
    (void)std::signal(SIGXFSZ, handler);
  });
}

}  // namespace

class tst_exportFiles : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  // Decimal commas; another script.
  void localesChangeNothing() {
    const Run run = emulatedRuns()[0];
    const QByteArray tcx = run.as(u"gtrnctr"_s, u"+09:00"_s);
    const QByteArray gpx = run.as(u"gpx"_s, u"+09:00"_s);
    const QTemporaryDir folder;
    qputenv("LOCPATH", folder.path().toLocal8Bit());
    for (const QString& source : {u"de_DE"_s, u"ja_JP"_s}) {
      const QString name = source + u".UTF-8"_s;
      QProcess::execute(u"localedef"_s,
                        {u"-i"_s, source, u"-f"_s, u"UTF-8"_s, folder.filePath(name)});
      if (std::setlocale(LC_ALL, qPrintable(name)) == nullptr) {
        QSKIP("the locales cannot be made here");
      }
      QLocale::setDefault(QLocale(source));
      const QByteArray otherTcx = run.as(u"gtrnctr"_s, u"+09:00"_s);
      const QByteArray otherGpx = run.as(u"gpx"_s, u"+09:00"_s);
      std::setlocale(LC_ALL, "C");
      QLocale::setDefault(QLocale::c());
      QVERIFY(otherTcx == tcx && otherGpx == gpx);
    }
  }

  void otherProgramsRead() {
    if (QStandardPaths::findExecutable(u"gpsbabel"_s).isEmpty()) {
      QSKIP("gpsbabel is not installed");
    }
    const QList<Run> runs = emulatedRuns();
    for (const Run& run : runs) {
      const QStringList fixes = positionsIn(run.as(u"gpx"_s, u"+09:00"_s));
      QVERIFY(fixes.size() > 300 && fixes[0].startsWith(u'-') == (run.number % 2 == 0));
      for (const QString& format : {u"gtrnctr"_s, u"gpx"_s}) {
        for (const QString& offset : {u"+09:00"_s, u"+-5:00"_s}) {
          QCOMPARE(positionsIn(readByGpsbabel(run.as(format, offset), format)), fixes);
        }
      }
    }
  }

  void failedWriting_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("size");
    // A few bytes too many are the case that a buffer would hide until the file is closed.
    QTest::newRow("disk full by a little") << u"走行 1.GPX"_s << 5000;
    QTest::newRow("disk full by a lot") << u"走行 1.GPX"_s << 300000;
    QTest::newRow("no such folder") << u"missing/run.GPX"_s << 10;
    QTest::newRow("a folder of that name") << u"folder"_s << 10;
  }
  void failedWriting() {
    QFETCH(QString, name);
    QFETCH(int, size);
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(u"folder"_s));
    const QString old = folder.filePath(u"走行 1.GPX"_s);
    for (const QByteArray& bytes : {QByteArray(300000, 'x'), QByteArray("old")}) {
      QVERIFY(writeFileAtomically(old, bytes));
      QCOMPARE(fileContent(old), bytes);
    }
    QString error;
    {
      const auto full = fillDisk();
      QVERIFY(!writeFileAtomically(folder.filePath(name), QByteArray(size, 'x'), &error));
    }
    QVERIFY(!error.isEmpty());
    QCOMPARE(fileContent(old), QByteArray("old"));
    QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList({u"folder"_s, u"走行 1.GPX"_s}));
  }
};

QTEST_GUILESS_MAIN(tst_exportFiles)
#include "tst_exportFiles.moc"
