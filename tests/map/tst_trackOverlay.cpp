#include "map/chinaShift.h"
#include "map/drawingScripts.h"
#include "map/framing.h"
#include "map/trackOverlay.h"
#include "map/trackTime.h"
#include "tests/map/trackOf.h"

#include <QRegularExpression>
#include <QTest>

class TrackOverlayTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void expressions();
  void breaks_data();
  void breaks();
  void midnightIsNoBreak();
  void skippedPointsKeepTheirNumbers();
  void usablePoints_data();
  void usablePoints();
  void boundsStaySignless();
  void arrowOfTheMiddle();
  void arrowStaysFromEarlierRun();
  void hostileCoordinates_data();
  void hostileCoordinates();
  void emptyRun();
  void drawingScript();
  void shift();
  void times();
  void zoom();
};

void TrackOverlayTest::expressions() {
  PointDictionary points;
  points.insert("7-1", pointAt("39.900000", "116.400000"));
  points.insert("7-2", pointAt("22.3", "114.2"));
  const TrackOverlay google = buildGoogleOverlay(points, 7, QString());
  QCOMPARE(google.expression, "[{lat: 39.900000, lng: 116.400000},{lat: 22.3, lng: 114.2}]");
  QCOMPARE(google.breakPointStr, "1");
  QCOMPARE(google.bounds, (TrackBounds{39.9, 22.3, 116.4, 114.2}));
  QCOMPARE(google.arrPointStr,
           "new Array(new google.maps.LatLng(39.900000,116.400000),"
           "new google.maps.LatLng(22.300000,114.200000))");
  const TrackOverlay gd = buildGDOverlay(points, 7, QString());
  QCOMPARE(
      gd.expression,
      "new Array(new AMap.LngLat(116.406243,39.901404),new AMap.LngLat(114.204886,22.297200))");
  QCOMPARE(gd.arrPointStr,
           "new Array(new AMap.LatLng(116.406243,39.901404),"
           "new Amap.LatLng(114.204886,22.297200))");
  QCOMPARE(gd.bounds, google.bounds);
}

void TrackOverlayTest::breaks_data() {
  QTest::addColumn<int>("count");
  QTest::addColumn<QList<int>>("pauses");
  QTest::addColumn<int>("seconds");
  QTest::addColumn<QString>("google");
  QTest::addColumn<QString>("gd");
  const auto row = [](const char* name, int count, const QList<int>& pauses, int seconds,
                      const char* google, const char* gd) {
    QTest::newRow(name) << count << pauses << seconds << QString::fromLatin1(google)
                        << QString::fromLatin1(gd);
  };
  row("none", 412, {}, 60, "1", "1");
  row("one", 412, {57}, 60, "new Array(0,57,411)", "new Array(0,57,411)");
  row("one second short", 412, {57}, 59, "1", "1");
  row("three", 412, {57, 230, 300}, 90, "new Array(0,57,230,300,411)",
      "new Array(0,57,230,300,411)");
  row("first two points", 412, {0, 1}, 90, "1", "1");
  row("last ten, first break", 100, {95}, 60, "new Array(0,95,99)", "1");
  row("at the limit, first break", 100, {90}, 60, "new Array(0,90,99)", "new Array(0,90,99)");
  row("at the limit, later break", 100, {50, 90}, 60, "new Array(0,50,99)", "new Array(0,50,99)");
  row("below the limit, later", 100, {50, 89}, 60, "new Array(0,50,89,99)",
      "new Array(0,50,89,99)");
  row("nine points have no limit", 9, {3, 8}, 60, "new Array(0,3,8,8)", "new Array(0,3,8,8)");
  row("ten points have", 10, {3, 8}, 60, "new Array(0,3,9)", "1");
}

void TrackOverlayTest::breaks() {
  QFETCH(int, count);
  QFETCH(QList<int>, pauses);
  QFETCH(int, seconds);
  PointDictionary points = straightRun(count);
  pauseAt(points, pauses, seconds);
  QTEST(buildGoogleOverlay(points, 1, QString()).breakPointStr, "google");
  QTEST(buildGDOverlay(points, 1, QString()).breakPointStr, "gd");
}

void TrackOverlayTest::midnightIsNoBreak() {
  PointDictionary points = straightRun(30);
  for (int i = 0; i < 30; ++i) {
    trackPointData& point = points[QStringLiteral("1-%1").arg(i + 1)];
    point.T_PointTime = clockText(23 * 3600 + 59 * 60 + 50 + i);
    point.T_PointSpeed = "0";
  }
  QCOMPARE(buildGoogleOverlay(points, 1, QString()).breakPointStr, "1");
}

