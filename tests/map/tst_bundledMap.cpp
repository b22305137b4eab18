#include "tests/map/trackOf.h"
#include "tests/map/webFixture.h"

#include <QBuffer>
#include <QImage>
#include <QTemporaryDir>

/// The map that is shown without a key: the page with the bundled script, in the real engine.
class BundledMapTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void initTestCase();
  void init();
  void comesUpWithoutAnyService();
  void showsATrack();
  void showsPieces();
  void clearsAndReplaces();
  void onePointIsFramed();
  void framesOnceThereIsRoom();
  void missingImagesLeaveDots();
  void tiles();
  void saysWhyThereAreNoTiles();
  void hostileTextsDoNothing_data();
  void hostileTextsDoNothing();
  void longTrack();

 private:
  std::unique_ptr<MapFixture> fixture;
};

namespace {

/// The markers' images that have really been loaded: "name width".
const QString loadedImages =
    "[...document.querySelectorAll('.trakko-marker img')].filter(i => i.naturalWidth)"
    ".map(i => i.src.split('/').pop() + ' ' + i.width).sort().join()";

/// Number of pixels on the canvas that are painted in the track's red.
const QString redPixels =
    "(() => { const c = document.querySelector('canvas'); const d = c.getContext('2d')"
    ".getImageData(0, 0, c.width, c.height).data; let n = 0; for (let i = 0; i < d.length; i += 4)"
    "{ n += d[i] === 255 && d[i + 1] === 0 && d[i + 3] === 255; } return n; })()";

QByteArray tileImage() {
  QImage image(256, 256, QImage::Format_RGB32);
  image.fill(Qt::darkGreen);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  image.save(&buffer, "PNG");
  return bytes;
}

}  // namespace

void BundledMapTest::initTestCase() {
  fixture = std::make_unique<MapFixture>();
}

void BundledMapTest::init() {
  fixture->server.requests.clear();
  fixture->server.files.clear();
  fixture->alerts->messages.clear();
  QVERIFY(fixture->loadGoogle());
}

void BundledMapTest::comesUpWithoutAnyService() {
  QCOMPARE(fixture->titles->value(1).value(0), "Map Load Start");
  QVERIFY(fixture
              ->value("lineSymbol.path === google.maps.SymbolPath.FORWARD_CLOSED_ARROW "
                      "&& !!document.querySelector('.leaflet-control-scale-line')")
              .toBool());
  QVERIFY(fixture->becomes("document.body.textContent.includes('OpenStreetMap contributors')"));
  for (const QByteArray& request : fixture->server.requests) {
    QVERIFY2(request.startsWith("GET /tiles/"), request);
  }
}

void BundledMapTest::showsATrack() {
  fixture->draw(straightRun(100));
  QVERIFY(
      fixture->becomes(loadedImages + " === 'dir_39.png 24,mm_20_blue.png 12,mm_20_green.png 12'"));
  QVERIFY(fixture->value(redPixels).toInt() > 300);
  // Framed to fit: the end is in the upper right part, a good way from the lower left start.
  const QVariantList places =
      fixture
          ->value(
              "[...document.querySelectorAll('.trakko-marker img')].slice(0, 2).flatMap(i "
              "=> { const b = i.getBoundingClientRect(); return [b.left, b.bottom]; })")
          .toList();
  QCOMPARE(places.size(), 4);
  QVERIFY(places[2].toDouble() - places[0].toDouble() > 100);
  QVERIFY(places[1].toDouble() - places[3].toDouble() > 150);
  QVERIFY(places[3].toDouble() > 0 && places[1].toDouble() < 480);
  QVERIFY(fixture->alerts->messages.isEmpty());
}

void BundledMapTest::showsPieces() {
  PointDictionary points = straightRun(60);
  pauseAt(points, {20, 40});
  fixture->draw(points);
  QVERIFY(fixture->becomes(loadedImages + ".split('2.png 12').length - 1 === 3"));
  // A position marker keeps the anchor that the page gives it, 32 px above.
  QCOMPARE(fixture->value("marker_add_remover(35.6, 139.7); actionMarker.layer.getElement()"
                          ".firstChild.style.top"),
           "-32px");
}

