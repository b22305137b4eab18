#include "export/tcxWriter.h"
#include "tests/export/exportRecords.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString start = u"2014-05-01 07:30:00"_s;
const QString offset = u"+09:00"_s;

lapData lapOf(const QString& distance, const QString& time = u"00:05:12.34"_s) {
  lapData lap;
  lap.T_LapTime = time;
  lap.T_LapDistance = distance;
  lap.T_LapMaxSpeed = u"143"_s;
  lap.T_LapCal = u"712345"_s;
  return lap;
}

// Points a minute apart from 07:30:00 on, by their distances. "-" is a point missing from the
// dictionary, but counted; one in brackets has no fix.
PointDictionary pointsAt(const QString& distances) {
  PointDictionary points;
  const QStringList list = distances.split(u' ', Qt::SkipEmptyParts);
  for (qsizetype i = 1; i <= list.size(); ++i) {
    QString distance = list[i - 1];
    if (distance == u"-") {
      points[u"elsewhere %1"_s.arg(i)] = {};
      continue;
    }
    const bool fix = !distance.startsWith(u'(');
    trackPointData point = pointAt(u"07:%1:00"_s.arg(29 + i), distance.remove(u'(').remove(u')'));
    point.T_PointLatSign = fix ? u"N"_s : u"0"_s;
    points[recordKey(i)] = point;
  }
  return points;
}

LapDictionary lapsOf(const QString& distances) {
  LapDictionary laps;
  const QStringList list = distances.split(u' ', Qt::SkipEmptyParts);
  for (qsizetype i = 1; i <= list.size(); ++i) {
    laps[list[i - 1] == u"-" ? u"elsewhere %1"_s.arg(i) : recordKey(i)] = lapOf(list[i - 1]);
  }
  return laps;
}

QByteArray tcx(const LapDictionary& laps, const PointDictionary& points) {
  return writeTcx(laps, points, runNumber, start, offset);
}

// Number of points in each lap, "4 2".
QString pointsPerLap(const QByteArray& document) {
  QStringList counts;
  for (qsizetype at = document.indexOf("<Lap "); at >= 0;) {
    const qsizetype next = document.indexOf("<Lap ", at + 1);
    counts.append(QString::number(document.mid(at, next - at).count("<Trackpoint")));
    at = next;
  }
  return counts.join(u' ');
}

}  // namespace

class TcxWriterTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void structure();
  void lapBoundaries_data();
  void lapBoundaries();
  void lapTime_data();
  void lapTime();
  void positions_data();
  void positions();
  void strangeTexts_data();
  void strangeTexts();
  void startTime();
};

void TcxWriterTest::structure() {
  QCOMPARE(tcx(lapsOf(u"100000"_s), pointsAt(u"0 (5)"_s)), fixture("oneLap.tcx"));
}

void TcxWriterTest::lapBoundaries_data() {
  QTest::addColumn<QString>("laps");
  QTest::addColumn<QString>("points");
  QTest::addColumn<QString>("counts");
  QTest::addColumn<QString>("starts");  // of the laps, minutes behind 07:00; "-" = absent
  const auto row = [](const char* name, const char* laps, const char* points, const char* counts,
                      const char* starts) {
    QTest::newRow(name) << QString::fromLatin1(laps) << QString::fromLatin1(points)
                        << QString::fromLatin1(counts) << QString::fromLatin1(starts);
  };
  row("reaching the distance is not enough", "100000 100000", "0 50000 100000 100001 200001 200002",
      "4 2", "30 33");
  row("the next lap is measured from the closing point", "100 100 100", "250 350 351 360", "1 2 1",
      "30 30 32");
  row("laps left over", "10 10 10", "0 20", "2 0 0", "30 31 31");
  row("points left over", "10", "20 30", "1", "30");
  row("no points", "10 10", "", "0 0", "30 -");
  row("no laps", "", "0 1", "", "");
  row("a point without a fix ends a lap", "10 10", "0 (11) 12", "2 1", "30 31");
  row("a missing point counts, without a distance", "10 10", "0 - 11", "3 0", "30 32");
  row("a missing last point has no time", "10 10", "0 -", "2 0", "30 -");
  row("missing laps count, without a distance", "- - 10", "1 2 20", "1 1 1", "30 30 31");
  row("distances that are no numbers", "4C x", "4.5x x 10", "1 2", "30 30");
}

void TcxWriterTest::lapBoundaries() {
  QFETCH(QString, laps);
  QFETCH(QString, points);
  QFETCH(QString, starts);
  QStringList times;
  for (const QString& minute : starts.split(u' ', Qt::SkipEmptyParts)) {
    times.append(minute == u"-" ? u"2014-05-01T(null)+09:00"_s
                                : u"2014-05-01T07:%1:00+09:00"_s.arg(minute));
  }
  const QByteArray document = tcx(lapsOf(laps), pointsAt(points));
  QTEST(pointsPerLap(document), "counts");
  QCOMPARE(valuesOf(document, u"Lap@StartTime"_s), times);
}

