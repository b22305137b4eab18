#include "tests/columns.h"
#include "tests/map/trackOf.h"
#include "tests/web/webFixture.h"

#include <QDesktopServices>
#include <QUdpSocket>
#include <QWebEngineDownloadRequest>
#include <QWebEngineProfile>

#include <csignal>

using namespace Qt::StringLiterals;

/// The web view by itself: calls, order, what the page may and may not do, and how it comes back.
class tst_webMapView : public MapTest {
  Q_OBJECT

 public Q_SLOTS:
  void openOutside(const QUrl& url) { opened.append(url); }

 private Q_SLOTS:
  void init() {
    startAnew();
    opened.clear();
    for (const char* scheme : {"https", "http", "file"}) {
      QDesktopServices::setUrlHandler(scheme, this, "openOutside");
    }
  }

  void textsArriveAsTheyAre() {
    QVERIFY(loadBody({}));
    const QStringList texts{"a'b\"c`d\\e${f}", u"a\nb\r\nc\u2028d\u2029e\tf"_s,
                            "</script><!-- <script>", u"地図 🏃 \u0000x"_s, ""};
    view->callFunction("take", texts);
    QCOMPARE(value("taken").toStringList(), texts);
  }

  void callsWaitForThePage() {
    view->evaluate("document.title = 'of no page'");
    view->loadPage("<title>here</title><script>var seen = 'page';</script>", QUrl());
    view->evaluate("document.title = seen + (document.readyState !== 'loading')");
    QVERIFY(waitForTitle("pagetrue"));
    QVERIFY(!titles->contains(QVariantList{"of no page"}));
  }

  // Boxes neither hold the page up nor bury the user.
  void alerts_() {
    QVERIFY(loadBody({}));
    view->evaluate("alert('<b>one</b>'); take(confirm('?'), prompt('?'));");
    view->evaluate("for (let i = 0; i < 20; ++i) { alert('x'.repeat(1e6)); }");
    QCOMPARE(value("JSON.stringify(taken)"), "[false,null]");
    QCOMPARE(alerts->messages.size(), 5);
    QCOMPARE(alerts->messages.first(), "<b>one</b>");
    QVERIFY(alerts->messages.last().size() < 1000);
  }

  void nothingElseIsLoaded() {
    LocalServer stranger;
    stranger.files["/x.js"] = "take('script')";
    const auto with = [&](QString text) { return text.replace("HOST", stranger.address()); };
    QVERIFY(
        loadBody(with("<form action='trakko-map:/script'></form><img src='2.png'><img "
                      "src='file:///usr/share/pixmaps/debian-logo.png'>"
                      "<img src='../bundledMap.js'><iframe src='HOST/frame'></iframe>"
                      "<script src='HOST/x.js'></script>")));
    view->evaluate(with(
        "for (const address of ['HOST/f', 'file:///etc/passwd']) {"
        "fetch(address).then(() => take('fetched'), () => take('blocked')); }"
        "location.href = 'HOST/gone'; document.forms[0].submit(); window.open('HOST/window');"));
    QVERIFY(becomes("taken.length === 2 && document.images[0].naturalWidth === 12"));
    QCOMPARE(value("taken.join()"), "blocked,blocked");
    QVERIFY(stranger.requests.isEmpty());
    QCOMPARE(value("document.images[1].naturalWidth + document.images[2].naturalWidth"), 0);
  }

  // In the user's browser, and at a real click only.
  void linksOpenOutside() {
    QVERIFY(
        loadBody("<style>* { margin: 0 } a { display: block; height: 30px }</style>"
                 "<a href='https://example.org/a'>x</a>"
                 "<a href='https://example.org/b' target='_blank'>x</a>"
                 "<a href='file:///etc/passwd'>x</a>"
                 "<a href='file:///etc/passwd' target='_blank'>x</a>"
                 "<a onclick='empty = window.open()'>x</a>"));
    view->evaluate(
        "for (const link of document.links) { link.click(); }"
        "window.open('https://example.org/c'); location.href = 'mailto:a@example.org';");
    QTestEventLoop::instance().enterLoopMSecs(300);
    QCOMPARE(opened, QList<QUrl>());
    for (int i = 0; i < 5; ++i) {
      QTest::mouseClick(view->focusProxy(), Qt::LeftButton, {}, {5, 15 + 30 * i});
      QTestEventLoop::instance().enterLoopMSecs(150);
    }
    QCOMPARE(opened, (QList<QUrl>{QUrl("https://example.org/a"), QUrl("https://example.org/b")}));
    QCOMPARE(value("typeof take"), "function");
    QVERIFY(becomes("empty.closed"));
  }

  // What a script that got in might try.
  void nothingLeavesThePage() {
    QVERIFY(loadBody("<a download='x.txt' href='data:text/plain,x'>x</a>"));
    QList<QWebEngineDownloadRequest::DownloadState> downloads;
    connect(view->engine().get(), &QWebEngineProfile::downloadRequested, this,
            [&](QWebEngineDownloadRequest* download) { downloads.append(download->state()); });
    view->evaluate("document.links[0].click()");
    QTestEventLoop::instance().enterLoopMSecs(300);
    QCOMPARE(downloads, QList{QWebEngineDownloadRequest::DownloadCancelled});
  }