// Breaks count stored points, the track holds usable ones; gaps in the keys are passed over, and a
// point without any remembered time before it is no break.
void TrackOverlayTest::skippedPointsKeepTheirNumbers() {
  PointDictionary points = straightRun(40);
  pauseAt(points, {2, 20});
  for (const char* lost : {"1-1", "1-2"}) {
    points[lost].T_PointLatSign = "0";
    points[lost].T_PointLogSign = "0";
  }
  points.remove("1-11");
  points.insert("1-77", pointAt("1", "1"));  // behind the count: never reached
  const TrackOverlay overlay = buildGoogleOverlay(points, 1, QString());
  QCOMPARE(overlay.breakPointStr, "new Array(0,20,39)");
  QCOMPARE(overlay.expression.count("lat"), 37);
}

void TrackOverlayTest::usablePoints_data() {
  QTest::addColumn<QString>("latSign");
  QTest::addColumn<QString>("lonSign");
  QTest::addColumn<bool>("google");
  QTest::addColumn<bool>("gd");
  QTest::newRow("north east") << "N"
                              << "E" << true << true;
  QTest::newRow("south only") << "S"
                              << "0" << true << true;
  QTest::newRow("west only") << ""
                             << "W" << true << true;
  QTest::newRow("codes") << "78"
                         << "69" << true << false;
  QTest::newRow("codes swapped") << "69"
                                 << "78" << false << false;
  QTest::newRow("code of latitude only") << "78"
                                         << "0" << false << false;
  QTest::newRow("letters swapped") << "E"
                                   << "N" << false << false;
  QTest::newRow("absent") << QString() << QString() << false << false;
}

void TrackOverlayTest::usablePoints() {
  QFETCH(QString, latSign);
  QFETCH(QString, lonSign);
  trackPointData point = pointAt("35.5", "139.5");
  point.T_PointLatSign = latSign;
  point.T_PointLogSign = lonSign;
  const PointDictionary points{{"1-1", point}};
  QTEST(!buildGoogleOverlay(points, 1, QString()).expression.isEmpty(), "google");
  QTEST(!buildGDOverlay(points, 1, QString()).expression.isEmpty(), "gd");
}

void TrackOverlayTest::boundsStaySignless() {
  PointDictionary points{{"1-1", pointAt("33.868800", "151.209300")},
                         {"1-2", pointAt("33.800000", "151.100000")}};
  for (trackPointData& point : points) {
    point.T_PointLatSign = "S";
    point.T_PointLogSign = "W";
  }
  const TrackOverlay overlay = buildGoogleOverlay(points, 1, QString());
  QCOMPARE(overlay.bounds, (TrackBounds{33.8688, 33.8, 151.2093, 151.1}));
  QVERIFY(!overlay.expression.contains('-'));
}

// The stretch reaches 20 points to each side of the middle; a pair has to differ both ways.
void TrackOverlayTest::arrowOfTheMiddle() {
  PointDictionary points;
  for (int i = 0; i < 101; ++i) {
    points.insert(QStringLiteral("1-%1").arg(i + 1), pointAt(QString::number(30 + i), "139"));
  }
  points["1-30"].T_PointLongitudeN = "140";  // index 29: just outside
  QVERIFY(buildGoogleOverlay(points, 1, QString()).arrPointStr.isNull());
  points["1-32"].T_PointLongitudeN = "141";
  points["1-32"].T_PointLogSign = points["1-32"].T_PointLatSign = "0";  // needs no sign here
  QCOMPARE(buildGoogleOverlay(points, 1, QString()).arrPointStr,
           "new Array(new google.maps.LatLng(60.000000,139.000000),"
           "new google.maps.LatLng(61.000000,141.000000))");
}

void TrackOverlayTest::arrowStaysFromEarlierRun() {
  PointDictionary points;
  for (int i = 1; i <= 50; ++i) {
    points.insert(QStringLiteral("1-%1").arg(i), pointAt("35.1", "139.1"));
  }
  QCOMPARE(buildGoogleOverlay(points, 1, "earlier").arrPointStr, "earlier");
  // Nothing around the middle at all: only keys in front of the stretch.
  PointDictionary gap = straightRun(5);
  for (int i = 100; i < 200; ++i) {
    gap.insert(QStringLiteral("1-%1").arg(i * 10), pointAt("35.1", "139.1"));
  }
  QCOMPARE(buildGoogleOverlay(gap, 1, "earlier").arrPointStr, "earlier");
}

