#include "tests/map/trackOf.h"
#include "tests/web/webFixture.h"

#include <QFile>

/// What the pages ask of the map services, in the real engine with a recorder in their place.
class MapPagesTest : public MapTest {
  Q_OBJECT

 private Q_SLOTS:
  void init() {
    startAnew("g-key");
    QFile recorder(QFINDTESTDATA("mapRecorder.js"));
    QVERIFY(recorder.open(QIODevice::ReadOnly));
    server.files["/maps"] = recorder.readAll();
    server.files["/maps/api/js"] = server.files["/maps"] + "initMap();";
  }

  void pagesComeUp() {
    QVERIFY(loadGoogle());
    QVERIFY(server.requests.first().startsWith(
        "GET /maps/api/js?key=g-key&callback=initMap&language=en&region=GB "));
    QCOMPARE(titles->value(0).value(0), "Simple Map");
    QCOMPARE(titles->value(1).value(0), "Map Load Start");
    QCOMPARE(value("google.maps.controlStyle + lineSymbol.path"), "azteca1");
    server.requests.clear();
    QVERIFY(loadAMap());
    QCOMPARE(titles->value(0).value(0), "ZEPLA Map");
    QVERIFY(server.requests.join().contains("GET /maps?v=1.3&key=key "));
    QVERIFY(server.requests.join().contains("GET /Public/css/demo.Default.css "));
  }