void BundledMapTest::clearsAndReplaces() {
  fixture->draw(straightRun(50));
  QVERIFY(fixture->becomes(redPixels + " > 300"));
  fixture->draw(TrackOverlay());
  QVERIFY(fixture->becomes(redPixels + " === 0"));
  QCOMPARE(fixture->value("document.querySelectorAll('.trakko-marker').length"), 3);
  fixture->draw(straightRun(50));
  fixture->draw(straightRun(50));
  QCOMPARE(fixture->value("document.querySelectorAll('.trakko-marker').length"), 3);
  QCOMPARE(fixture->value("document.querySelectorAll('.leaflet-control-scale').length"), 1);
  QVERIFY(fixture->alerts->messages.isEmpty());
}

void BundledMapTest::onePointIsFramed() {
  fixture->draw(straightRun(1));
  QCOMPARE(fixture->value("map.leaflet.getZoom() + ' ' + map.leaflet.getCenter().lat.toFixed(4)"),
           "18 35.6000");
}

// A window that is still hidden has no size to fit a track into.
void BundledMapTest::framesOnceThereIsRoom() {
  fixture->value(
      "document.getElementById('map').style.width = '0px';"
      "window.dispatchEvent(new Event('resize'))");
  fixture->draw(straightRun(100));
  fixture->value(
      "document.getElementById('map').style.width = '';"
      "window.dispatchEvent(new Event('resize'))");
  QVERIFY(fixture->becomes("map.leaflet.getSize().x > 600 && map.leaflet.getZoom() >= 14"));
}

void BundledMapTest::missingImagesLeaveDots() {
  const QTemporaryDir empty;
  const QString folder = fixture->imageFolder;
  fixture->imageFolder = "file://" + empty.path() + '/';
  const bool loaded = fixture->loadGoogle();
  fixture->imageFolder = folder;
  QVERIFY(loaded);
  fixture->draw(straightRun(100));
  QVERIFY(fixture->becomes("document.querySelectorAll('.trakko-dot').length === 3"));
}

void BundledMapTest::tiles() {
  fixture->server.files["/tiles/18/232798/103299.png"] = tileImage();
  fixture->draw(straightRun(1));
  QVERIFY(fixture->becomes("!!document.querySelector('img.leaflet-tile-loaded')"));
  const QByteArray request = fixture->server.requests.last();
  QVERIFY(request.contains("\r\nReferer: http://home.example.org/\r\n"));
  QVERIFY(request.contains(" Trakko/"));
  // Nobody looks at the default place when a run is drawn: its tiles are not asked for.
  QVERIFY(!fixture->server.requests.join().contains("GET /tiles/13/"));
}

void BundledMapTest::saysWhyThereAreNoTiles() {
  QVERIFY(fixture->becomes("!document.querySelector('.trakko-note').hidden"));
  QVERIFY(fixture->value("document.querySelector('.trakko-note').textContent")
              .toString()
              .startsWith(QStringLiteral("地図タイルを読み込めません")));
}

void BundledMapTest::hostileTextsDoNothing_data() {
  QTest::addColumn<QString>("text");
  const auto row = [](const char* text) { QTest::newRow(text) << QString::fromUtf8(text); };
  row("1});alert(1);//");
  row("1}];window.hacked=1;[{lat:1");
  row("</script><script>window.hacked=1</script>");
  row("1, x: window.hacked=1");
  row("`${window.hacked=1}`");
  row("\\u0031});window.hacked=1;//");
  row("\"+(window.hacked=1)+\"");
  row("1});fetch('http://127.0.0.1/x');new Image().src='http://127.0.0.1/y';//");
}

void BundledMapTest::hostileTextsDoNothing() {
  QFETCH(QString, text);
  text.replace("http://127.0.0.1", fixture->server.address());
  PointDictionary points = straightRun(50);
  for (trackPointData& point : points) {
    point.T_PointLatitudeN = text;
    point.T_PointTime = text;
    point.T_PointSpeed = text;
  }
  fixture->draw(points);
  fixture->draw(buildGDOverlay(points, 1, QString()));
  QVERIFY(fixture->value("window.hacked === undefined").toBool());
  for (const QByteArray& request : fixture->server.requests) {
    QVERIFY2(request.startsWith("GET /tiles/"), request);
  }
  QVERIFY(!fixture->alerts->messages.contains("1"));
}

void BundledMapTest::longTrack() {
  fixture->draw(straightRun(100'000));
  QCOMPARE(fixture->value("bermudaTriangle.layer.getLatLngs().length"), 100'000);
  QVERIFY(fixture->value(redPixels).toInt() > 300);
}

int main(int argc, char* argv[]) {
  return runWebTest<BundledMapTest>(argc, argv);
}
#include "tst_bundledMap.moc"
