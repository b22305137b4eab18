#include "export/gpxWriter.h"
#include "export/offsetText.h"
#include "export/tcxWriter.h"
#include "tests/columns.h"
#include "tests/export/exportRecords.h"

#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

const QString offset = "+09:00";
const QString fixtures = TRAKKO_FIXTURES "/export/";

// Points a minute apart from 07:30:00 on, by their distances. "-" is a point missing from the
// dictionary, but counted; one in brackets has no fix.
PointDictionary pointsAt(const QString& distances) {
  PointDictionary points;
  const QStringList list = distances.split(' ', Qt::SkipEmptyParts);
  for (qsizetype i = 1; i <= list.size(); ++i) {
    QString distance = list[i - 1];
    trackPointData& point =
        points[distance == u"-" ? QString("elsewhere %1").arg(i) : recordKey(i)];
    point = pointAt(QString("07:%1:00").arg(29 + i), distance.remove('(').remove(')'));
    point.T_PointLatSign = distance == list[i - 1] ? "N" : "0";
  }
  return points;
}

void setPosition(trackPointData& point, const QStringList& stored) {
  point.T_PointLatSign = stored[0];
  point.T_PointLatitudeN = stored[1];
  point.T_PointLogSign = stored[2];
  point.T_PointLongitudeN = stored[3];
}

QByteArray tcx(const LapDictionary& laps, const PointDictionary& points) {
  return writeTcx(laps, points, runNumber, start, offset);
}

QByteArray gpx(const PointDictionary& points) {
  return writeGpx(points, runNumber, start, offset);
}

bool isWellFormed(const QByteArray& document) {
  QXmlStreamReader reader(document);
  while (!reader.atEnd()) {
    reader.readNext();
  }
  return !reader.hasError();
}

}  // namespace

