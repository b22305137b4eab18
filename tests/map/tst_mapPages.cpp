#include "tests/map/trackOf.h"
#include "tests/map/webFixture.h"

#include <QFile>
#include <QRegularExpression>

/// What the pages ask of the map services, in the real engine with a recorder in their place.
class MapPagesTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void initTestCase();
  void init();
  void googlePageComesUp();
  void googleTrack_data();
  void googleTrack();
  void googleDrawsAnew();
  void arrowImages_data();
  void arrowImages();
  void amapPageComesUp();
  void amapTrack_data();
  void amapTrack();
  void errorsBecomeMessages();

 private:
  bool loadGoogle();
  bool loadAMap();
  /// The calls since the last question.
  QStringList newCalls() const;

  QByteArray recorder;
  std::unique_ptr<MapFixture> fixture;
};

namespace {

const QString line =
    "{path:[%1] geodesic:true strokeColor:\"#FF0000\" strokeOpacity:1 "
    "strokeWeight:3 map:Map1}";

QString place(int i) {
  return QString("{lat:%1 lng:%2}")
      .arg(35.6 + i * 0.0001, 0, 'g', 10)
      .arg(139.7 + i * 0.0001, 0, 'g', 10);
}

QString places(int from, int to) {
  QStringList list;
  for (int i = from; i < to; ++i) {
    list += place(i);
  }
  return list.join(' ');
}

/// The calls without their arguments.
QString heads(QStringList calls) {
  return calls.replaceInStrings(QRegularExpression("\\(.*"), "").join(',');
}

}  // namespace

void MapPagesTest::initTestCase() {
  QFile file(QFINDTESTDATA("mapRecorder.js"));
  QVERIFY(file.open(QIODevice::ReadOnly));
  recorder = file.readAll();
  fixture = std::make_unique<MapFixture>();
  fixture->services.googleKey = "g-key";
}

void MapPagesTest::init() {
  fixture->server.files = {{"/maps/api/js", recorder + "initMap();"}, {"/maps", recorder}};
  fixture->server.requests.clear();
  fixture->alerts->messages.clear();
}

bool MapPagesTest::loadGoogle() {
  return fixture->loadGoogle();
}

bool MapPagesTest::loadAMap() {
  return fixture->load(getGDHtmlStr(fixture->pageSettings()), "OK");
}

QStringList MapPagesTest::newCalls() const {
  QStringList calls = fixture->value("calls.splice(0)").toStringList();
  return calls.replaceInStrings(fixture->server.address(), "HOST");
}

void MapPagesTest::googlePageComesUp() {
  QVERIFY(loadGoogle());
  QVERIFY(fixture->server.requests.first().startsWith(
      "GET /maps/api/js?key=g-key&callback=initMap&language=en&region=GB "));
  QCOMPARE(fixture->titles->value(0).value(0), "Simple Map");
  QCOMPARE(fixture->titles->value(1).value(0), "Map Load Start");
  QCOMPARE(fixture->value("google.maps.controlStyle + lineSymbol.path"), "azteca1");
}

void MapPagesTest::googleTrack_data() {
  QTest::addColumn<int>("count");
  QTest::addColumn<QList<int>>("pauses");
  QTest::addColumn<QStringList>("drawn");
  QTest::newRow("no point") << 0 << QList<int>() << QStringList();
  QTest::newRow("one point") << 1 << QList<int>()
                             << QStringList{"Polyline1 = Polyline(" + line.arg(places(0, 1)) + ")"};
  QTest::newRow("no break") << 5 << QList<int>()
                            << QStringList{"Polyline1 = Polyline(" + line.arg(places(0, 5)) + ")"};
  QTest::newRow("one break")
      << 12 << QList<int>{4}
      << QStringList{"Marker3 = Marker({position:" + place(0) + " map:Map1 icon:\"2.png\"})",
                     "Polyline1 = Polyline(" + line.arg(places(0, 4)) + ")",
                     "Marker4 = Marker({position:" + place(4) + " map:Map1 icon:\"2.png\"})",
                     "Polyline2 = Polyline(" + line.arg(places(4, 11)) + ")"};
}