void TcxWriterTest::lapTime_data() {
  QTest::addColumn<QString>("time");
  QTest::addColumn<QString>("seconds");
  QTest::newRow("hundredths count as seconds") << u"00:05:12.34"_s << u"346.000"_s;
  QTest::newRow("hours") << u"02:00:01.00"_s << u"7201.000"_s;
  QTest::newRow("a hundred hours shift the fields") << u"100:00:00.00"_s << u"36000.000"_s;
  QTest::newRow("cut off") << u"00:05:1"_s << u"301.000"_s;
  QTest::newRow("no time") << u"abcdefghijk"_s << u"0.000"_s;
  QTest::newRow("absent") << QString() << u"0.000"_s;
}

void TcxWriterTest::lapTime() {
  QFETCH(QString, time);
  const QByteArray document = tcx({{recordKey(1), lapOf(u"1"_s, time)}}, {});
  QTEST(valuesOf(document, u"TotalTimeSeconds"_s).join(u','), "seconds");
}

void TcxWriterTest::positions_data() {
  QTest::addColumn<QStringList>("stored");  // signs and values of latitude and longitude
  QTest::addColumn<QString>("written");     // empty: no fix
  const auto row = [](const char* name, const QStringList& stored, const char* written) {
    QTest::newRow(name) << stored << QString::fromLatin1(written);
  };
  row("copied", {u"N"_s, u"35.65"_s, u"E"_s, u"007"_s}, "35.65 007");
  row("negated", {u"S"_s, u"33.5"_s, u"W"_s, u"70.25"_s}, "-33.500000 -70.250000");
  row("longitude without a sign", {u"N"_s, u"1"_s, u"0"_s, u"2"_s}, "1 -2.000000");
  row("no numbers", {u"N"_s, u"<&>"_s, u"W"_s, u"north"_s}, "<&> -0.000000");
  row("absent values", {u"N"_s, {}, u"W"_s, {}}, "(null) -0.000000");
  row("no fix", {u"0"_s, u"1"_s, u"E"_s, u"2"_s}, "");
  row("no letter of its own", {u"NS"_s, u"1"_s, u"E"_s, u"2"_s}, "");
}

void TcxWriterTest::positions() {
  QFETCH(QStringList, stored);
  trackPointData point = pointAt(u"07:30:00"_s, u"1"_s);
  point.T_PointLatSign = stored[0];
  point.T_PointLatitudeN = stored[1];
  point.T_PointLogSign = stored[2];
  point.T_PointLongitudeN = stored[3];
  // The point behind shows what this one left in the element that both are printed from.
  const QByteArray document =
      tcx(lapsOf(u"100"_s), pointDictionary({point, pointAt(u"07:31:00"_s, u"1"_s)}));
  QStringList values;
  const QStringList latitudes = valuesOf(document, u"Position/LatitudeDegrees"_s);
  const QStringList longitudes = valuesOf(document, u"Position/LongitudeDegrees"_s);
  if (latitudes.size() == 2) {
    values = QStringList{latitudes[0], longitudes[0]};
  }
  QTEST(values.join(u' '), "written");
  QCOMPARE(latitudes.last(), u"35.6580"_s);
  QCOMPARE(longitudes.last(), u"139.7454"_s);
  QCOMPARE(pointsPerLap(document), u"2"_s);
}

void TcxWriterTest::strangeTexts_data() {
  QTest::addColumn<QString>("stored");
  QTest::addColumn<QString>("written");
  QTest::newRow("markup") << u"<a href=\"'&amp;]]>"_s << u"<a href=\"'&amp;]]>"_s;
  QTest::newRow("a place of the points") << u"<?points?>\n"_s << u"<?points?>\n"_s;
  QTest::newRow("control characters") << u"a\x01\x1f\x08z"_s << u"az"_s;
  QTest::newRow("zero") << QString(u"a\0z"_s) << u"az"_s;
  QTest::newRow("half a character") << QString(QChar(0xD83C)) + u"z"_s << u"?z"_s;
  QTest::newRow("noncharacters") << u"a\uFFFE\uFFFFz\uFFFD"_s << u"az\uFFFD"_s;
  QTest::newRow("beyond ASCII") << u"東京°\U0001F3C3"_s << u"東京°\U0001F3C3"_s;
}

void TcxWriterTest::strangeTexts() {
  QFETCH(QString, stored);
  QFETCH(QString, written);
  const PointDictionary points = pointDictionary({pointAt(stored, u"9"_s)});
  const QByteArray document = writeTcx(lapsOf(u"1 1"_s), points, runNumber, start + stored, offset);
  const QString time = u"2014-05-01T%1+09:00"_s.arg(written);
  QCOMPARE(valuesOf(document, u"Trackpoint/Time"_s), QStringList(time));
  QCOMPARE(valuesOf(document, u"Lap@StartTime"_s).last(), time);
}

void TcxWriterTest::startTime() {
  QVERIFY(writeTcx({}, {}, runNumber, u"2014-05-0"_s, offset).isNull());
  QVERIFY(!writeTcx({}, {}, runNumber, u"2014-05-01"_s, offset).isNull());
  QCOMPARE(tcxFileName(u"2014-05-01T07:30:00"_s), u"20140501073000"_s);
  QCOMPARE(tcxFileName(start), u"20140501073000"_s);
}

QTEST_APPLESS_MAIN(TcxWriterTest)
#include "tst_tcxWriter.moc"
