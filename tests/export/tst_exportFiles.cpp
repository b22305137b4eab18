// What becomes of the exports outside: other programs, other locales and zones, failing disks.

#include "device/downloadDecoder.h"
#include "export/fileWriter.h"
#include "export/gpxWriter.h"
#include "export/offsetText.h"
#include "export/tcxWriter.h"
#include "tests/export/exportRecords.h"
#include "tools/watchsim/watchMemory.h"

#include <QDir>
#include <QLocale>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>
#include <clocale>
#include <csignal>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

const QString start = u"2014-05-01 07:30:00"_s;

// 500 points around the point where equator and meridian cross, every tenth without a fix.
PointDictionary worldwidePoints() {
  PointDictionary points;
  for (int i = 1; i <= 500; ++i) {
    trackPointData point = pointAt(u"07:%1:%2"_s.arg(30 + i / 60).arg(i % 60, 2, 10, QChar(u'0')),
                                   QString::number(300 * i));
    point.T_PointLatSign = i % 10 == 0 ? u"0"_s : i <= 250 ? u"N"_s : u"S"_s;
    point.T_PointLogSign = i % 10 == 0 ? u"0"_s : i % 2 == 0 ? u"E"_s : u"W"_s;
    point.T_PointLatitudeN = QString::number(0.01 * std::abs(250 - i), 'f', 6);
    point.T_PointLongitudeN = QString::number(0.000123 * i, 'f', 6);
    points[recordKey(i)] = point;
  }
  return points;
}

LapDictionary threeLaps() {
  LapDictionary laps;
  for (int i = 1; i <= 3; ++i) {
    laps[recordKey(i)].T_LapTime = u"00:02:47.25"_s;
    laps[recordKey(i)].T_LapDistance = u"50000"_s;
  }
  return laps;
}

struct Run {
  qint64 number = 0;
  QString start;
  LapDictionary laps;
  PointDictionary points;
};

// The runs of an emulated watch, as the store answers them after a download.
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
    Run run{record.T_Cnumber, record.T_RunStartTime, {}, {}};
    const auto key = [&run](qint64 index) { return u"%1-%2"_s.arg(run.number).arg(index); };
    for (const lapData& lap : batch.lapMD) {
      if (lap.T_Cnumber == run.number) {
        run.laps[key(lap.T_LapNo)] = lap;
      }
    }
    for (const trackPointData& point : batch.pointMD) {
      if (point.T_Cnumber == run.number) {
        run.points[key(point.T_Setid)] = point;
      }
    }
    runs.append(run);
  }
  return runs;
}

// "latitude longitude" to the six decimals of the files.
QString position(double latitude, double longitude) {
  return u"%1 %2"_s.arg(latitude, 0, 'f', 6).arg(longitude, 0, 'f', 6);
}

// The positions of the points with a fix.
QStringList fixesOf(const Run& run) {
  QStringList result;
  for (int i = 1; i <= run.points.size(); ++i) {
    const trackPointData point = run.points[u"%1-%2"_s.arg(run.number).arg(i)];
    if (point.T_PointLatSign == u"N" || point.T_PointLatSign == u"S") {
      const double lat = point.T_PointLatitudeN.toDouble();
      const double lon = point.T_PointLongitudeN.toDouble();
      result.append(position(point.T_PointLatSign == u"S" ? 0.0 - lat : lat,
                             point.T_PointLogSign == u"W" ? 0.0 - lon : lon));
    }
  }
  return result;
}

// The positions that gpsbabel finds in a file.
QStringList readByGpsbabel(const QByteArray& bytes, const QString& format) {
  const QTemporaryDir folder;
  const QString file = folder.filePath(u"run"_s);
  writeFileAtomically(file, bytes);
  QProcess gpsbabel;
  gpsbabel.start(u"gpsbabel"_s,
                 {u"-t"_s, u"-i"_s, format, u"-f"_s, file, u"-o"_s, u"gpx"_s, u"-F"_s, u"-"_s});
  if (!gpsbabel.waitForFinished() || gpsbabel.exitCode() != 0) {
    return {u"gpsbabel failed"_s};
  }
  const QByteArray read = gpsbabel.readAllStandardOutput();
  const QStringList latitudes = valuesOf(read, u"trkpt@lat"_s);
  const QStringList longitudes = valuesOf(read, u"trkpt@lon"_s);
  QStringList positions;
  for (qsizetype i = 0; i < latitudes.size(); ++i) {
    positions.append(position(latitudes[i].toDouble(), longitudes[i].toDouble()));
  }
  return positions;
}

// While one lives, files of this process cannot grow beyond `bytes`, as on a full disk.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &old_);
    const rlimit small{bytes, old_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &old_);
    (void)std::signal(SIGXFSZ, handler_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  void (*handler_)(int);
  rlimit old_{};
};

QByteArray contentOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : "no file";
}

}  // namespace

class ExportFilesTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void offsets_data();
  void offsets();
  void localesChangeNothing_data();
  void localesChangeNothing();
  void otherProgramsRead_data();
  void otherProgramsRead();
  void writing();
  void failedWriting_data();
  void failedWriting();
};

void ExportFilesTest::offsets_data() {
  QTest::addColumn<QByteArray>("zone");
  QTest::addColumn<QString>("text");
  const auto row = [](const char* zone, const QString& text) {
    QTest::newRow(zone) << QByteArray(zone) << text;
  };
  row("Asia/Tokyo", u"+09:00"_s);
  row("UTC", u"+00:00"_s);
  row("Asia/Kolkata", u"+05:00"_s);      // +5:30
  row("America/Lima", u"+-5:00"_s);      // -5
  row("America/St_Johns", u"+-2:00"_s);  // -2:30 in summer
  row("Europe/Berlin", u"+02:00"_s);     // summer time
  row("Pacific/Kiritimati", u"+14:00"_s);
  row("Pacific/Honolulu", u"+-10:00"_s);
}

