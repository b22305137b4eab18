#include "tests/map/trackOf.h"
#include "tests/map/webFixture.h"

#include <QDesktopServices>
#include <csignal>

/// The web view by itself: calls, order, what the page may and may not do, and how it comes back.
class WebMapViewTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void init();
  void cleanup();
  void textsArriveAsTheyAre_data();
  void textsArriveAsTheyAre();
  void callsKeepTheirOrder();
  void callsWaitForThePage();
  void longPage();
  void longArgument();
  void alertsDoNotHoldThePage();
  void nothingElseIsLoaded();
  void linksOpenOutside_data();
  void linksOpenOutside();
  void servicesThatFailAreNamed_data();
  void servicesThatFailAreNamed();
  void silentServiceHoldsNothing();
  void comesBackAfterItsProcessDied();

 public:
  Q_SLOT void openOutside(const QUrl& url) { opened.append(url); }

 private:
  bool loadBody(const QString& body);

  std::unique_ptr<MapFixture> fixture;
  QList<QUrl> opened;
};

void WebMapViewTest::init() {
  fixture = std::make_unique<MapFixture>();
  opened.clear();
  for (const char* scheme : {"https", "http", "file"}) {
    QDesktopServices::setUrlHandler(scheme, this, "openOutside");
  }
}

void WebMapViewTest::cleanup() {
  for (const char* scheme : {"https", "http", "file"}) {
    QDesktopServices::unsetUrlHandler(scheme);
  }
  fixture.reset();
}

bool WebMapViewTest::loadBody(const QString& body) {
  return fixture->load("<!DOCTYPE html><html><head><base href='" + fixture->imageFolder +
                           "'><title>here</title></head><body><script>var taken = [];"
                           "function take(a) { taken.push(a); }</script>" +
                           body + "</body></html>",
                       "here");
}

void WebMapViewTest::textsArriveAsTheyAre_data() {
  QTest::addColumn<QString>("text");
  QTest::newRow("quotes") << "a'b\"c`d\\e${f}";
  QTest::newRow("line ends") << QStringLiteral("a\nb\r\nc\u2028d\u2029e\tf");
  QTest::newRow("markup") << "</script><!-- <script>";
  QTest::newRow("other planes") << QString::fromUtf8("地図 🏃 \u0000x", 16);
  QTest::newRow("empty") << "";
}

void WebMapViewTest::textsArriveAsTheyAre() {
  QFETCH(QString, text);
  QVERIFY(loadBody({}));
  fixture->view->callFunction("take", {text});
  QCOMPARE(fixture->value("taken[0]").toString(), text);
}

void WebMapViewTest::callsKeepTheirOrder() {
  QVERIFY(loadBody({}));
  QStringList done;
  for (int i = 0; i < 5; ++i) {
    const QString number = QString::number(i);
    fixture->view->callFunction("take", {number}, [&done, number] { done.append(number); });
    // A call that fails is done as well.
    fixture->view->evaluate("nonsense" + number + "();", [&, number] {
      done.append("x" + number);
      fixture->view->callFunction("take", {"nested" + number});
    });
  }
  QCOMPARE(fixture->value("taken.join()"), "0,1,2,3,4");
  QCOMPARE(done.join(','), "0,x0,1,x1,2,x2,3,x3,4,x4");
  QVERIFY(fixture->becomes("taken.length === 10"));
}

void WebMapViewTest::callsWaitForThePage() {
  bool lost = false;
  fixture->view = std::make_unique<WebMapView>(fixture->alerts, fixture->services, QString());
  fixture->titles = std::make_unique<QSignalSpy>(fixture->view.get(), &WebMapView::titleReceived);
  fixture->view->evaluate("document.title = 'of no page'", [&] { lost = true; });
  fixture->view->loadPage("<title>here</title><script>var seen = 'page';</script>", QUrl());
  fixture->view->evaluate("document.title = seen + (document.readyState !== 'loading')");
  QVERIFY(fixture->waitForTitle("pagetrue"));
  QVERIFY(!lost);
  QVERIFY(!fixture->titles->contains(QVariantList{"of no page"}));
}

void WebMapViewTest::longPage() {
  const QString filling(3'000'000, QLatin1Char('x'));
  QVERIFY(loadBody("<img src='2.png'><p id='long'>" + filling + "</p>"));
  QCOMPARE(fixture->value("document.getElementById('long').textContent.length"), filling.size());
  QVERIFY(fixture->becomes("document.images[0].naturalWidth === 12"));
}

