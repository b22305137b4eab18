#include "export/gpxWriter.h"
#include "export/offsetText.h"
#include "export/tcxWriter.h"
#include "tests/export/exportRecords.h"

#include <QTest>
#include <QXmlStreamReader>

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

  void lapBoundaries() {
    // Distances of the laps and the points; points of each lap; the minutes behind 07:00 at which
    // the laps start, "-" = absent.
    const QList<QStringList> rows{
        // Reaching the distance is not enough.
        {"100000 100000", "0 50000 100000 100001 200001 200002", "4 2", "30 33"},
        // Measured from the closing point.
        {"100 100 100", "250 350 351 360", "1 2 1", "30 30 32"},
        {"10 10 10", "0 20", "2 0 0", "30 31 31"},
        {"10", "20 30", "1", "30"},
        {"10 10", "", "0 0", "30 -"},
        {"", "0 1", "", ""},
        {"10 10", "0 (11) 12", "2 1", "30 31"},
        // What is missing counts, without a distance and a time.
        {"10 10", "0 - 11", "3 0", "30 32"},
        {"10 10", "0 -", "2 0", "30 -"},
        {"- - 10", "1 2 20", "1 1 1", "30 30 31"},
        {"4C x", "4.5x x 10", "1 2", "30 30"}};
    for (const QStringList& row : rows) {
      const QByteArray document = tcx(lapsOf(row[0]), pointsAt(row[1]));
      QStringList counts;
      for (const QByteArray& lap : QByteArray(document).replace("<Lap ", "\1").split('\1').mid(1)) {
        counts.append(QString::number(lap.count("<Trackpoint")));
      }
      QString starts = valuesOf(document, "//Lap/@StartTime").join(' ');
      starts.replace("T(null)+", "T07:-:00+").remove("2014-05-01T07:").remove(":00+09:00");
      QCOMPARE(QStringList({row[0], row[1], counts.join(' '), starts}), row);
    }
  }

  void lapTimes() {
    const QList<std::pair<QString, QString>> rows{
        {"02:00:01.00", "7201.000"}, {"00:05:12.34", "346.000"}, {"100:00:00.00", "36000.000"},
        {"00:05:1", "301.000"},      {"abcdefghijk", "0.000"},   {{}, "0.000"}};
    for (const auto& [time, seconds] : rows) {
      QCOMPARE(valuesOf(tcx(lapsOf("1", time), {}), "//TotalTimeSeconds"), QStringList(seconds));
    }
  }

  void positions() {
    // Signs and values of latitude and longitude; what is in the TCX and in the GPX document, where
    // nothing means no fix.
    const QList<QStringList> rows{
        {"N", "35.6580005", "E", "007", "35.6580005 007", "35.658000 7.000000"},
        {"S", "33.5", "W", "70.25", "-33.500000 -70.250000", "-33.500000 -70.250000"},
        {"N", "1", "0", "2", "1 -2.000000", ""},
        {"0", "1", "E", "2", "", ""},
        {"n", "1", "E", "2", "", ""},
        {"N", "<&>", "W", "north", "<&> -0.000000", "0.000000 -0.000000"},
        {"N", "4.5C", "E", "1,5", "4.5C 1,5", "4.500000 1.000000"},
        {"S",
         "1E20",
         "E",
         {},
         "-100000000000000000000.000000 (null)",
         "-100000000000000000000.000000 0.000000"}};
    const auto first = [](const QByteArray& document, const char* lat, const char* lon) {
      const QStringList latitudes = valuesOf(document, lat);
      return latitudes.size() < 2 ? QString() : latitudes[0] + ' ' + valuesOf(document, lon)[0];
    };
    for (const QStringList& row : rows) {
      PointDictionary points = pointsAt("1 2");
      setPosition(points[recordKey(1)], row);
      const QByteArray document = tcx(lapsOf("100"), points);
      const QString inTcx = first(document, "//LatitudeDegrees", "//LongitudeDegrees");
      QCOMPARE(row.first(4) << inTcx << first(gpx(points), "//@lat", "//@lon"), row);
      // The point behind is printed from the same element and inherits nothing.
      QCOMPARE(valuesOf(document, "//LatitudeDegrees").last(), "35.6580");
    }
  }

  void strangeTexts() {
    const QList<std::pair<QString, QString>> rows{
        {"<a href=\"'&amp;]]>", "<a href=\"'&amp;]]>"},
        {"<?points?>\n", "<?points?>\n"},  // marks the place of the points
        {u"a\x01\x1f\x08\0z"_s, "az"},
        {u"a\uFFFE\uFFFFz\uFFFD"_s, u"az\uFFFD"_s},
        {QString(QChar(0xD83C)) + "z", "?z"},  // half a character
        {"東京°\U0001F3C3", "東京°\U0001F3C3"}};
    for (const auto& [stored, written] : rows) {
      const PointDictionary points{{recordKey(1), pointAt(stored, "9")}};
      const QByteArray inTcx = writeTcx(lapsOf("1 1"), points, runNumber, start + stored, offset);
      const QByteArray inGpx = writeGpx(points, runNumber, start + stored, offset);
      QVERIFY(isWellFormed(inTcx) && isWellFormed(inGpx));
      const QStringList time{"2014-05-01T" + written + offset};
      QCOMPARE(valuesOf(inTcx, "//Time"), time);
      QCOMPARE(valuesOf(inTcx, "//Lap[2]/@StartTime"), time);
      QCOMPARE(valuesOf(inGpx, "//time"), time);
    }
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
    const QList<std::pair<int, QString>> rows{{32400, "+09:00"},   {19800, "+05:00"},
                                              {-18000, "+-5:00"},  {-9000, "+-2:00"},
                                              {-36000, "+-10:00"}, {-1800, "+00:00"}};
    for (const auto& [seconds, text] : rows) {
      QCOMPARE(offsetText(seconds), text);
    }
  }
};

QTEST_APPLESS_MAIN(tst_exportWriters)
#include "tst_exportWriters.moc"
