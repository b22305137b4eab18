#include "tests/map/trackOf.h"
#include "tests/web/webFixture.h"

#include <QBuffer>
#include <QImage>

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

}  // namespace

/// The map that is shown without a key: the page with the bundled script, in the real engine.
class tst_bundledMap : public MapTest {
  Q_OBJECT

 private Q_SLOTS:
  void init() {
    startAnew();
    QVERIFY(loadGoogle());
  }

  void comesUpWithoutAnyService() {
    QCOMPARE(titles->value(1).value(0), "Map Load Start");
    QVERIFY(
        becomes("['OpenStreetMap contributors', '地図タイルを読み込めません', ' km'].every("
                "text => document.body.innerText.includes(text))"));
    QCOMPARE(value("[...document.querySelectorAll('[title]')].map(e => e.title).join()"),
             "拡大,縮小");
    QVERIFY(onlyTilesAskedFor());
  }

  void showsATrack() {
    draw(straightRun(100));
    QVERIFY(becomes(loadedImages + " === 'dir_39.png 24,mm_20_blue.png 12,mm_20_green.png 12'"));
    QVERIFY(value(redPixels).toInt() > 300);
    // Framed to fit: the end is in the upper right part, a good way from the lower left start.
    QVERIFY(
        value("(() => { const [start, end] = "
              "[...document.querySelectorAll('.trakko-marker img')].map(i => "
              "i.getBoundingClientRect()); return end.left - start.left > 100 && end.bottom > 0 && "
              "start.bottom - end.bottom > 150 && start.bottom < 480; })()")
            .toBool());
    QVERIFY(alerts->messages.isEmpty());
  }

  void clearsAndReplaces() {
    const QString markers = "document.querySelectorAll('.trakko-marker').length";
    draw(straightRun(60));
    QVERIFY(becomes(redPixels + " > 300"));
    draw(PointDictionary());
    QVERIFY(becomes(redPixels + " === 0"));
    QCOMPARE(value(markers), 3);
    const PointDictionary pieces = straightRun(60, {20, 40});
    draw(pieces);
    draw(pieces);
    QCOMPARE(value(markers), 6);
    QVERIFY(becomes(loadedImages + ".split('2.png 12').length - 1 === 3"));
    QCOMPARE(value("document.querySelectorAll('.leaflet-control-scale').length"), 1);
    // A position marker keeps the anchor that the page gives it, 32 px above.
    QCOMPARE(value("marker_add_remover(35.6, 139.7); actionMarker.layer.getElement()"
                   ".firstChild.style.top"),
             "-32px");
    QVERIFY(alerts->messages.isEmpty());
  }

  // Points without a fix shift the breaks behind the end of the track: nothing is there to draw.
  void piecesWithoutPoints() {
    PointDictionary points = straightRun(60, {40, 50});
    for (int i = 1; i <= 30; ++i) {
      points[QString("1-%1").arg(i)] = pointAt("1", "1", "0", "0");
    }
    draw(points);
    QCOMPARE(value("document.querySelectorAll('.trakko-marker').length"), 4);
    QVERIFY(alerts->messages.isEmpty());
  }

  // A window that is still hidden has no size to fit a track into.
  void framesOnceThereIsRoom() {
    const QString setWidth =
        "document.getElementById('map').style.width = '%1'; dispatchEvent(new Event('resize'))";
    value(setWidth.arg("0px"));
    QVERIFY(becomes("map.leaflet.getSize().x === 0"));
    value("map.leaflet.on('resize', () => document.title = 'others are told, too') && 0");
    draw(straightRun(100));
    value(setWidth.arg(""));
    QVERIFY(becomes("map.leaflet.getSize().x > 600 && map.leaflet.getZoom() === 15"));
    QVERIFY(titles->contains(QVariantList{"others are told, too"}));
  }

  void missingImagesLeaveDots() {
    imageFolder = "file:///nowhere/";
    QVERIFY(loadGoogle());
    draw(straightRun(100));
    QVERIFY(becomes("document.querySelectorAll('.trakko-dot').length === 3"));
  }

  // A single point is framed, from no closer than where there are tiles.
  void tiles() {
    QBuffer tile(&server.files["/tiles/18/232798/103299.png"]);
    QVERIFY(QImage(256, 256, QImage::Format_RGB32).save(&tile, "PNG"));
    draw(straightRun(1));
    QVERIFY(becomes("!!document.querySelector('img.leaflet-tile-loaded')"));
    QVERIFY(server.requests.last().contains("\r\nReferer: http://home.example.org/\r\n"));
    QVERIFY(server.requests.last().contains(" Trakko/"));
    // Nobody looks at the default place when a run is drawn: its tiles are never asked for.
    QTestEventLoop::instance().enterLoopMSecs(300);
    QVERIFY(!server.requests.join().contains("GET /tiles/13/"));
  }

 private:
  bool onlyTilesAskedFor() const {
    return std::all_of(server.requests.begin(), server.requests.end(),
                       [](const QByteArray& head) { return head.startsWith("GET /tiles/"); });
  }
};

QTEST_MAIN(tst_bundledMap)
#include "tst_bundledMap.moc"