void WebMapViewTest::longArgument() {
  QVERIFY(loadBody({}));
  const QString expression = buildGoogleOverlay(straightRun(100'000), 1, QString()).expression;
  fixture->view->callFunction("take", {expression, "1"});
  QCOMPARE(fixture->value("taken[0].length"), expression.size());
  QCOMPARE(fixture->value("eval(taken[0]).length"), 100'000);
}

void WebMapViewTest::alertsDoNotHoldThePage() {
  QVERIFY(loadBody({}));
  fixture->view->evaluate(
      "alert('<b>one</b>'); take(confirm('?')); take(prompt('?')); alert('two');");
  QCOMPARE(fixture->value("JSON.stringify(taken)"), "[false,null]");
  QCOMPARE(fixture->alerts->messages, (QStringList{"<b>one</b>", "two"}));
}

void WebMapViewTest::nothingElseIsLoaded() {
  LocalServer stranger;
  stranger.files["/x.js"] = "take('script')";
  QVERIFY(
      loadBody("<img src='2.png'><img src='file:///usr/share/pixmaps/debian-logo.png'>"
               "<img src='../bundledMap.js'><iframe src='" +
               stranger.address() + "/frame'></iframe><script src='" + stranger.address() +
               "/x.js'></script>"));
  fixture->view->evaluate(
      "const tell = name => () => take(name);"
      "fetch('" +
      stranger.address() +
      "/f').then(tell('fetched'), tell('blocked'));"
      "fetch('file:///etc/passwd').then(tell('fetched'), tell('blocked'));"
      "location.href = '" +
      stranger.address() +
      "/gone';"
      "window.open('" +
      stranger.address() + "/window');");
  QVERIFY(fixture->becomes("taken.length === 2 && document.images[0].naturalWidth === 12"));
  QCOMPARE(fixture->value("taken.join()"), "blocked,blocked");
  QVERIFY(stranger.requests.isEmpty());
  QCOMPARE(fixture->value("document.images[1].naturalWidth + document.images[2].naturalWidth"), 0);
}

void WebMapViewTest::linksOpenOutside_data() {
  QTest::addColumn<QString>("link");
  QTest::addColumn<bool>("opens");
  QTest::newRow("link") << "href='https://example.org/a'" << true;
  QTest::newRow("own window") << "href='https://example.org/a' target='_blank'" << true;
  QTest::newRow("file") << "href='file:///etc/passwd'" << false;
  QTest::newRow("file in own window") << "href='file:///etc/passwd' target='_blank'" << false;
}

void WebMapViewTest::linksOpenOutside() {
  QFETCH(QString, link);
  QFETCH(bool, opens);
  QVERIFY(loadBody("<a " + link + ">x</a>"));
  fixture->view->evaluate("document.links[0].click();");
  QTestEventLoop::instance().enterLoopMSecs(150);
  QCOMPARE(opened, opens ? QList<QUrl>{QUrl("https://example.org/a")} : QList<QUrl>());
  QCOMPARE(fixture->value("typeof take"), "function");
}

void WebMapViewTest::servicesThatFailAreNamed_data() {
  QTest::addColumn<QString>("host");
  QTest::addColumn<bool>("google");
  QTest::newRow("forbidden") << QString() << true;
  QTest::newRow("nobody there") << "http://127.0.0.1:1" << true;
  QTest::newRow("other page") << QString() << false;
}

void WebMapViewTest::servicesThatFailAreNamed() {
  QFETCH(QString, host);
  QFETCH(bool, google);
  fixture->services.googleKey = "key";
  if (!host.isNull()) {
    fixture->services.googleHost = host;
  }
  const PageSettings settings = fixture->pageSettings();
  QVERIFY(google ? fixture->load(gethtmlStr(settings), "Simple Map")
                 : fixture->load(getGDHtmlStr(settings), "ZEPLA Map"));
  QVERIFY(fixture->becomes(
      QStringLiteral("document.body.textContent.includes('地図サービスに接続できません')")));
  fixture->view->evaluate("document.title = 'alive'");
  QVERIFY(fixture->waitForTitle("alive"));
}

void WebMapViewTest::silentServiceHoldsNothing() {
  fixture->server.silent = true;
  fixture->services.googleKey = "key";
  QVERIFY(fixture->load(gethtmlStr(fixture->pageSettings()), "Simple Map"));
  fixture->view->evaluate("initMap();");
  fixture->view->evaluate("document.title = 'alive'");
  QVERIFY(fixture->waitForTitle("alive"));
  QCOMPARE(fixture->alerts->messages, QStringList{"google is not defined"});
}

void WebMapViewTest::comesBackAfterItsProcessDied() {
  QVERIFY(fixture->loadGoogle());
  const QSignalSpy resets(fixture->view.get(), &WebMapView::pageReset);
  bool done = false;
  fixture->titles->clear();
  kill(static_cast<pid_t>(fixture->view->page()->renderProcessPid()), SIGKILL);
  fixture->view->evaluate("0", [&] { done = true; });
  QVERIFY(fixture->waitForTitle("Map Load OK"));
  QCOMPARE(resets.size(), 1);
  QVERIFY(!done);
  fixture->draw(straightRun(50));
  QVERIFY(fixture->becomes("!!bermudaTriangle"));
}

int main(int argc, char* argv[]) {
  return runWebTest<WebMapViewTest>(argc, argv);
}
#include "tst_webMapView.moc"
