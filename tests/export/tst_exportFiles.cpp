// What becomes of the exports outside: other programs, failing disks.

#include "export/fileWriter.h"
#include "export/gpxWriter.h"
#include "export/tcxWriter.h"
#include "tests/columns.h"
#include "tests/export/exportRecords.h"

#include <QtTest>

namespace {

// 400 points on three laps, in the format that gpsbabel calls by that name.
QByteArray longRun(const QString& format, const QString& offset, bool southWest) {
  PointDictionary points;
  for (int i = 1; i <= 400; ++i) {
    trackPointData& point = points[recordKey(i)];
    point = pointAt(QString::asprintf("07:%02d:%02d", 30 + i / 60, i % 60), QString::number(i));
    point.T_PointLatitudeN = QString::asprintf("35.%06d", 658000 + 137 * i);
    point.T_PointLongitudeN = QString::asprintf("139.%06d", 745400 - 91 * i);
    point.T_PointLatSign = southWest ? "S" : "N";
    point.T_PointLogSign = southWest ? "W" : "E";
  }
  return format == u"gpx" ? writeGpx(points, runNumber, start, offset)
                          : writeTcx(lapsOf("150 150 150"), points, runNumber, start, offset);
}

// "latitude longitude" of the points in a GPX document, to six decimals.
QStringList positionsIn(const QByteArray& gpx) {
  const QStringList longitudes = valuesOf(gpx, "//trkpt/@lon");
  QStringList positions;
  for (const QString& latitude : valuesOf(gpx, "//trkpt/@lat")) {
    const double longitude = longitudes[positions.size()].toDouble();
    positions.append(QString::asprintf("%.6f %.6f", latitude.toDouble(), longitude));
  }
  return positions;
}

// What gpsbabel makes of a document, as GPX.
QByteArray readByGpsbabel(const QByteArray& document, const QString& format) {
  QProcess gpsbabel;
  gpsbabel.start("gpsbabel", {"-t", "-i", format, "-f", "-", "-o", "gpx", "-F", "-"});
  gpsbabel.write(document);
  gpsbabel.closeWriteChannel();
  gpsbabel.waitForFinished();
  return gpsbabel.readAllStandardOutput();
}

}  // namespace

class tst_exportFiles : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void otherProgramsRead() {
    for (const bool southWest : {false, true}) {
      const QStringList fixes = positionsIn(longRun("gpx", "+09:00", southWest));
      QCOMPARE(fixes.value(399), southWest ? "-35.712800 -139.709000" : "35.712800 139.709000");
      for (const QString& format : {QString("gtrnctr"), QString("gpx")}) {
        for (const QString& offset : {QString("+09:00"), QString("+-5:00")}) {
          const QByteArray document = longRun(format, offset, southWest);
          QCOMPARE(positionsIn(readByGpsbabel(document, format)), fixes);
        }
      }
    }
  }

  // A few bytes too many are the case that a buffer would hide until the file is closed.
  static void failedWriting_data() {
    const auto row = columns<QString, int>("name", "size");
    row("a little too long", "走行 1.GPX", 5000);
    row("far too long", "走行 1.GPX", 300000);
    row("missing folder", "missing/run.GPX", 10);
    row("folder in the place", "folder", 10);
  }
  static void failedWriting() {
    QFETCH(const QString, name);
    QFETCH(const int, size);
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir("folder"));
    const QString old = folder.filePath("走行 1.GPX");
    for (const QByteArray& bytes : {QByteArray(300000, 'x'), QByteArray("old")}) {
      QVERIFY(writeFileAtomically(old, bytes));
      QCOMPARE(bytesOf(old), bytes);
    }
    {
      const FullDisk full(4096);
      QVERIFY(!writeFileAtomically(folder.filePath(name), QByteArray(size, 'x')));
    }
    QCOMPARE(bytesOf(old), QByteArray("old"));
    const auto everything = QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot;
    QCOMPARE(QDir(folder.path()).entryList(everything), QStringList({"folder", "走行 1.GPX"}));
  }
};

QTEST_GUILESS_MAIN(tst_exportFiles)
#include "tst_exportFiles.moc"