void TrackOverlayTest::hostileCoordinates_data() {
  QTest::addColumn<QString>("stored");
  QTest::addColumn<QString>("expected");
  const auto row = [](const char* stored, const char* expected) {
    QTest::newRow(stored) << QString::fromLatin1(stored) << QString::fromLatin1(expected);
  };
  row("35.681236", "35.681236");
  row("35", "35");
  row("-35.5", "-35.5");
  row("0", "0");
  row("1});alert(1);//", "1.000000");
  row("alert(1)", "0.000000");
  row("35.5.5", "35.500000");
  row("35.", "35.000000");
  row(".5", "0.500000");
  row("0x10", "0.000000");
  row("010.5", "10.500000");  // script would take it for octal
  row("1e3", "1000.000000");
  row("1e999", "0.000000");
  row("nan", "0.000000");
  row("-", "0.000000");
  row(" 35.5", "35.500000");
  row("+35.5", "35.500000");
  QTest::newRow("absent") << QString() << "0.000000";
  QTest::newRow("other digits") << QStringLiteral("３５") << "0.000000";
}

void TrackOverlayTest::hostileCoordinates() {
  QFETCH(QString, stored);
  QFETCH(QString, expected);
  const PointDictionary points{{"1-1", pointAt(stored, stored)}, {"1-2", pointAt("1", stored)}};
  const TrackOverlay overlay = buildGoogleOverlay(points, 1, QString());
  QCOMPARE(overlay.expression,
           QStringLiteral("[{lat: %1, lng: %1},{lat: 1, lng: %1}]").arg(expected));
  static const QRegularExpression numbersOnly(
      "^new Array\\((,?new AMap\\.LngLat\\(-?\\d+\\.\\d{6},-?\\d+\\.\\d{6}\\)){2}\\)$");
  QVERIFY(numbersOnly.match(buildGDOverlay(points, 1, QString()).expression).hasMatch());
}

void TrackOverlayTest::emptyRun() {
  PointDictionary points = straightRun(60);
  for (trackPointData& point : points) {
    point.T_PointLatSign = point.T_PointLogSign = "0";
  }
  for (const PointDictionary& run : {points, PointDictionary()}) {
    const TrackOverlay overlay = buildGoogleOverlay(run, 1, "earlier");
    QCOMPARE(overlay.expression, "");
    QCOMPARE(overlay.breakPointStr, "");
    QCOMPARE(overlay.arrPointStr, "earlier");
    QCOMPARE(overlay.bounds, TrackBounds());
  }
}

void TrackOverlayTest::drawingScript() {
  const QString whole = setGDMapPoly("POINTS", "1");
  const QString pieces = setGDMapPoly("POINTS", "BREAKS");
  QVERIFY(whole.contains("eval(POINTS);if") && !whole.contains("bpa"));
  QVERIFY(pieces.contains("eval(POINTS);var bpa=eval(BREAKS);if"));
  QVERIFY(!(whole + pieces).contains('\n'));
}

void TrackOverlayTest::shift() {
  const auto shifted = [](double lat, double lon) {
    return QString::asprintf("%.6f %.6f", ConvertGDLat(lat, lon), ConvertGDLon(lat, lon));
  };
  QCOMPARE(shifted(39.9, 116.4), "39.901404 116.406243");
  QCOMPARE(shifted(22.3, 114.2), "22.297200 114.204886");
  QCOMPARE(shifted(35.682492, 139.7529278), "35.682835 139.757126");  // far outside China
}

void TrackOverlayTest::times() {
  QCOMPARE(trackTimeValue(u"01:02:03"), 3723.0);
  QCOMPARE(trackTimeValue(u"00:00:59.75"), 59.75);
  QCOMPARE(trackTimeValue(u"01x2"), 3720.0);
  QCOMPARE(trackTimeValue(u"ab:cd:ef"), 0.0);
  QCOMPARE(trackTimeValue(QString()), 0.0);
}

void TrackOverlayTest::zoom() {
  const auto level = [](double lat, double lon) {
    return getZoom({35 + lat, 35, 139 + lon, 139}, 35 + lat, 35, 139 + lon, 139);
  };
  // A degree of latitude is 111.3 km, one of longitude there 91.2 km; the wider way counts.
  QCOMPARE(level(0, 0), "21");
  QCOMPARE(level(0.0081, 0.0001), "15");  // 900 m
  QCOMPARE(level(0.0001, 0.2), "10");     // 18 km
  QCOMPARE(level(0.19, 0), "9");          // 21 km
  QCOMPARE(level(std::nan(""), 0), "16");
}

QTEST_GUILESS_MAIN(TrackOverlayTest)
#include "tst_trackOverlay.moc"
