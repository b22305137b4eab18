#include "export/gpxWriter.h"
#include "export/offsetText.h"
#include "export/tcxWriter.h"
#include "tests/export/exportRecords.h"

#include <QTest>
#include <QTimeZone>
#include <QXmlStreamReader>

using namespace Qt::StringLiterals;

namespace {

const QString start = u"2014-05-01 07:30:00"_s;
const QString offset = u"+09:00"_s;
const QString fixtures = QStringLiteral(TRAKKO_FIXTURES "/export/");

// Points a minute apart from 07:30:00 on, by their distances. "-" is a point missing from the
// dictionary, but counted; one in brackets has no fix.
PointDictionary pointsAt(const QString& distances) {
  PointDictionary points;
  const QStringList list = distances.split(u' ', Qt::SkipEmptyParts);
  for (qsizetype i = 1; i <= list.size(); ++i) {
    QString distance = list[i - 1];
    const bool fix = !distance.startsWith(u'(');
    const QString key = distance == u"-" ? u"elsewhere %1"_s.arg(i) : recordKey(i);
    trackPointData& point = points[key];
    point = pointAt(u"07:%1:00"_s.arg(29 + i), distance.remove(u'(').remove(u')'));
    point.T_PointLatSign = fix ? u"N"_s : u"0"_s;
  }
  return points;
}

LapDictionary lapsOf(const QString& distances, const QString& time = u"00:05:12.34"_s) {
  LapDictionary laps;
  const QStringList list = distances.split(u' ', Qt::SkipEmptyParts);
  for (qsizetype i = 1; i <= list.size(); ++i) {
    lapData& lap = laps[list[i - 1] == u"-" ? u"elsewhere %1"_s.arg(i) : recordKey(i)];
    lap.T_LapTime = time;
    lap.T_LapDistance = list[i - 1];
    lap.T_LapMaxSpeed = u"143"_s;
    lap.T_LapCal = u"712345"_s;
  }
  return laps;
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
    QCOMPARE(tcx(lapsOf(u"100000"_s), pointsAt(u"0 (5)"_s)),
             fileContent(fixtures + u"oneLap.tcx"_s));
    PointDictionary points = pointsAt(u"0 (5) 9"_s);
    trackPointData& last = points[recordKey(3)];
    last.T_PointTime = u"07:31:05"_s;
    last.T_PointLatSign = u"S"_s;
    last.T_PointLatitudeN = u"33.5"_s;
    last.T_PointLogSign = u"W"_s;
    last.T_PointLongitudeN = u"70.25"_s;
    QCOMPARE(gpx(points), fileContent(fixtures + u"threePoints.gpx"_s));
    QVERIFY(gpx(pointsAt(u"(1) (2) (3)"_s)).contains("        <trkseg />\n    </trk>\n"));
  }

  void lapBoundaries_data() {
    QTest::addColumn<QString>("laps");
    QTest::addColumn<QString>("points");
    QTest::addColumn<QString>("counts");
    QTest::addColumn<QString>("starts");  // of the laps, minutes behind 07:00; "-" = absent
    const auto row = [](const char* name, const char* laps, const char* points, const char* counts,
                        const char* starts) {
      QTest::newRow(name) << QString::fromLatin1(laps) << QString::fromLatin1(points)
                          << QString::fromLatin1(counts) << QString::fromLatin1(starts);
    };
    row("reaching the distance is not enough", "100000 100000",
        "0 50000 100000 100001 200001 200002", "4 2", "30 33");
    row("measured from the closing point", "100 100 100", "250 350 351 360", "1 2 1", "30 30 32");
    row("laps left over", "10 10 10", "0 20", "2 0 0", "30 31 31");
    row("points left over", "10", "20 30", "1", "30");
    row("no points", "10 10", "", "0 0", "30 -");
    row("no laps", "", "0 1", "", "");
    row("a point without a fix ends a lap", "10 10", "0 (11) 12", "2 1", "30 31");
    row("a missing point counts", "10 10", "0 - 11", "3 0", "30 32");
    row("a missing last point has no time", "10 10", "0 -", "2 0", "30 -");
    row("missing laps count, without a distance", "- - 10", "1 2 20", "1 1 1", "30 30 31");
    row("distances that are no numbers", "4C x", "4.5x x 10", "1 2", "30 30");
  }
  void lapBoundaries() {
    QFETCH(QString, laps);
    QFETCH(QString, points);
    QFETCH(QString, starts);
    const QByteArray document = tcx(lapsOf(laps), pointsAt(points));
    QStringList counts;
    for (const QByteArray& lap : QByteArray(document).replace("<Lap ", "\1").split('\1')) {
      counts.append(QString::number(lap.count("<Trackpoint")));
    }
    QTEST(counts.mid(1).join(u' '), "counts");
    QStringList times;
    for (const QString& minute : starts.split(u' ', Qt::SkipEmptyParts)) {
      times.append(minute == u"-" ? u"2014-05-01T(null)+09:00"_s
                                  : u"2014-05-01T07:%1:00+09:00"_s.arg(minute));
    }
    QCOMPARE(valuesOf(document, "//Lap/@StartTime"), times);
  }