  void noWayPastTheRules_data() {
    const auto row = columns<QString>("window");
    row("the page", "window");
    row("a frame of the page's text", "window[0]");
    row("a frame", "added(document).contentWindow");
    row("a frame by its place", "added(document) && window[1]");
    row("a frame that loads", "added(document, 'https://example.org') && window[1]");
    row("a frame as text", "(document.body.innerHTML = '<iframe name=n src=x>') && window.n");
    row("a frame of a frame", "added(added(document).contentDocument, 'x') && window[1][0]");
    row("a frame out of sight", "added(hidden()).contentWindow");
    row("a hidden frame's document", "added(hidden()).contentDocument.defaultView");
    row("a frame in a document written anew",
        "(held = added(document).contentDocument).open() && added(held, 'x') && window[1][0]");
  }

  // What connects without asking the rules for requests is not there.
  void noWayPastTheRules() {
    QFETCH(QString, window);
    QVERIFY(
        loadBody("<iframe></iframe><script>function added(place, address = '') {"
                 "  const frame = place.createElement('iframe');"
                 "  if (address) { frame.src = address; }"
                 "  (place.body || place).append(frame);"
                 "  return frame;"
                 "}"
                 "function hidden() {"
                 "  const body = document.body.attachShadow({mode: 'open'});"
                 "  return {body, createElement: name => document.createElement(name)};"
                 "}</script>"));
    view->evaluate("{ let held; const w = " + window +
                   "; take(typeof w.document, typeof w.RTCPeerConnection); }");
    QCOMPARE(value("taken.join()"), "object,undefined");
  }

  // Some frames cannot be guarded; from there no datagram goes out either.
  void noDatagrams() {
    QUdpSocket relay;
    QVERIFY(relay.bind(QHostAddress::LocalHost));
    QVERIFY(loadBody({}));
    view->evaluate(
        "const frame = document.createElement('iframe');"
        "frame.src = 'javascript:parent.connectBy(window)';"
        "document.body.attachShadow({mode: 'open'}).append(frame);"
        "function connectBy(place) {"
        "  take(typeof place.WebTransport);"
        "  const line = new place.RTCPeerConnection({iceServers: [{urls: 'stun:127.0.0.1:" +
        QString::number(relay.localPort()) +
        "'}]});"
        "  line.onicegatheringstatechange = () => take(line.iceGatheringState);"
        "  line.createDataChannel('x');"
        "  line.createOffer().then(offer => line.setLocalDescription(offer));"
        "}");
    QVERIFY(becomes("taken.includes('complete')"));
    QCOMPARE(value("taken[0]"), "undefined");
    QVERIFY(!relay.hasPendingDatagrams());
  }

  // A service that fails is named, and none holds the page.
  void servicesThatFail() {
    const QString named = "document.body.textContent.includes('地図サービスに接続できません')";
    startAnew("key");  // what a service loads besides may fail
    server.files["/maps/api/js"] =
        "const script = document.createElement('script');"
        "script.src = '/none'; script.onerror = () => document.title = 'failed';"
        "document.head.append(script)";
    QVERIFY(loadGoogle("failed"));
    QCOMPARE(value(named), false);
    startAnew("key");
    QVERIFY(loadGoogle("Simple Map") && becomes(named));  // forbidden
    QVERIFY(loadAMap("ZEPLA Map") && becomes(named));
    startAnew("key", "http://127.0.0.1:1");  // nobody there
    QVERIFY(loadGoogle("Simple Map") && becomes(named));
    QTcpServer silent;
    silent.listen(QHostAddress::LocalHost);
    startAnew("key", "http://127.0.0.1:" + QString::number(silent.serverPort()));
    QVERIFY(loadGoogle("Simple Map"));
    view->evaluate("initMap();");
    view->evaluate("document.title = 'alive'");
    QVERIFY(waitForTitle("alive"));
    QCOMPARE(alerts->messages, QStringList{"google is not defined"});
  }

  void comesBack_data() {
    const auto row = columns<QString>("script");
    row("its process died", {});
    row("it left", "location = 'about:blank'");
  }

  void comesBack() {
    QFETCH(QString, script);
    QVERIFY(loadGoogle());
    const QSignalSpy resets(view.get(), &WebMapView::pageReset);
    titles->clear();
    if (script.isEmpty()) {
      kill(static_cast<pid_t>(view->page()->renderProcessPid()), SIGKILL);
    }
    view->evaluate(script);
    QVERIFY(waitForTitle("Map Load OK"));
    QCOMPARE(resets.size(), 1);
    draw(straightRun(50));
    QVERIFY(becomes("!!bermudaTriangle"));
  }

  void givesUpAPageThatKeepsDying() {
    const QSignalSpy lost(view.get(), &WebMapView::gaveUp);
    QVERIFY(loadBody({}));
    for (int i = 0; i < 5; ++i) {
      QCOMPARE(lost.size(), 0);
      Q_EMIT view->page()->renderProcessTerminated(QWebEnginePage::CrashedTerminationStatus, 1);
    }
    QVERIFY(loadGoogle());  // a new page begins anew
    Q_EMIT view->page()->renderProcessTerminated(QWebEnginePage::CrashedTerminationStatus, 1);
    QCOMPARE(lost.size(), 1);
  }

 private:
  bool loadBody(const QString& body) {
    return load("<base href='" + imageFolder +
                    "'><title>here</title><script>var taken = [];"
                    "function take(...a) { taken.push(...a); }</script>" +
                    body,
                "here");
  }

  QList<QUrl> opened;
};

QTEST_MAIN(tst_webMapView)
#include "tst_webMapView.moc"