class tst_exportWriters : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void wholeDocuments() {
    QCOMPARE(tcx(lapsOf("100000"), pointsAt("0 (5)")), bytesOf(fixtures + "oneLap.tcx"));
    PointDictionary points = pointsAt("0 (5) 9");
    points[recordKey(3)].T_PointTime = "07:31:05";
    setPosition(points[recordKey(3)], {"S", "33.5", "W", "70.25"});
    QCOMPARE(gpx(points), bytesOf(fixtures + "threePoints.gpx"));
    QVERIFY(gpx(pointsAt("(1) (2) (3)")).contains("        <trkseg />\n    </trk>\n"));
  }

  void lapBoundaries_data() {
    // Distances of the laps and the points; points of each lap; the minutes behind 07:00 at which
    // the laps start, "-" = absent.
    const auto row =
        columns<QString, QString, QString, QString>("laps", "points", "counts", "starts");
    row("reaching is not enough", "100000 100000", "0 50000 100000 100001 200001 200002", "4 2",
        "30 33");
    row("measured from the closing point", "100 100 100", "250 350 351 360", "1 2 1", "30 30 32");
    row("too few points", "10 10 10", "0 20", "2 0 0", "30 31 31");
    row("too few laps", "10", "20 30", "1", "30");
    row("no points", "10 10", "", "0 0", "30 -");
    row("no laps", "", "0 1", "", "");
    row("no fix", "10 10", "0 (11) 12", "2 1", "30 31");
    row("a missing point counts", "10 10", "0 - 11", "3 0", "30 32");
    row("and has no time", "10 10", "0 -", "2 0", "30 -");
    row("a missing lap has no distance", "- - 10", "1 2 20", "1 1 1", "30 30 31");
    row("odd numbers", "4C x", "4.5x x 10", "1 2", "30 30");
  }
  void lapBoundaries() {
    QFETCH(QString, laps);
    QFETCH(QString, points);
    const QByteArray document = tcx(lapsOf(laps), pointsAt(points));
    QStringList counts;
    for (const QByteArray& lap : QByteArray(document).replace("<Lap ", "\1").split('\1').mid(1)) {
      counts.append(QString::number(lap.count("<Trackpoint")));
    }
    QTEST(counts.join(' '), "counts");
    QString starts = valuesOf(document, "//Lap/@StartTime").join(' ');
    starts.replace("T(null)+", "T07:-:00+").remove("2014-05-01T07:").remove(":00+09:00");
    QTEST(starts, "starts");
  }

  void lapTimes_data() {
    const auto row = columns<QString>("seconds");
    row("02:00:01.00", "7201.000");
    row("00:05:12.34", "346.000");
    row("100:00:00.00", "36000.000");
    row("00:05:1", "301.000");
    row("abcdefghijk", "0.000");
    row("", "0.000");
  }
  void lapTimes() {
    const QByteArray document = tcx(lapsOf("1", QTest::currentDataTag()), {});
    QTEST(valuesOf(document, "//TotalTimeSeconds").join(' '), "seconds");
  }

  void positions_data() {
    // Signs and values of latitude and longitude; what is in the documents, nothing without a fix.
    const auto row = columns<QStringList, QString, QString>("stored", "tcx", "gpx");
    row("as stored", {"N", "35.6580005", "E", "007"}, "35.6580005 007", "35.658000 7.000000");
    row("south west", {"S", "33.5", "W", "70.25"}, "-33.500000 -70.250000",
        "-33.500000 -70.250000");
    row("no longitude", {"N", "1", "0", "2"}, "1 -2.000000", "");
    row("no latitude", {"0", "1", "E", "2"}, "", "");
    row("small letter", {"n", "1", "E", "2"}, "", "");
    row("no numbers", {"N", "<&>", "W", "north"}, "<&> -0.000000", "0.000000 -0.000000");
    row("odd numbers", {"N", "4.5C", "E", "1,5"}, "4.5C 1,5", "4.500000 1.000000");
    row("large, absent", {"S", "1E20", "E", {}}, "-100000000000000000000.000000 (null)",
        "-100000000000000000000.000000 0.000000");
  }
  void positions() {
    QFETCH(QStringList, stored);
    const auto first = [](const QByteArray& document, const char* lat, const char* lon) {
      const QStringList latitudes = valuesOf(document, lat);
      return latitudes.size() < 2 ? QString() : latitudes[0] + ' ' + valuesOf(document, lon)[0];
    };
    PointDictionary points = pointsAt("1 2");
    setPosition(points[recordKey(1)], stored);
    const QByteArray document = tcx(lapsOf("100"), points);
    QTEST(first(document, "//LatitudeDegrees", "//LongitudeDegrees"), "tcx");
    QTEST(first(gpx(points), "//@lat", "//@lon"), "gpx");
    // The point behind is printed from the same element and inherits nothing.
    QCOMPARE(valuesOf(document, "//LatitudeDegrees").last(), "35.6580");
  }

  void strangeTexts_data() {
    const auto row = columns<QString, QString>("stored", "written");
    row("markup", "<a href=\"'&amp;]]>", "<a href=\"'&amp;]]>");
    row("what marks the place of the points", "<?points?>\n", "<?points?>\n");
    row("control characters", u"a\x01\x1f\x08\0z"_s, "az");
    row("no characters", u"a\uFFFE\uFFFFz\uFFFD"_s, u"az\uFFFD"_s);
    row("half a character", QString(QChar(0xD83C)) + "z", "?z");
    row("beyond ASCII", "東京°\U0001F3C3", "東京°\U0001F3C3");
  }
  void strangeTexts() {
    QFETCH(QString, stored);
    QFETCH(QString, written);
    const PointDictionary points{{recordKey(1), pointAt(stored, "9")}};
    const QByteArray inTcx = writeTcx(lapsOf("1 1"), points, runNumber, start + stored, offset);
    const QByteArray inGpx = writeGpx(points, runNumber, start + stored, offset);
    QVERIFY(isWellFormed(inTcx) && isWellFormed(inGpx));
    const QStringList time{"2014-05-01T" + written + offset};
    QCOMPARE(valuesOf(inTcx, "//Time"), time);
    QCOMPARE(valuesOf(inTcx, "//Lap[2]/@StartTime"), time);
    QCOMPARE(valuesOf(inGpx, "//time"), time);
  }

  // Records count from 1; what is keyed otherwise is not the run's.
  void foreignKeys() {
    PointDictionary points;
    for (const char* key :
         {"7-1", "7-3", "7-4", "7-02", "77-2", "7-2 ", "7-", "7-0", "7-99999999999999999999"}) {
      points[key] = pointAt(key, "0");
    }
    QCOMPARE(valuesOf(gpx(points), "//time").join(' ').remove("2014-05-01T").remove(offset),
             "7-1 7-3 7-4");
  }

  void startTimes() {
    QVERIFY(writeTcx({}, {}, runNumber, "2014-05-0", offset).isNull());
    QVERIFY(!writeTcx({}, {}, runNumber, "2014-05-01", offset).isNull());
    QVERIFY(writeGpx({}, runNumber, "2014-05-01", offset).isNull());
    QCOMPARE(tcxFileName("2014-05-01T07:30:00"), "20140501073000");
    QCOMPARE(gpxFileName("2014/05-01 07:30:00"), "20140501073000");
  }

  void offsets() {
    QStringList offsets;
    for (const int seconds : {32400, 19800, -18000, -9000, -36000, -1800}) {
      offsets << offsetText(seconds);
    }
    QCOMPARE(offsets.join(' '), "+09:00 +05:00 +-5:00 +-2:00 +-10:00 +00:00");
  }
};

QTEST_APPLESS_MAIN(tst_exportWriters)
#include "tst_exportWriters.moc"
