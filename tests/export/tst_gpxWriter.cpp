#include "export/gpxWriter.h"
#include "tests/export/exportRecords.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString start = u"2014-05-01 07:30:00"_s;
const QString offset = u"+09:00"_s;

trackPointData pointWith(const QString& time, const QString& latSign, const QString& lat,
                         const QString& lonSign, const QString& lon) {
  trackPointData point = pointAt(time, u"0"_s);
  point.T_PointLatSign = latSign;
  point.T_PointLatitudeN = lat;
  point.T_PointLogSign = lonSign;
  point.T_PointLongitudeN = lon;
  return point;
}

QByteArray gpx(const PointDictionary& points) {
  return writeGpx(points, runNumber, start, offset);
}

}  // namespace

class GpxWriterTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void structure();
  void positions_data();
  void positions();
  void missingPoints();
  void startTime();
};

void GpxWriterTest::structure() {
  const QByteArray document = gpx(pointDictionary(
      {pointAt(u"07:30:00"_s, u"0"_s), pointWith(u"07:30:30"_s, u"N"_s, u"1"_s, u"0"_s, u"1"_s),
       pointWith(u"07:31:05"_s, u"S"_s, u"33.5"_s, u"W"_s, u"70.25"_s)}));
  QCOMPARE(document, fixture("threePoints.gpx"));
  for (const PointDictionary& points : {PointDictionary(), pointDictionary({{}, {}, {}})}) {
    QVERIFY(gpx(points).contains("        <trkseg />\n    </trk>\n"));
  }
}

void GpxWriterTest::positions_data() {
  QTest::addColumn<QStringList>("stored");  // signs and values of latitude and longitude
  QTest::addColumn<QString>("written");     // empty: left out
  const auto row = [](const char* name, const QStringList& stored, const char* written) {
    QTest::newRow(name) << stored << QString::fromLatin1(written);
  };
  row("rounded", {u"N"_s, u"35.6580005"_s, u"E"_s, u"139.74540049"_s}, "35.658000 139.745400");
  row("north west", {u"N"_s, u"1"_s, u"W"_s, u"2"_s}, "1.000000 -2.000000");
  row("south east", {u"S"_s, u"1"_s, u"E"_s, u"2"_s}, "-1.000000 2.000000");
  row("no numbers", {u"S"_s, u"x"_s, u"E"_s, {}}, "-0.000000 0.000000");
  row("number in front", {u"N"_s, u"4.5C"_s, u"E"_s, u"1,5"_s}, "4.500000 1.000000");
  row("huge", {u"N"_s, u"1E20"_s, u"E"_s, u"0"_s}, "100000000000000000000.000000 0.000000");
  row("no latitude", {u"0"_s, u"1"_s, u"E"_s, u"2"_s}, "");
  row("no longitude", {u"N"_s, u"1"_s, u"0"_s, u"2"_s}, "");
  row("absent signs", {{}, u"1"_s, {}, u"2"_s}, "");
  row("small letters", {u"n"_s, u"1"_s, u"e"_s, u"2"_s}, "");
}

void GpxWriterTest::positions() {
  QFETCH(QStringList, stored);
  const trackPointData point = pointWith(u"07:30:00"_s, stored[0], stored[1], stored[2], stored[3]);
  const QByteArray document = gpx({{recordKey(1), point}});
  QTEST((valuesOf(document, u"trkpt@lat"_s) + valuesOf(document, u"trkpt@lon"_s)).join(u' '),
        "written");
}

// Points count from 1 without gaps; what is keyed otherwise is not the run's.
void GpxWriterTest::missingPoints() {
  const auto point = [](const QString& time) { return pointAt(time, u"0"_s); };
  const PointDictionary points{{u"7-1"_s, point(u"a"_s)},
                               {u"7-3"_s, point(u"c"_s)},
                               {u"7-02"_s, point(u"x"_s)},
                               {u"77-2"_s, point(u"x"_s)},
                               {u"7-2 "_s, point(u"x"_s)},
                               {u"7-"_s, point(u"x"_s)},
                               {u"7-0"_s, point(u"x"_s)},
                               {u"7-4"_s, point(u"d"_s)},
                               {u"7-99999999999999999999"_s, point(u"x"_s)}};
  const auto time = [](const char* of) { return u"2014-05-01T%1+09:00"_s.arg(QLatin1String(of)); };
  QCOMPARE(valuesOf(gpx(points), u"trkpt/time"_s), QStringList({time("a"), time("c"), time("d")}));
}

void GpxWriterTest::startTime() {
  QVERIFY(writeGpx({}, runNumber, u"2014-05-01"_s, offset).isNull());
  const QByteArray strange = writeGpx({}, runNumber, u"<\x01&> no time"_s, u"+-5:00"_s);
  QCOMPARE(valuesOf(strange, u"trk/name"_s), QStringList(u"<&>TnoTtime+-5:00"_s));
  QCOMPARE(gpxFileName(start), u"20140501073000"_s);
  QCOMPARE(gpxFileName(u"2014/05/01 07:30"_s), u"201405010730"_s);
}

QTEST_APPLESS_MAIN(GpxWriterTest)
#include "tst_gpxWriter.moc"