  void calls_data() {
    QTest::addColumn<bool>("google");
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, bool google, const QString& script, QString expected) {
      expected.replace("ICON", "HOST/mapfiles/ridefinder-images/mm_20");
      expected.replace("RED", "strokeColor:'#FF0000' strokeOpacity:1 strokeWeight:3");
      expected.replace("OFFSET", "offset:{x:-7 y:-20}");
      QTest::newRow(name) << google << script << expected;
    };
    row("no point", true, "MapPolyline('', '0', '')", "alert");
    row("no break, then one point, cleared", true,
        "MapPolyline(track(3), '1', '1'); MapPolyline(track(1), '1', '1'); SetMapNull();",
        "Marker1 = Marker({position:(1,11) map:Map1 icon:'ICON_green.png'}) "
        "Marker2 = Marker({position:(3,13) map:Map1 icon:'ICON_blue.png'}) "
        "Polyline1 = Polyline({path:[(1,11) (2,12) (3,13)] geodesic:true RED map:Map1}) "
        "Polyline1.setMap(null) "
        "Marker1.setMap(null) Marker3 = Marker({position:(1,11) map:Map1 icon:'ICON_green.png'}) "
        "Marker2.setMap(null) Marker4 = Marker({position:(1,11) map:Map1 icon:'ICON_blue.png'}) "
        "Polyline2 = Polyline({path:[(1,11)] geodesic:true RED map:Map1}) Polyline2.setMap(null)");
    row("a break", true, "MapPolyline(track(4), '0', 'new Array(0,2,3)')",
        "Marker1 = Marker({position:(1,11) map:Map1 icon:'ICON_green.png'}) "
        "Marker2 = Marker({position:(4,14) map:Map1 icon:'ICON_blue.png'}) "
        "Marker3 = Marker({position:(1,11) map:Map1 icon:'2.png'}) "
        "Polyline1 = Polyline({path:[(1,11) (2,12)] geodesic:true RED map:Map1}) "
        "Marker4 = Marker({position:(3,13) map:Map1 icon:'2.png'}) "
        "Polyline2 = Polyline({path:[(3,13)] geodesic:true RED map:Map1})");
    row("new map, framed", true, "initMap(); Setfitbounds('1.5', '2.5', '11.5', '12.5');",
        "Map2 = Map(#map, {center:(35.682492,139.7529278) streetViewControl:false panControl:true "
        "scaleControl:true zoom:13}) LatLngBounds1 = LatLngBounds() "
        "LatLngBounds1.extend((1.5,11.5)) LatLngBounds1.extend((2.5,12.5)) "
        "Map2.fitBounds(LatLngBounds1)");
    row("arrow between the first two points, moved", true,
        "for (const lng of [11, 12]) { calls.splice(0); midLineArrows('[' + [1, 3, 5].map(lat =>"
        "`new google.maps.LatLng(${lat},${lng})`) + ']'); }",
        "Size2 = Size(24, 24) Point3 = Point(0, 0) Point4 = Point(12, 12) "
        "MarkerImage2 = MarkerImage('HOST/mapfiles/dir_0.png', Size2, Point3, Point4) "
        "Marker1.setMap(null) "
        "Marker2 = Marker({position:(2,12) map:Map1 icon:MarkerImage2}) Marker2.setMap(Map1)");
    row("position marker, taken away", true,
        "marker_add_remover(1, 11); marker_add_remover(360, 0)",
        "Size1 = Size(12, 20) Point1 = Point(0, 0) Point2 = Point(0, 32) "
        "Marker1 = Marker({position:(1,11) map:Map1 "
        "icon:{url:'2.png' size:Size1 origin:Point1 anchor:Point2}}) Marker1.setMap(null)");
    row("AMap, no point", false, "MapPolyline('', '0', '')", "");
    row("AMap, no break, then one point, arrow, cleared with a new map", false,
        "MapPolyline(track(3), '1', '1'); MapPolyline(track(1), '1', '1');"
        "midLineArrows(track(3)); SetMapNull(); calls.push(`${mapObj}`);",
        "Marker1 = Marker({icon:'start.png' position:(1,11) OFFSET}) Marker1.setMap(Map1) "
        "Marker2 = Marker({icon:'end.png' position:(3,13) OFFSET}) Marker2.setMap(Map1) "
        "Polyline1 = Polyline({path:[(1,11) (2,12) (3,13)] RED geodesic:true "
        "strokeDasharray:[10 5]}) Polyline1.setMap(Map1) Map1.setFitView() Marker1.setMap(null) "
        "Marker3 = Marker({icon:'start.png' position:(1,11) OFFSET}) Marker3.setMap(Map1) "
        "Marker2.setMap(null) "
        "Marker4 = Marker({icon:'end.png' position:(1,11) OFFSET}) Marker4.setMap(Map1) "
        "Polyline1.setMap(null) "
        "Polyline2 = Polyline({path:[(1,11)] RED geodesic:true strokeDasharray:[10 5]}) "
        "Polyline2.setMap(Map1) Map1.setFitView() "
        "Marker5 = Marker({icon:'arr/dir_45.png' position:(1.5,11.5)}) Marker5.setMap(Map1) "
        "Map2 = Map('iCenter', {rotateEnable:true dragEnable:true zoomEnable:true "
        "resizeEnable:true}) "
        "Map2.plugin(['AMap.ToolBar'], function) ToolBar2 = ToolBar() Map2.addControl(ToolBar2) "
        "Map2.setLang('en') Map2.plugin(['AMap.MapType'], function) "
        "MapType2 = MapType({defaultType:0 showRoad:true}) Map2.addControl(MapType2) "
        "Polyline2.setMap(null) Marker3.setMap(null) Marker4.setMap(null) Marker5.setMap(null) "
        "null");
    const QString dashed = "strokeColor:'#FF0000' strokeWeight:3 strokeDasharray:[10 5]}) ";
    row("AMap, first piece drawn twice", false, "MapPolyline(track(4), '0', 'new Array(0,2,3)')",
        "Marker1 = Marker({icon:'start.png' position:(1,11) OFFSET}) Marker1.setMap(Map1) "
        "Marker2 = Marker({icon:'end.png' position:(4,14) OFFSET}) Marker2.setMap(Map1) "
        "Polyline1 = Polyline({map:Map1 path:[[(1,11) (2,12)]] " +
            dashed +
            "Polyline1.setMap(Map1) "
            "Polyline2 = Polyline({map:Map1 path:[[(1,11) (2,12)] [(3,13)]] " +
            dashed + "Polyline2.setMap(Map1) Map1.setFitView()");
    row("AMap, position marker, moved", false,
        "marker_add_remover(1, 11); marker_add_remover(2, 12)",
        "Marker1 = Marker({icon:'2.png' position:(1,11) OFFSET}) Marker1.setMap(Map1) "
        "Marker1.setMap(null) "
        "Marker2 = Marker({icon:'2.png' position:(2,12) OFFSET}) Marker2.setMap(Map1)");
  }

  void calls() {
    QFETCH(bool, google);
    QFETCH(QString, script);
    QVERIFY(google ? loadGoogle() : loadAMap());
    newCalls();
    view->evaluate(
        "var place = " + QString(google ? "'{lat: LAT, lng: LNG}'" : "'new AMap.LngLat(LNG,LAT)'") +
        "; var track = count => '[' + [...Array(count).keys()].map("
        "i => place.replace('LAT', i + 1).replace('LNG', i + 11)) + ']';");
    view->evaluate(script);
    QStringList calls = newCalls();
    calls += QStringList(alerts->messages.size(), "alert");
    QTEST(calls.join(' '), "expected");
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

 private:
  /// The calls since the last question.
  QStringList newCalls() const {
    QStringList calls = value("calls.splice(0)").toStringList();
    return calls.replaceInStrings(server.address(), "HOST");
  }
};

QTEST_MAIN(MapPagesTest)
#include "tst_mapPages.moc"