void ExportFilesTest::offsets() {
  QFETCH(QByteArray, zone);
  const QDateTime summer(QDate(2014, 7, 1), QTime(12, 0), QTimeZone(zone));
  QTEST(offsetText(summer.offsetFromUtc()), "text");
  QCOMPARE(offsetText(-1800), u"+00:00"_s);
}

void ExportFilesTest::localesChangeNothing_data() {
  QTest::addColumn<QString>("source");
  QTest::newRow("decimal commas") << u"de_DE"_s;
  QTest::newRow("Japanese") << u"ja_JP"_s;
}

void ExportFilesTest::localesChangeNothing() {
  QFETCH(QString, source);
  const QByteArray tcx = writeTcx(threeLaps(), worldwidePoints(), runNumber, start, u"+09:00"_s);
  const QByteArray gpx = writeGpx(worldwidePoints(), runNumber, start, u"+09:00"_s);

  const QTemporaryDir folder;
  const QString name = source + u".UTF-8"_s;
  QProcess::execute(u"localedef"_s, {u"-i"_s, source, u"-f"_s, u"UTF-8"_s, folder.filePath(name)});
  qputenv("LOCPATH", folder.path().toLocal8Bit());
  if (std::setlocale(LC_ALL, name.toLatin1().constData()) == nullptr) {
    QSKIP("the locale cannot be made here");
  }
  QLocale::setDefault(QLocale(source));
  const auto restore = qScopeGuard([] {
    std::setlocale(LC_ALL, "C");
    QLocale::setDefault(QLocale::c());
    qunsetenv("LOCPATH");
  });
  QCOMPARE(writeTcx(threeLaps(), worldwidePoints(), runNumber, start, u"+09:00"_s), tcx);
  QCOMPARE(writeGpx(worldwidePoints(), runNumber, start, u"+09:00"_s), gpx);
}

void ExportFilesTest::otherProgramsRead_data() {
  QTest::addColumn<QString>("format");
  QTest::addColumn<QString>("offset");
  QTest::newRow("TCX") << u"gtrnctr"_s << u"+09:00"_s;
  QTest::newRow("GPX") << u"gpx"_s << u"+09:00"_s;
  QTest::newRow("TCX west of Greenwich") << u"gtrnctr"_s << u"+-5:00"_s;
  QTest::newRow("GPX west of Greenwich") << u"gpx"_s << u"+-5:00"_s;
}

void ExportFilesTest::otherProgramsRead() {
  QFETCH(QString, format);
  QFETCH(QString, offset);
  if (QStandardPaths::findExecutable(u"gpsbabel"_s).isEmpty()) {
    QSKIP("gpsbabel is not installed");
  }
  QList<Run> runs = emulatedRuns();
  runs.append({runNumber, start, threeLaps(), worldwidePoints()});
  for (const Run& run : runs) {
    const QByteArray bytes = format == u"gpx"
                                 ? writeGpx(run.points, run.number, run.start, offset)
                                 : writeTcx(run.laps, run.points, run.number, run.start, offset);
    const QStringList fixes = fixesOf(run);
    QVERIFY(fixes.size() > 300);
    QCOMPARE(readByGpsbabel(bytes, format), fixes);
  }
}

void ExportFilesTest::writing() {
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"走行 1.TCX"_s);
  for (const QByteArray& bytes : {QByteArray(300000, 'x'), QByteArray("short"), QByteArray("")}) {
    QVERIFY(writeFileAtomically(path, bytes));
    QCOMPARE(contentOf(path), bytes);
  }
  QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), 1);
}

void ExportFilesTest::failedWriting_data() {
  QTest::addColumn<QString>("name");
  QTest::addColumn<qint64>("size");
  QTest::addColumn<qint64>("space");
  // A few bytes too many are the case that a buffer would hide until the file is closed.
  QTest::newRow("disk full by a little") << u"run.GPX"_s << qint64{5000} << qint64{4096};
  QTest::newRow("disk full by a lot") << u"run.GPX"_s << qint64{300000} << qint64{4096};
  QTest::newRow("no such folder") << u"missing/run.GPX"_s << qint64{10} << qint64{4096};
  QTest::newRow("a folder of that name") << u"folder"_s << qint64{10} << qint64{4096};
}

void ExportFilesTest::failedWriting() {
  QFETCH(QString, name);
  QFETCH(qint64, size);
  QFETCH(qint64, space);
  const QTemporaryDir folder;
  QVERIFY(QDir(folder.path()).mkdir(u"folder"_s));
  const QString old = folder.filePath(u"run.GPX"_s);
  QVERIFY(writeFileAtomically(old, "old"));
  QString error;
  {
    const FullDisk disk(static_cast<rlim_t>(space));
    QVERIFY(!writeFileAtomically(folder.filePath(name), QByteArray(size, 'x'), &error));
  }
  QVERIFY(!error.isEmpty());
  QCOMPARE(contentOf(old), QByteArray("old"));
  QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
           QStringList({u"folder"_s, u"run.GPX"_s}));
}

QTEST_GUILESS_MAIN(ExportFilesTest)
#include "tst_exportFiles.moc"