  void lapTimes() {
    const QList<std::pair<QString, QString>> rows{
        {u"02:00:01.00"_s, u"7201.000"_s},   {u"00:05:12.34"_s, u"346.000"_s},
        {u"100:00:00.00"_s, u"36000.000"_s}, {u"00:05:1"_s, u"301.000"_s},
        {u"abcdefghijk"_s, u"0.000"_s},      {QString(), u"0.000"_s}};
    for (const auto& [time, seconds] : rows) {
      QCOMPARE(valuesOf(tcx(lapsOf(u"1"_s, time), {}), "//TotalTimeSeconds"), QStringList(seconds));
    }
  }

  void positions_data() {
    QTest::addColumn<QStringList>("stored");  // signs and values of latitude and longitude
    QTest::addColumn<QString>("inTcx");       // empty: no fix
    QTest::addColumn<QString>("inGpx");
    const auto row = [](const QStringList& stored, const char* inTcx, const char* inGpx) {
      QTest::addRow("%s", qPrintable(stored.join(u' ')))
          << stored << QString::fromLatin1(inTcx) << QString::fromLatin1(inGpx);
    };
    row({u"N"_s, u"35.6580005"_s, u"E"_s, u"007"_s}, "35.6580005 007", "35.658000 7.000000");
    row({u"S"_s, u"33.5"_s, u"W"_s, u"70.25"_s}, "-33.500000 -70.250000", "-33.500000 -70.250000");
    row({u"N"_s, u"1"_s, u"0"_s, u"2"_s}, "1 -2.000000", "");
    row({u"0"_s, u"1"_s, u"E"_s, u"2"_s}, "", "");
    row({u"n"_s, u"1"_s, u"E"_s, u"2"_s}, "", "");
    row({u"N"_s, u"<&>"_s, u"W"_s, u"north"_s}, "<&> -0.000000", "0.000000 -0.000000");
    row({u"N"_s, u"4.5C"_s, u"E"_s, u"1,5"_s}, "4.5C 1,5", "4.500000 1.000000");
    row({u"S"_s, u"1E20"_s, u"E"_s, {}}, "-100000000000000000000.000000 (null)",
        "-100000000000000000000.000000 0.000000");
  }
  void positions() {
    QFETCH(QStringList, stored);
    PointDictionary points = pointsAt(u"1 2"_s);
    trackPointData& point = points[recordKey(1)];
    point.T_PointLatSign = stored[0];
    point.T_PointLatitudeN = stored[1];
    point.T_PointLogSign = stored[2];
    point.T_PointLongitudeN = stored[3];
    const auto first = [](const QByteArray& document, const char* lat, const char* lon) {
      const QStringList latitudes = valuesOf(document, lat);
      return latitudes.size() < 2 ? u""_s : latitudes[0] + u' ' + valuesOf(document, lon)[0];
    };
    const QByteArray document = tcx(lapsOf(u"100"_s), points);
    QTEST(first(document, "//LatitudeDegrees", "//LongitudeDegrees"), "inTcx");
    QTEST(first(gpx(points), "//@lat", "//@lon"), "inGpx");
    // The point behind is printed from the same element and inherits nothing.
    QCOMPARE(valuesOf(document, "//LatitudeDegrees").last(), u"35.6580"_s);
  }

