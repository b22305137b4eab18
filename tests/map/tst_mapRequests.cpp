#include "app/mapRequestRules.h"
#include "map/mapPages.h"

#include <QRegularExpression>
#include <QTest>

class MapRequestsTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void requests_data();
  void requests();
  void tileServersLearnWhoAsks_data();
  void tileServersLearnWhoAsks();
  void imageFolders_data();
  void imageFolders();
  void settingsStayInTheirPlaces();
};

namespace {

MapSettings settings() {
  return {.googleHost = "maps.googleapis.com",
          .googleKey = {},
          .googleImageHost = "maps.google.com",
          .googleStaticHost = "maps.gstatic.com",
          .amapHost = "webapi.amap.com",
          .amapKey = {},
          .amapSiteHost = "http://127.0.0.1:8080",
          .tileAddress = "https://tile.example.org/{z}/{x}/{y}.png",
          .referer = "https://home.example.org/some/page?q=1"};
}

/// "no", "yes", or the path under which the program answers.
QString outcome(const MapSettings& services, const QString& url) {
  MapRequestRules rules(services);
  rules.imageFolder = "/opt/走る/png/";
  rules.pageFile = "/tmp/page.html";
  const MapRequestDecision decision = rules.decide(QUrl(url));
  switch (decision.kind) {
    case MapRequestDecision::Kind::Block:
      return "no";
    case MapRequestDecision::Kind::Allow:
      return "yes";
    case MapRequestDecision::Kind::Answer:
      return decision.answer.path();
  }
  return {};
}

}  // namespace

void MapRequestsTest::requests_data() {
  QTest::addColumn<QString>("withoutKeys");
  QTest::addColumn<QString>("withKeys");
  const auto row = [](const char* url, const char* withoutKeys, const char* withKeys) {
    QTest::newRow(url) << QString::fromLatin1(withoutKeys) << QString::fromLatin1(withKeys);
  };
  row("https://maps.googleapis.com/maps/api/js?key=&callback=initMap", "/script", "yes");
  row("http://maps.google.com/mapfiles/dir_81.png", "/images/arr/dir_81.png", "yes");
  row("https://maps.gstatic.com/mapfiles/ridefinder-images/mm_20_green.png", "/images/start.png",
      "yes");
  row("https://maps.gstatic.com/mapfiles/ridefinder-images/mm_20_blue.png", "/images/end.png",
      "yes");
  row("https://maps.gstatic.com/mapfiles/ridefinder-images/../secret.png", "no", "yes");
  row("https://khms0.googleapis.com/kh?v=1", "no", "yes");
  row("https://googleapis.com.example.org/", "no", "no");
  row("https://evilgoogleapis.com/", "no", "no");
  row("https://tile.example.org/1/0/0.png", "yes", "no");
  row("http://tile.example.org/1/0/0.png", "no", "no");
  row("https://tile.example.org:8443/1/0/0.png", "no", "no");
  row("http://webapi.amap.com/maps?v=1.3", "no", "yes");
  row("https://webrd01.is.autonavi.com/tile", "no", "yes");
  row("http://127.0.0.1:8080/Public/css/demo.Default.css", "no", "yes");
  row("http://127.0.0.1:22/", "no", "no");
  row("https://example.org/", "no", "no");
  row("ftp://maps.googleapis.com/", "no", "no");
  row("file:///opt/%E8%B5%B0%E3%82%8B/png/2.png", "yes", "yes");
  row("file:///opt/%E8%B5%B0%E3%82%8B/png/../gpsData.db3", "no", "no");
  row("file:///opt/%E8%B5%B0%E3%82%8B/png/%2e%2e/gpsData.db3", "no", "no");
  row("file://host/opt/%E8%B5%B0%E3%82%8B/png/2.png", "no", "no");
  row("file:///etc/passwd", "no", "no");
  row("file:///tmp/page.html", "yes", "yes");
  row("trakko-map:/script", "yes", "yes");
  row("data:image/png;base64,AAAA", "yes", "yes");
  row("qrc:/map/pages/google.html", "no", "no");
  row("javascript:alert(1)", "no", "no");
}

void MapRequestsTest::requests() {
  const QString url = QString::fromUtf8(QTest::currentDataTag());
  QTEST(outcome(settings(), url), "withoutKeys");
  MapSettings keyed = settings();
  keyed.googleKey = keyed.amapKey = "key";
  QTEST(outcome(keyed, url), "withKeys");
}

void MapRequestsTest::tileServersLearnWhoAsks_data() {
  QTest::addColumn<QString>("home");
  QTest::addColumn<QString>("url");
  QTest::addColumn<QByteArray>("referer");
  const QString tile = "https://tile.example.org/1/0/0.png";
  QTest::newRow("origin only") << settings().referer << tile
                               << QByteArray("https://home.example.org/");
  QTest::newRow("plain home") << "http://home.example.org:81" << tile
                              << QByteArray("http://home.example.org:81/");
  QTest::newRow("nobody else") << settings().referer << "https://maps.gstatic.com/x"
                               << QByteArray();
  QTest::newRow("no home") << "" << tile << QByteArray();
}

void MapRequestsTest::tileServersLearnWhoAsks() {
  QFETCH(QString, home);
  QFETCH(QString, url);
  MapSettings services = settings();
  services.referer = home;
  QTEST(MapRequestRules(services).referer(QUrl(url)), "referer");
}

void MapRequestsTest::imageFolders_data() {
  QTest::addColumn<QString>("path");
  QTest::addColumn<QString>("name");
  QTest::addColumn<QString>("address");
  QTest::newRow("beside the bundle") << "/Applications/Trakko.app"
                                     << "Trakko"
                                     << "file:///Applications/png/";
  QTest::newRow("only the length counts") << "/opt/Runner.app"
                                          << "Trakko"
                                          << "file:///opt/png/";
  QTest::newRow("longer file name") << "/opt/My Trakko.app"
                                    << "Trakko"
                                    << "file:///opt/My png/";
  QTest::newRow("other languages") << QStringLiteral("/home/走/Trakko.app") << "Trakko"
                                   << QStringLiteral("file:///home/走/png/");
  QTest::newRow("ends no quote and no address") << "/o'b#r?<&\"/100%/Trakko.app"
                                                << "Trakko"
                                                << "file:///o%27b%23r%3F%3C%26%22/100%25/png/";
}

void MapRequestsTest::imageFolders() {
  QFETCH(QString, path);
  QFETCH(QString, name);
  const QString address = imageFolderAddress({path, name});
  QTEST(address, "address");
  QCOMPARE(QUrl(address).toLocalFile(), folderBeside({path, name}) + "png/");
}

// Hosts and keys come from outside: whatever they hold, they end neither an attribute nor a text.
void MapRequestsTest::settingsStayInTheirPlaces() {
  MapSettings services = settings();
  const QString bad = "'\"><script>alert(1)</script>";
  services.googleKey = services.amapKey = services.googleHost = services.amapHost = bad;
  services.googleImageHost = services.googleStaticHost = services.amapSiteHost = bad;
  const PageSettings page{"file:///png/", services};
  for (const QString& text : {gethtmlStr(page), getGDHtmlStr(page)}) {
    QVERIFY(!text.contains("<script>alert"));
    QVERIFY(!text.contains("'\"><s"));
    QVERIFY(!text.contains(QLatin1Char('@')));
    QCOMPARE(text.count('\n'), text.count(" \r\n"));
  }
}

QTEST_GUILESS_MAIN(MapRequestsTest)
#include "tst_mapRequests.moc"
