#include "map/framing.h"
#include "map/trackOverlay.h"
#include "tests/columns.h"
#include "tests/map/trackOf.h"

#include <QtTest>

#include <cmath>

class tst_trackOverlay : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  // The letters of the hemispheres move nothing; the shift holds far outside China as well.
  void expressions() {
    const PointDictionary points{{"7-1", pointAt("39.900000", "116.400000")},
                                 {"7-2", pointAt("22.3", "114.2", "S", "W")},
                                 {"7-3", pointAt("35.682492", "139.7529278")}};
    const TrackOverlay google = buildGoogleOverlay(points, 7, {});
    QCOMPARE(google.expression,
             "[{lat: 39.900000, lng: 116.400000},{lat: 22.3, lng: 114.2},"
             "{lat: 35.682492, lng: 139.7529278}]");
    QCOMPARE(google.bounds, (TrackBounds{39.9, 22.3, 139.7529278, 114.2}));
    QCOMPARE(google.arrPointStr,
             "new Array(new google.maps.LatLng(39.900000,116.400000),"
             "new google.maps.LatLng(22.300000,114.200000))");
    const TrackOverlay gd = buildGDOverlay(points, 7, {});
    QCOMPARE(gd.expression,
             "new Array(new AMap.LngLat(116.406243,39.901404),"
             "new AMap.LngLat(114.204886,22.297200),new AMap.LngLat(139.757126,35.682835))");
    QCOMPARE(gd.arrPointStr,
             "new Array(new AMap.LatLng(116.406243,39.901404),"
             "new Amap.LatLng(114.204886,22.297200))");
    QCOMPARE(gd.bounds, google.bounds);
  }

  void breaks_data() {
    const auto row = columns<PointDictionary, QString, QString>("points", "google", "gd");
    row("none", straightRun(412), "1", "1");
    row("two", straightRun(412, {57, 230}), "new Array(0,57,230,411)", "new Array(0,57,230,411)");
    row("one second short", straightRun(412, {57}, 59), "1", "1");
    row("over midnight", straightRun(412, {57}, 60'000), "1", "1");
    row("first two points", straightRun(412, {0, 1}, 90), "1", "1");
    row("last ten, first break", straightRun(100, {95}), "new Array(0,95,99)", "1");
    row("at the limit, first break", straightRun(100, {90}), "new Array(0,90,99)",
        "new Array(0,90,99)");
    row("at the limit, later break", straightRun(100, {50, 90}), "new Array(0,50,99)",
        "new Array(0,50,99)");
    row("below the limit, later", straightRun(100, {50, 89}), "new Array(0,50,89,99)",
        "new Array(0,50,89,99)");
    row("nine points have no limit", straightRun(9, {3, 8}), "new Array(0,3,8,8)",
        "new Array(0,3,8,8)");
    row("ten points have", straightRun(10, {3, 8}), "new Array(0,3,9)", "1");
    PointDictionary moving = straightRun(412, {57});
    moving["1-58"].T_PointSpeed = "0.1";
    row("no point for a minute on the move", moving, "1", "1");
    // Breaks count stored points, the track holds usable ones; gaps in the keys are passed over,
    // and a point without any remembered time before it is no break.
    PointDictionary skipped = straightRun(40, {2, 20});
    skipped["1-1"] = skipped["1-2"] = pointAt("1", "1", "0", "0");
    skipped.remove("1-11");
    skipped.insert("1-77", pointAt("1", "1"));  // behind the count: never reached
    row("skipped points count", skipped, "new Array(0,20,39)", "new Array(0,20,39)");
  }

  void breaks() {
    QFETCH(PointDictionary, points);
    QTEST(buildGoogleOverlay(points, 1, {}).breakPointStr, "google");
    QTEST(buildGDOverlay(points, 1, {}).breakPointStr, "gd");
  }

  void usablePoints_data() {
    const auto row = columns<QString, QString, bool, bool>("latSign", "lonSign", "google", "gd");
    row("both", "N", "E", true, true);
    row("latitude", "S", "0", true, true);
    row("longitude", "", "W", true, true);
    row("codes", "78", "69", true, false);
    row("codes crossed", "69", "78", false, false);
    row("one code", "78", "0", false, false);
    row("crossed", "E", "N", false, false);
    row("absent", {}, {}, false, false);
  }

  // A run without any usable point leaves everything as it was.
  void usablePoints() {
    QFETCH(QString, latSign);
    QFETCH(QString, lonSign);
    QFETCH(bool, google);
    const PointDictionary points{{"1-1", pointAt("1", "3", latSign, lonSign)},
                                 {"1-2", pointAt("2", "4", latSign, lonSign)}};
    const TrackOverlay overlay = buildGoogleOverlay(points, 1, "earlier");
    QCOMPARE(overlay.bounds, google ? (TrackBounds{2, 1, 4, 3}) : TrackBounds());
    QCOMPARE(overlay.breakPointStr, google ? "1" : "");
    QCOMPARE(overlay.expression.isEmpty(), !google);
    QCOMPARE(overlay.arrPointStr == "earlier", !google);
    QTEST(!buildGDOverlay(points, 1, {}).expression.isEmpty(), "gd");
  }

  // The stretch reaches 20 points to each side of the middle; a pair has to differ both ways, else
  // the arrow of an earlier run stays.
  void arrow() {
    PointDictionary points;
    for (int i = 0; i < 101; ++i) {
      points.insert(QString("1-%1").arg(i + 1), pointAt(QString::number(30 + i), "139"));
    }
    points["1-30"].T_PointLongitudeN = points["1-72"].T_PointLongitudeN = "140";  // just outside
    QCOMPARE(buildGoogleOverlay(points, 1, "earlier").arrPointStr, "earlier");
    points["1-32"] = pointAt("61", "141", "0", "0");  // needs no sign here
    QCOMPARE(buildGoogleOverlay(points, 1, "earlier").arrPointStr,
             "new Array(new google.maps.LatLng(60.000000,139.000000),"
             "new google.maps.LatLng(61.000000,141.000000))");
    PointDictionary gap = straightRun(5);  // nothing at all around the middle
    for (int i = 100; i < 200; ++i) {
      gap.insert(QString("1-%1").arg(i), {});
    }
    QCOMPARE(buildGoogleOverlay(gap, 1, "earlier").arrPointStr, "earlier");
  }

  void hostileCoordinates_data() {
    const auto row = columns<QString>("inScript");
    for (const char* text : {"35.681236", "35", "-35.5", "0"}) {
      row(text, text);  // as stored
    }
    for (const char* text : {"alert(1)", "0x10", "1e999", "nan", "-", "３５", ""}) {
      row(text, "0.000000");
    }
    row(QByteArray(400, '9'), "0.000000");
    row(".5", "0.500000");
    row("1});alert(1);//", "1.000000");
    row("010.5", "10.500000");  // script would take it for octal
    row("35.", "35.000000");
    row("35.5.5", "35.500000");
    row("+35.5", "35.500000");
    row("1e3", "1000.000000");
  }

  void hostileCoordinates() {
    QFETCH(QString, inScript);
    const QString text = QString::fromUtf8(QTest::currentDataTag());
    const PointDictionary points{{"1-1", pointAt(text, text)}, {"1-2", pointAt("1", text)}};
    QCOMPARE(buildGoogleOverlay(points, 1, {}).expression,
             QString("[{lat: %1, lng: %1},{lat: 1, lng: %1}]").arg(inScript));
    const QRegularExpression numbersOnly(
        "^new Array\\((,?new AMap\\.LngLat\\(-?\\d+\\.\\d{6},-?\\d+\\.\\d{6}\\)){2}\\)$");
    QVERIFY(numbersOnly.match(buildGDOverlay(points, 1, {}).expression).hasMatch());
  }

  void distanceAndZoom() {
    QCOMPARE(QString::number(sumDist(139, 140, 35, 36), 'f', 6), "143.547782");
    const auto level = [](double lat, double lon) {
      return getZoom({35 + lat, 35, 139 + lon, 139}, 35 + lat, 35, 139 + lon, 139);
    };
    // A degree of latitude is 111.3 km, one of longitude there 91.2 km; the wider way counts.
    QCOMPARE(level(0, 0), "21");
    QCOMPARE(level(0.0081, 0.0081), "15");  // 900 m by 740 m
    QCOMPARE(level(0.0001, 0.2), "10");     // 18 km
    QCOMPARE(level(0.19, 0), "9");          // 21 km
    QCOMPARE(level(std::nan(""), 0), "16");
  }
};

QTEST_GUILESS_MAIN(tst_trackOverlay)
#include "tst_trackOverlay.moc"