void MapPagesTest::googleTrack() {
  QFETCH(int, count);
  QFETCH(QList<int>, pauses);
  QFETCH(QStringList, drawn);
  QVERIFY(loadGoogle());
  newCalls();
  PointDictionary points = straightRun(count);
  pauseAt(points, pauses);
  TrackOverlay track = buildGoogleOverlay(points, 1, QString());
  fixture->view->callFunction(
      "MapPolyline",
      {track.expression, track.breakPointStr == "1" ? "1" : "0", track.breakPointStr});
  QStringList expected;
  if (count > 0) {
    const QString icons = "HOST/mapfiles/ridefinder-images/mm_20_";
    expected = QStringList{"Marker1 = Marker({position:" + place(0) + " map:Map1 icon:\"" + icons +
                               "green.png\"})",
                           "Marker2 = Marker({position:" + place(count - 1) + " map:Map1 icon:\"" +
                               icons + "blue.png\"})"} +
               drawn;
  }
  QCOMPARE(newCalls(), expected);
  // Evaluating no points at all is an error of the page's, which it tells.
  QCOMPARE(fixture->alerts->messages.size(), count == 0 ? 1 : 0);
}

void MapPagesTest::googleDrawsAnew() {
  QVERIFY(loadGoogle());
  fixture->draw(straightRun(2));
  newCalls();
  fixture->draw(straightRun(2));
  const QStringList calls = newCalls();
  QCOMPARE(heads(calls),
           "Map3 = Map,Polyline1.setMap,Marker1.setMap,Marker4 = Marker,Marker2.setMap,"
           "Marker5 = Marker,Polyline2 = Polyline,LatLngBounds2 = LatLngBounds,"
           "LatLngBounds2.extend,LatLngBounds2.extend,Map3.fitBounds,Size2 = Size,Point3 = Point,"
           "Point4 = Point,MarkerImage2 = MarkerImage,Marker3.setMap,Marker6 = Marker,"
           "Marker6.setMap");
  QVERIFY(calls.contains("LatLngBounds2.extend((35.600000,139.700000))"));
  QVERIFY(calls.contains("LatLngBounds2.extend((35.600100,139.700100))"));
  fixture->view->evaluate("SetMapNull();");
  QCOMPARE(newCalls(), QStringList{"Polyline2.setMap(null)"});
}

void MapPagesTest::arrowImages_data() {
  QTest::addColumn<QString>("to");
  QTest::addColumn<QString>("image");
  QTest::newRow("north") << "36,139"
                         << "dir_0";
  QTest::newRow("east") << "35.0000001,140"
                        << "dir_90";
  QTest::newRow("south") << "34,139"
                         << "dir_60";
  QTest::newRow("west") << "35,138"
                        << "dir_30";
  QTest::newRow("359.6 degrees") << "36,138.9914"
                                 << "dir_0";
  QTest::newRow("200 degrees") << "34.06,138.587"
                               << "dir_81";
}

void MapPagesTest::arrowImages() {
  QFETCH(QString, to);
  QFETCH(QString, image);
  QVERIFY(loadGoogle());
  fixture->view->callFunction("midLineArrows", {"[new google.maps.LatLng(35,139),"
                                                "new google.maps.LatLng(" +
                                                to + ")]"});
  QTEST(fixture->value("imagestr.replace(/.*(dir_\\d+)\\.png/, '$1')").toString(), "image");
}