  void strangeTexts_data() {
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("written");
    QTest::newRow("markup") << u"<a href=\"'&amp;]]>"_s << u"<a href=\"'&amp;]]>"_s;
    QTest::newRow("a place of the points") << u"<?points?>\n"_s << u"<?points?>\n"_s;
    QTest::newRow("control characters") << u"a\x01\x1f\x08\0z"_s << u"az"_s;
    QTest::newRow("noncharacters") << u"a\uFFFE\uFFFFz\uFFFD"_s << u"az\uFFFD"_s;
    QTest::newRow("half a character") << QString(QChar(0xD83C)) + u"z"_s << u"?z"_s;
    QTest::newRow("beyond ASCII") << u"東京°\U0001F3C3"_s << u"東京°\U0001F3C3"_s;
  }
  void strangeTexts() {
    QFETCH(QString, stored);
    QFETCH(QString, written);
    const PointDictionary points{{recordKey(1), pointAt(stored, u"9"_s)}};
    const QByteArray inTcx = writeTcx(lapsOf(u"1 1"_s), points, runNumber, start + stored, offset);
    const QByteArray inGpx = writeGpx(points, runNumber, start + stored, offset);
    QVERIFY(isWellFormed(inTcx) && isWellFormed(inGpx));
    const QString time = u"2014-05-01T%1+09:00"_s.arg(written);
    QCOMPARE(valuesOf(inTcx, "//Time"), QStringList(time));
    QCOMPARE(valuesOf(inTcx, "//Lap[2]/@StartTime"), QStringList(time));
    QCOMPARE(valuesOf(inGpx, "//time"), QStringList(time));
  }

  // Records count from 1; what is keyed otherwise is not the run's.
  void foreignKeys() {
    PointDictionary points;
    for (const QString& key : {u"7-1"_s, u"7-3"_s, u"7-4"_s, u"7-02"_s, u"77-2"_s, u"7-2 "_s,
                               u"7-"_s, u"7-0"_s, u"7-99999999999999999999"_s}) {
      points[key] = pointAt(key, u"0"_s);
    }
    QCOMPARE(valuesOf(gpx(points), "//time").join(u' ').remove(u"2014-05-01T"_s).remove(offset),
             u"7-1 7-3 7-4"_s);
  }

  void startTimes() {
    QVERIFY(writeTcx({}, {}, runNumber, u"2014-05-0"_s, offset).isNull());
    QVERIFY(!writeTcx({}, {}, runNumber, u"2014-05-01"_s, offset).isNull());
    QVERIFY(writeGpx({}, runNumber, u"2014-05-01"_s, offset).isNull());
    QCOMPARE(tcxFileName(u"2014-05-01T07:30:00"_s), u"20140501073000"_s);
    QCOMPARE(gpxFileName(u"2014/05-01 07:30:00"_s), u"20140501073000"_s);
  }

  void offsets() {
    const QList<std::pair<QByteArray, QString>> rows{
        {"Asia/Tokyo", u"+09:00"_s},    {"Asia/Kolkata", u"+05:00"_s},
        {"America/Lima", u"+-5:00"_s},  {"America/St_Johns", u"+-2:00"_s},
        {"Europe/Berlin", u"+02:00"_s}, {"Pacific/Honolulu", u"+-10:00"_s}};
    for (const auto& [zone, text] : rows) {
      const QDateTime summer(QDate(2014, 7, 1), QTime(12, 0), QTimeZone(zone));
      QCOMPARE(offsetText(summer.offsetFromUtc()), text);
    }
    QCOMPARE(offsetText(-1800), u"+00:00"_s);
  }
};

QTEST_APPLESS_MAIN(tst_exportWriters)
#include "tst_exportWriters.moc"
