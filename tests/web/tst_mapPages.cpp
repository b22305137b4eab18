#include "map/drawingScripts.h"
#include "tests/columns.h"
#include "tests/map/trackOf.h"
#include "tests/web/webFixture.h"

#include <QFile>

/// What the pages show, in the real engine with a stand-in for the map services.
class tst_mapPages : public MapTest {
  Q_OBJECT

 private Q_SLOTS:
  void init() {
    startAnew("g-key");
    QFile script(QFINDTESTDATA("mapServices.js"));
    QVERIFY(script.open(QIODevice::ReadOnly));
    server.files["/maps"] = script.readAll();
    server.files["/maps/api/js"] = server.files["/maps"] + "initMap();";
  }

  void pagesComeUp() {
    QVERIFY(loadGoogle());
    QVERIFY(server.requests.first().startsWith(
        "GET /maps/api/js?key=g-key&callback=initMap&language=en&region=GB "));
    QCOMPARE(titles->value(0).value(0), "Simple Map");
    QCOMPARE(titles->value(1).value(0), "Map Load Start");
    QCOMPARE(value("google.maps.controlStyle + lineSymbol.path"), "azteca1");
    // The page's policy lets scripts come from servers, but not from texts.
    view->evaluate(
        "var policy = ''; const script = document.head.appendChild("
        "document.createElement('script')); script.onload = () => policy = 'loaded';"
        "script.onerror = () => policy = 'refused'; script.src = 'data:text/javascript,0'");
    QVERIFY(becomes("!!policy"));
    QCOMPARE(value("policy"), "refused");
    server.requests.clear();
    QVERIFY(loadAMap());
    QCOMPARE(titles->value(0).value(0), "ZEPLA Map");
    QVERIFY(server.requests.join().contains("GET /maps?v=1.3&key=key "));
    QVERIFY(server.requests.join().contains("GET /Public/css/demo.Default.css "));
  }

  void pictures_data() {
    const auto row = columns<bool, QString, QString>("google", "script", "expected");
    row("no point", true, "MapPolyline('', '0', '')", "HOME alert");
    row("another track", true, "MapPolyline(track(3), '1', '1'); MapPolyline(track(2), '1', '1');",
        "HOME PIN_green.png(1,11) PIN_blue.png(2,12) SOLID [(1,11) (2,12)]");
    row("cleared", true, "MapPolyline(track(3), '1', '1'); SetMapNull();",
        "HOME PIN_green.png(1,11) PIN_blue.png(3,13)");
    row("a break", true, "MapPolyline(track(4), '0', 'new Array(0,2,3)')",
        "HOME PIN_green.png(1,11) PIN_blue.png(4,14) 2.png(1,11) SOLID [(1,11) (2,12)] "
        "2.png(3,13) SOLID [(3,13)]");
    row("new map, framed", true,
        "MapPolyline(track(3), '1', '1'); initMap(); Setfitbounds('1.5', '2.5', '11.5', '12.5');",
        "[(1.5,11.5) (2.5,12.5)]");
    row("arrow between the first two points, moved", true,
        "for (const lng of [11, 12]) { midLineArrows('[' + [1, 3, 5].map(lat =>"
        "`new google.maps.LatLng(${lat},${lng})`) + ']'); }",
        "HOME dir_0.png(2,12)12,12");
    row("position", true, "marker_add_remover(1, 11)", "HOME 2.png(1,11)0,32");
    row("position taken away", true, "marker_add_remover(1, 11); marker_add_remover(360, 0)",
        "HOME");
    row("AMap, no point", false, "MapPolyline('', '0', '')", "");
    row("AMap, another track with arrow", false,
        "MapPolyline(track(3), '1', '1'); MapPolyline(track(2), '1', '1');"
        "midLineArrows(track(3));",
        "all start.png(1,11)-7,-20 end.png(2,12)-7,-20 DASHED [(1,11) (2,12)] "
        "arr/dir_45.png(1.5,11.5)");
    row("AMap, cleared", false, "MapPolyline(track(3), '1', '1'); SetMapNull();", "no map");
    row("AMap, first piece drawn twice", false, "MapPolyline(track(4), '0', 'new Array(0,2,3)')",
        "all start.png(1,11)-7,-20 end.png(4,14)-7,-20 DASHED [[(1,11) (2,12)]] "
        "DASHED [[(1,11) (2,12)] [(3,13)]]");
    row("AMap, position, moved", false,
        "marker_add_remover(1, 11); marker_add_remover(2, 12); moveToDarwin(3, 13, 5)",
        "5(3,13) 2.png(2,12)-7,-20");
    row("AMap, script of a whole track", false, setGDMapPoly("track(2)", "1"),
        "all start.png(1,11)-7,-20 end.png(2,12)-7,-20 DASHED [(1,11) (2,12)]");
    // With the comma that the script lacks.
    row("AMap, script with tighter pieces", false,
        setGDMapPoly("track(6)", "new Array(0,3,5)")
            .replace("Weight:3geodesic", "Weight:3,geodesic"),
        "all start.png(1,11)-7,-20 end.png(6,16)-7,-20 DASHED [(1,11) (2,12)] DASHED [(5,15)]");
  }

  void pictures() {
    QFETCH(bool, google);
    QFETCH(QString, script);
    QFETCH(QString, expected);
    expected.replace("HOME", "(35.682492,139.7529278)").replace("SOLID", "#FF0000 3 solid");
    expected.replace("PIN", "ridefinder-images/mm_20").replace("DASHED", "#FF0000 3 10,5");
    QVERIFY(google ? loadGoogle() : loadAMap());
    view->evaluate(
        "var place = " + QString(google ? "'{lat: LAT, lng: LNG}'" : "'new AMap.LngLat(LNG,LAT)'") +
        "; var track = count => '[' + [...Array(count).keys()].map("
        "i => place.replace('LAT', i + 1).replace('LNG', i + 11)) + ']';");
    view->evaluate(script);
    const QString shown = value("shown()").toString();
    QCOMPARE((QStringList{shown} + QStringList(alerts->messages.size(), "alert")).join(' '),
             expected);
  }

  // The bearing is folded into 0 to 117.
  void arrowImages() {
    const QString images =
        "[[36, 139], [35.0000001, 140], [34, 139], [35, 138], [36, 138.9914], [34.06, 138.587]]"
        ".map(([lat, lng]) => { midLineArrows(`[%1]`); return parseInt(imagestr.split('dir_')[1]);"
        "}).join()";
    const QString google = "new google.maps.LatLng(35,139),new google.maps.LatLng(${lat},${lng})";
    const QString amap = "new AMap.LngLat(139,35),new AMap.LngLat(${lng},${lat})";
    QVERIFY(loadGoogle());
    QCOMPARE(value(images.arg(google)), "0,90,60,30,0,81");
    QVERIFY(loadAMap());
    QCOMPARE(value(images.arg(amap)), "0,90,60,30,0,81");
  }

  // A service that answers with something else than its script: the page says so, the title stays.
  void errorsBecomeMessages() {
    server.files["/maps/api/js"] =
        "google = {maps: {Map: function() { throw new Error('no map today'); },"
        "SymbolPath: {}}}; initMap();";
    QVERIFY(loadGoogle("Map Load Start"));
    QTRY_COMPARE(alerts->messages, QStringList{"no map today"});
    view->callFunction("MapPolyline", {"][", "1", "1"});
    QTRY_COMPARE(alerts->messages.size(), 2);
    QCOMPARE(titles->last().first(), "Map Load Start");
  }
};

QTEST_MAIN(tst_mapPages)
#include "tst_mapPages.moc"