void MapPagesTest::amapPageComesUp() {
  QVERIFY(loadAMap());
  QCOMPARE(fixture->titles->value(0).value(0), "ZEPLA Map");
  const QByteArray requests = fixture->server.requests.join();
  QVERIFY(requests.contains("GET /maps?v=1.3&key=key "));
  QVERIFY(requests.contains("GET /Public/css/demo.Default.css "));
  // Each plugin's control is made in its callback and put on the map.
  QCOMPARE(heads(newCalls()),
           "Map1 = Map,Map1.plugin,ToolBar1 = ToolBar,Map1.addControl,"
           "Map1.setLang,Map1.plugin,MapType1 = MapType,Map1.addControl");
  // Clearing begins with a fresh map, which is given up at the end.
  fixture->view->callFunction("MapPolyline", {"[new AMap.LngLat(139,35)]", "1", "1"});
  newCalls();
  fixture->view->evaluate("SetMapNull();");
  const QString calls = heads(newCalls());
  QVERIFY(calls.startsWith("Map2 = Map,"));
  QVERIFY(calls.endsWith("Polyline1.setMap,Marker1.setMap,Marker2.setMap"));
  QVERIFY(fixture->value("mapObj === null").toBool());
}

void MapPagesTest::amapTrack_data() {
  QTest::addColumn<QString>("breaks");
  QTest::addColumn<QStringList>("drawn");
  const QString p[] = {"(139 35)", "(140 36)", "(141 37)", "(142 38)"};
  QTest::newRow("no break") << "1"
                            << QStringList{"Polyline1 = Polyline({path:[" + p[0] + ' ' + p[1] +
                                               ' ' + p[2] + ' ' + p[3] +
                                               "] strokeColor:\"#FF0000\" strokeOpacity:1 "
                                               "strokeWeight:3 geodesic:true "
                                               "strokeDasharray:[10 5]})",
                                           "Polyline1.setMap(Map1)"};
  const QString piece =
      "Polyline%1 = Polyline({map:Map1 path:[%2] strokeColor:\"#FF0000\" "
      "strokeWeight:3 strokeDasharray:[10 5]})";
  QTest::newRow("first piece drawn twice")
      << "new Array(0,2,3)"
      << QStringList{piece.arg(1).arg('[' + p[0] + ' ' + p[1] + ']'), "Polyline1.setMap(Map1)",
                     piece.arg(2).arg('[' + p[0] + ' ' + p[1] + "] [" + p[2] + ']'),
                     "Polyline2.setMap(Map1)"};
}

void MapPagesTest::amapTrack() {
  QFETCH(QString, breaks);
  QFETCH(QStringList, drawn);
  QVERIFY(loadAMap());
  newCalls();
  fixture->view->callFunction("MapPolyline",
                              {"new Array(new AMap.LngLat(139,35),new AMap.LngLat(140,36),"
                               "new AMap.LngLat(141,37),new AMap.LngLat(142,38))",
                               breaks == "1" ? "1" : "0", breaks});
  const QStringList expected =
      QStringList{"Marker1 = Marker({icon:\"start.png\" position:(139 35) offset:{x:-7 y:-20}})",
                  "Marker1.setMap(Map1)",
                  "Marker2 = Marker({icon:\"end.png\" position:(142 38) offset:{x:-7 y:-20}})",
                  "Marker2.setMap(Map1)"} +
      drawn + QStringList{"Map1.setFitView()"};
  QCOMPARE(newCalls(), expected);
}

// A service that answers with something else than its script: the page says so, the title stays.
void MapPagesTest::errorsBecomeMessages() {
  fixture->server.files["/maps/api/js"] =
      "google = {maps: {Map: function() { throw new Error('no map today'); },"
      "SymbolPath: {}}}; initMap();";
  QVERIFY(fixture->load(gethtmlStr(fixture->pageSettings()), "Map Load Start"));
  QTRY_COMPARE(fixture->alerts->messages, QStringList{"no map today"});
  fixture->view->callFunction("MapPolyline", {"][", "1", "1"});
  QTRY_COMPARE(fixture->alerts->messages.size(), 2);
  QCOMPARE(fixture->titles->last().first(), "Map Load Start");
}

int main(int argc, char* argv[]) {
  return runWebTest<MapPagesTest>(argc, argv);
}
#include "tst_mapPages.moc"
