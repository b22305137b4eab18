#include "map/mapPages.h"
#include "tests/columns.h"
#include "web/mapRequestRules.h"

#include <QTest>

namespace {

MapSettings settings(const QString& key = {}) {
  return {"maps.googleapis.com",
          key,
          "maps.google.com",
          "maps.gstatic.com",
          "webapi.amap.com",
          key,
          "http://127.0.0.1:8080",
          "https://tile.example.org:443/{z}/{x}/{y}.png",
          "https://home.example.org/some/page?q=1"};
}

/// "no", "yes", or the path under which the program answers.
QString outcome(const MapSettings& services, const QString& url) {
  MapRequestRules rules(services);
  rules.imageFolder = "/opt/走る/png/";
  const RequestDecision decision = rules.decide(QUrl(url));
  if (decision.kind == RequestDecision::Kind::Answer) {
    return decision.answer.path();
  }
  return decision.kind == RequestDecision::Kind::Allow ? "yes" : "no";
}

}  // namespace

class tst_mapRequests : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void requests_data() {
    const auto row = columns<QString, QString>("withoutKeys", "withKeys");
    row("https://maps.googleapis.com/maps/api/js?key=&callback=initMap", "/script", "yes");
    row("http://maps.google.com/mapfiles/dir_81.png", "/images/arr/dir_81.png", "yes");
    row("https://maps.gstatic.com/mapfiles/ridefinder-images/mm_20_blue.png", "/images/end.png",
        "yes");
    row("https://khms0.googleapis.com/kh?v=1", "no", "yes");
    row("https://googleapis.com.example.org/", "no", "no");
    row("https://evilgoogleapis.com/", "no", "no");
    row("https://tile.example.org/1/0/0.png", "yes", "no");
    row("https://tile.example.org:8443/1/0/0.png", "no", "no");
    row("http://webapi.amap.com/maps?v=1.3", "no", "yes");
    row("https://webrd01.is.autonavi.com/tile", "no", "yes");
    row("http://127.0.0.1:8080/Public/css/demo.Default.css", "no", "yes");
    row("file:///opt/%E8%B5%B0%E3%82%8B/png/2.png", "yes", "yes");
    row("file:///opt/%E8%B5%B0%E3%82%8B/png/%2e%2e/gpsData.db3", "no", "no");
    row("file://host/opt/%E8%B5%B0%E3%82%8B/png/2.png", "no", "no");
    row("qrc:/map/pages/google.html", "no", "no");
  }

  void requests() {
    const QString url = QString::fromUtf8(QTest::currentDataTag());
    QTEST(outcome(settings(), url), "withoutKeys");
    QTEST(outcome(settings("key"), url), "withKeys");
  }

  void tileServersLearnWhoAsks() {
    const auto referer = [](const QString& home, const QString& url) {
      MapSettings services = settings();
      services.referer = home;
      return MapRequestRules(services).referer(QUrl(url));
    };
    const QString tile = "https://tile.example.org/1/0/0.png";
    QCOMPARE(referer(settings().referer, tile), "https://home.example.org/");  // the origin only
    QCOMPARE(referer(settings().referer, "https://maps.gstatic.com/x"), "");
    QCOMPARE(referer("", tile), "");
  }

  // The name is cut off by its length; what remains ends no quote and no address.
  void imageFolders() {
    QCOMPARE(imageFolderAddress({"/opt/My Trakko.app", "Trakko"}), "file:///opt/My png/");
    const Bundle bundle{"/走/o'b#r?<&\"/100%/Trakko.app", "Trakko"};
    QCOMPARE(imageFolderAddress(bundle), "file:///走/o%27b%23r%3F%3C%26%22/100%25/png/");
    QCOMPARE(QUrl(imageFolderAddress(bundle)).toLocalFile(), folderBeside(bundle) + "png/");
  }

  // Hosts and keys come from outside: whatever they hold, they end neither an attribute nor a text.
  void settingsStayInTheirPlaces() {
    const QString bad = "'\"><script>alert(1)</script>";
    const PageSettings page{"file:///png/", {bad, bad, bad, bad, bad, bad, bad, {}, {}}};
    for (const QString& text : {gethtmlStr(page), getGDHtmlStr(page)}) {
      QVERIFY(!text.contains("<script>alert") && !text.contains("'\"><s"));
      QVERIFY(!text.contains('@'));
      QCOMPARE(text.count('\n'), text.count(" \r\n"));
    }
  }

  void environmentOverridesTheBuild() {
    QVERIFY(configuredMapSettings().tileAddress.startsWith("http"));
    qputenv("TRAKKO_TILE_ADDRESS", "elsewhere");
    QCOMPARE(configuredMapSettings().tileAddress, "elsewhere");
  }
};

QTEST_GUILESS_MAIN(tst_mapRequests)
#include "tst_mapRequests.moc"
